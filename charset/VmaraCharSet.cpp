// Two ICU calls in turn: up to 512 UTF-16 units from the source, then these units to the target, at
// most 1064 bytes a call. A character or a shift sequence that a write cuts stays inside ICU. Bad
// bytes and missing characters reach the two callbacks, which always clear the status, so ICU goes on.
//
// Nearly always the target is UTF-8, which is written here instead: that half of the work costs most of
// the time in ICU. Filters downstream can see where writes end, so writes end where ICU's would, and
// the bytes of a last character that found no room wait for the next write as they wait inside ICU. A
// target called "utf8" takes the way through ICU, for tests to compare the two.
//
// A failure that does not go through the callbacks gives an ISO-2022-JP text up and reads on as
// Shift_JIS, which mailers put under that name.
//
// UTF-8 into UTF-8 (a forced conversion, the way to validate) is shorter still: a piece that is
// well-formed goes downstream as it stands, cut where the two steps would have cut it. A piece with
// anything else in it takes both steps whole.
#include <velmara/VmaraConv.h>

#include <algorithm>
#include <utility>

#include <unicode/ucnv_cb.h>

#include <velmara/StringOperations.h>

#include "charset/CharSetTables.h"
#include "charset/Utf8Piece.h"
#include "charset/VmaraConvImpl.h"

namespace Velmara {

namespace {

constexpr unsigned int _unitsAtOnce = 512;
constexpr std::ptrdiff_t _bytesAtOnce = 1064;
constexpr std::ptrdiff_t _mostForIcu = 1 << 30; // ICU refuses 2 GiB and more in one call

bool _sameName(std::string const& a, std::string const& b)
{
    return stringCompareNoCase(a.c_str(), b.c_str());
}

bool _isTrail(char c)
{
    return (c & 0xC0) == 0x80;
}

bool _isUtf8(IcuConverter const& converter)
{
    return ucnv_getType(converter.get()) == UCNV_UTF8;
}

} // namespace

struct VmaraConvImpl::Source {
    char const* at;
    char const* const end;

    size_t left() const { return static_cast<size_t>(end - at); }
};

struct VmaraConvImpl::Units {
    UChar buffer[_unitsAtOnce];
    UChar const* end = buffer; // behind those that were produced last
    bool more = false;         // the buffer was full
    bool failed = false;       // in another way

    bool isEmpty() const { return end == buffer; }
    /// False if a unit behind the last whole character is half a pair, which waits or is dropped.
    bool endInCharacter() const
    {
        if (isEmpty() || !U16_IS_SURROGATE(end[-1])) return true;
        return U16_IS_TRAIL(end[-1]) && (end - 1 == buffer || U16_IS_LEAD(end[-2]));
    }
};

VmaraConvImpl::VmaraConvImpl(MediaOut const& out, std::string const& from, std::string const& to, bool force)
    : MediaOutDecoratorImpl(out), m_from(from.empty() ? "ISO-8859-1" : from), m_to(to.empty() ? "UTF-8" : to),
      m_toUtf8(_sameName(m_to, "UTF-8"))
{
    m_passThrough = !force && _sameName(m_from, m_to);
    if (m_passThrough) return;
    if (char const* replacement = charSetReplacement(m_from)) {
        m_from = replacement;
        m_passThrough = !force && _sameName(m_from, m_to);
        if (m_passThrough) return;
    }
    if (retryCharSet(m_from)) m_retryState = SecondSetAvailable;
    try_open();
}

VmaraConvImpl::~VmaraConvImpl()
{
    try {
        end();
    } catch (...) {
        // What a downstream throws has nobody left to go to.
    }
    close();
}

void VmaraConvImpl::end()
{
    flush(true);
    MediaOutDecoratorImpl::end();
}

void VmaraConvImpl::close()
{
    m_fromConverter.close();
    m_toConverter.close();
    m_utf8.restart();
    m_restLength = 0;
}

bool VmaraConvImpl::isAttached()
{
    return !downstream().isNull();
}

void VmaraConvImpl::put(char const* bytes, size_t n)
{
    downstream().write(reinterpret_cast<uchar_t const*>(bytes), static_cast<uint_t>(n));
}

void VmaraConvImpl::writeThrough(uchar_t const* bytes, uint_t n)
{
    flush(false);
    downstream().write(bytes, n);
}

void VmaraConvImpl::retry_on_failure(bool on)
{
    if (on || m_passThrough || m_retryState != SecondSetAvailable) return;
    m_retryState = NoRetry;
    if (m_fromConverter) setToUnicodeCallback();
}

std::string VmaraConvImpl::nameToOpen() const
{
    char const* second = m_retryState == InSecondSet ? retryCharSet(m_from) : nullptr;
    return second ? second : m_from;
}

/// Both converters, or none. An unknown source does not become ISO-8859-1: a wrong guess could not be
/// told from a right one, a raw copy can.
void VmaraConvImpl::try_open()
{
    flush(true);
    m_waiting = false;
    if (!m_fromConverter.open(nameToOpen())) return;
    if (!m_toUtf8 && !m_toConverter.open(m_to)) {
        m_fromConverter.close();
        return;
    }
    ucnv_setFallback(m_fromConverter.get(), true);
    setToUnicodeCallback();
    if (!m_toUtf8) setFromUnicodeCallback();
    m_validates = m_toUtf8 && _isUtf8(m_fromConverter);
}

void VmaraConvImpl::setFromUnicodeCallback()
{
    UErrorCode status = U_ZERO_ERROR;
    ucnv_setFromUCallBack(m_toConverter.get(), s_ignore_convert_terror, this, nullptr, nullptr, &status);
}

void VmaraConvImpl::setToUnicodeCallback()
{
    UErrorCode status = U_ZERO_ERROR;
    ucnv_setToUCallBack(m_fromConverter.get(), s_ignore_convert_ferror, this, nullptr, nullptr, &status);
}

UErrorCode VmaraConvImpl::ferror(UConverterToUnicodeArgs* args, std::int32_t length, UConverterCallbackReason reason,
                                 UErrorCode status)
{
    static UChar const mark = 0xFFFD;
    if (!m_substituteUnknown || reason > UCNV_IRREGULAR) return U_ZERO_ERROR;
    if (status == U_ILLEGAL_ESCAPE_SEQUENCE) return U_ZERO_ERROR;
    m_ferrCnt += static_cast<std::uint32_t>(length);
    UErrorCode written = U_ZERO_ERROR;
    ucnv_cbToUWriteUChars(args, &mark, 1, 0, &written);
    if (U_FAILURE(written)) m_markWaits = true; // the mark waits inside ICU for room
    return U_ZERO_ERROR;
}

UErrorCode VmaraConvImpl::terror(std::int32_t length, UConverterCallbackReason reason)
{
    if (reason <= UCNV_IRREGULAR) m_terrCnt += static_cast<std::uint32_t>(length);
    return U_ZERO_ERROR;
}

void VmaraConvImpl::s_ignore_convert_ferror(void const* self, UConverterToUnicodeArgs* args, char const*,
                                            std::int32_t length, UConverterCallbackReason reason, UErrorCode* status)
{
    *status = static_cast<VmaraConvImpl*>(const_cast<void*>(self))->ferror(args, length, reason, *status);
}

void VmaraConvImpl::s_ignore_convert_terror(void const* self, UConverterFromUnicodeArgs*, UChar const*,
                                            std::int32_t length, UChar32, UConverterCallbackReason reason,
                                            UErrorCode* status)
{
    *status = static_cast<VmaraConvImpl*>(const_cast<void*>(self))->terror(length, reason);
}

void VmaraConvImpl::write(uchar_t const* bytes, uint_t n)
{
    auto const* text = reinterpret_cast<char const*>(bytes);
    if (m_passThrough || !m_fromConverter)
        put(text, n);
    else
        convert(Source{text, text + n});
}

void VmaraConvImpl::convert(Source source)
{
    Units units;
    bool progressInRetry = false;
    while (source.at != source.end) {
        if (m_validates && !m_waiting && writeValidPiece(source)) continue;
        if (units.failed) retry(progressInRetry);
        if (!m_fromConverter) {
            m_passThrough = true;
            put(source.at, source.left());
            return;
        }
        toUnicode(source, units, false);
        if (!units.failed && m_retryState == InSecondSet) progressInRetry = true;
        if (!units.isEmpty()) fromUnicode(units);
        if (m_validates) m_waiting = somethingWaits();
    }
}

/// What a failure leads to: the second character set, back from it, and then nothing more.
void VmaraConvImpl::retry(bool& progressInRetry)
{
    if (m_retryState == SecondSetAvailable) {
        m_retryState = InSecondSet;
        try_open();
        if (!m_fromConverter) {
            m_retryState = NoRetry;
            try_open();
        }
    } else if (m_retryState == InSecondSet) {
        m_retryState = NoRetry;
        if (progressInRetry)
            setToUnicodeCallback();
        else
            try_open();
    } else if (m_fruitless > 1) {
        close(); // asking again would never end
    }
    progressInRetry = false;
}

/// The next units of the source; with `flush` also what waits, as the text ends here.
void VmaraConvImpl::toUnicode(Source& source, Units& units, bool flush)
{
    m_markWaits = false;
    char const* const begin = source.at;
    UChar* end = units.buffer;
    UErrorCode status = U_ZERO_ERROR;
    ucnv_toUnicode(m_fromConverter.get(), &end, units.buffer + _unitsAtOnce, &source.at,
                   source.at + std::min(source.end - source.at, _mostForIcu), nullptr, flush, &status);
    units.end = end;
    units.more = status == U_BUFFER_OVERFLOW_ERROR;
    units.failed = U_FAILURE(status) && !units.more;
    m_fruitless = units.failed && units.isEmpty() && source.at == begin ? m_fruitless + 1 : 0;
    if (!flush) m_unitsConverted += static_cast<std::uint32_t>(end - units.buffer);
}

void VmaraConvImpl::fromUnicode(Units const& units)
{
    if (m_toUtf8) {
        toUtf8(units, false);
        return;
    }
    // Of the last character, bytes that found no room wait for the next call.
    for (UChar const* at = units.buffer; at != units.end && fromUnicodeOnce(at, units.end, false);) {
    }
}

/// The units of a flush, with all that waits; `last` if no more units come.
void VmaraConvImpl::drain(Units const& units, bool last)
{
    if (!m_toUtf8) {
        // Not until a call writes nothing: ISO-2022-KR begins anew, with its header, after each flush.
        for (UChar const* at = units.buffer; fromUnicodeOnce(at, units.end, last);) {
        }
        return;
    }
    toUtf8(units, true);
    if (last) m_utf8.end();
}

/// One call of ICU and its write. True if more is to come; never when a call changes nothing.
bool VmaraConvImpl::fromUnicodeOnce(UChar const*& at, UChar const* end, bool flush)
{
    char bytes[_bytesAtOnce];
    char* to = bytes;
    UChar const* const begin = at;
    UErrorCode status = U_ZERO_ERROR;
    ucnv_fromUnicode(m_toConverter.get(), &to, bytes + _bytesAtOnce, &at, end, nullptr, flush, &status);
    if (to != bytes) put(bytes, static_cast<size_t>(to - bytes));
    return (to != bytes || at != begin) && (at != end || status == U_BUFFER_OVERFLOW_ERROR);
}

/// The bytes of a last character that a full write cuts wait, unless `all` are asked for.
void VmaraConvImpl::toUtf8(Units const& units, bool all)
{
    char bytes[sizeof m_rest + Utf8Writer::mostBytes(_unitsAtOnce)];
    char const* const end =
        m_utf8.write(units.buffer, units.end, std::copy_n(m_rest, std::exchange(m_restLength, 0), bytes));
    char const* at = bytes;
    for (; end - at > _bytesAtOnce; at += _bytesAtOnce) put(at, _bytesAtOnce);
    if (!all && at != bytes && units.endInCharacter() && std::all_of(at, end, _isTrail))
        m_restLength = static_cast<std::uint8_t>(std::copy(at, end, m_rest) - m_rest);
    else if (at != end)
        put(at, static_cast<size_t>(end - at));
}

void VmaraConvImpl::flush(bool close)
{
    if (isAttached() && !m_passThrough && m_fromConverter) {
        Source nothing{"", nothing.at};
        Units units;
        do {
            toUnicode(nothing, units, true);
            drain(units, !units.more && !units.failed);
        } while (units.more || (units.failed && m_fruitless <= 1));
        m_waiting = false;
    }
    if (close) this->close();
}

/// Writes the piece that ICU would take next, if it is well-formed and nothing of it would wait.
bool VmaraConvImpl::writeValidPiece(Source& source)
{
    auto const* bytes = reinterpret_cast<uchar_t const*>(source.at);
    Utf8Piece const piece = utf8Piece(bytes, source.left(), _unitsAtOnce);
    if (piece.units != _unitsAtOnce && piece.bytes != source.left()) return false;
    size_t const first = std::min<size_t>(piece.bytes, _bytesAtOnce);
    if (first != piece.bytes && piece.last < first) return false;
    char const* const text = std::exchange(source.at, source.at + piece.bytes);
    m_unitsConverted += piece.units;
    put(text, first);
    if (first != piece.bytes) put(text + first, piece.bytes - first);
    return true;
}

/// Whether the next piece of UTF-8 has to take both steps because it would not come first.
bool VmaraConvImpl::somethingWaits() const
{
    UErrorCode status = U_ZERO_ERROR;
    return m_markWaits || m_restLength != 0 || !m_utf8.isIdle() ||
           ucnv_toUCountPending(m_fromConverter.get(), &status) != 0;
}

} // namespace Velmara
