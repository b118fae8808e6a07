// Two ICU calls in turn: up to 512 UTF-16 units from the source, then these units to the target, at
// most 1064 bytes a call. A character or a shift sequence that a write cuts stays inside ICU. Bad
// bytes and missing characters reach the two callbacks, which always clear the status, so ICU goes on.
//
// A failure that does not go through the callbacks gives an ISO-2022-JP text up and reads on as
// Shift_JIS, which mailers put under that name.
//
// UTF-8 into UTF-8 (a forced conversion, the way to validate) has a short way: a piece that is
// well-formed goes downstream as it stands, cut where the two calls would have cut it. A piece with
// anything else in it goes through ICU whole. Filters downstream can see where writes end, so the
// short way must not show there either.
#include <velmara/VmaraConv.h>

#include <algorithm>

#include <unicode/ucnv_cb.h>

#include <velmara/StringOperations.h>

#include "charset/CharSetTables.h"
#include "charset/Utf8Piece.h"
#include "charset/VmaraConvImpl.h"

namespace Velmara {

namespace {

constexpr unsigned int _unitsAtOnce = 512;
constexpr unsigned int _bytesAtOnce = 1064;
constexpr std::ptrdiff_t _mostForIcu = 1 << 30; // ICU refuses 2 GiB and more in one call

bool _sameName(std::string const& a, std::string const& b)
{
    return stringCompareNoCase(a.c_str(), b.c_str());
}

bool _isUtf8(IcuConverter const& converter)
{
    return ucnv_getType(converter.get()) == UCNV_UTF8;
}

} // namespace

struct VmaraConvImpl::Source {
    char const* at;
    char const* const end;
};

struct VmaraConvImpl::Units {
    UChar buffer[_unitsAtOnce];
    UChar const* end = buffer; // behind those that were produced last
    bool more = false;         // the buffer was full
    bool failed = false;       // in another way

    bool isEmpty() const { return end == buffer; }
};

VmaraConvImpl::VmaraConvImpl(MediaOut const& out, std::string const& from, std::string const& to, bool force)
    : MediaOutDecoratorImpl(out), m_from(from.empty() ? "ISO-8859-1" : from), m_to(to.empty() ? "UTF-8" : to)
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
    if (!m_toConverter.open(m_to)) {
        m_fromConverter.close();
        return;
    }
    ucnv_setFallback(m_fromConverter.get(), true);
    setCallbacks();
    m_validates = _isUtf8(m_fromConverter) && _isUtf8(m_toConverter);
}

void VmaraConvImpl::setCallbacks()
{
    setToUnicodeCallback();
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
    if (m_passThrough || !m_fromConverter) {
        downstream().write(bytes, n);
        return;
    }
    auto const* text = reinterpret_cast<char const*>(bytes);
    Source source{text, text + n};
    Units units;
    bool progressInRetry = false;
    while (source.at != source.end) {
        if (m_validates && !m_waiting && writeValidPiece(source)) continue;
        if (units.failed) retry(progressInRetry);
        if (!m_fromConverter) {
            m_passThrough = true;
            downstream().write(reinterpret_cast<uchar_t const*>(source.at),
                               static_cast<uint_t>(source.end - source.at));
            return;
        }
        toUnicode(source, units, false);
        if (!units.failed && m_retryState == InSecondSet) progressInRetry = true;
        if (!units.isEmpty()) fromUnicode(units);
        if (m_validates) m_waiting = somethingWaits(units);
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

/// One call of ICU and one write; false if no byte came out.
bool VmaraConvImpl::fromUnicodeOnce(UChar const*& at, UChar const* end, bool flush)
{
    char bytes[_bytesAtOnce];
    char* to = bytes;
    UErrorCode status = U_ZERO_ERROR;
    ucnv_fromUnicode(m_toConverter.get(), &to, bytes + _bytesAtOnce, &at, end, nullptr, flush, &status);
    m_bytesWait = status == U_BUFFER_OVERFLOW_ERROR;
    if (to == bytes) return false;
    downstream().write(reinterpret_cast<uchar_t const*>(bytes), static_cast<uint_t>(to - bytes));
    return true;
}

/// Until all units are used; of the last character, bytes that found no room wait for the next call.
void VmaraConvImpl::fromUnicode(Units const& units)
{
    for (UChar const* at = units.buffer; at != units.end;) {
        UChar const* const begin = at;
        if (!fromUnicodeOnce(at, units.end, false) && at == begin) return;
    }
}

void VmaraConvImpl::flush(bool close)
{
    if (!downstream().isNull() && !m_passThrough && m_fromConverter) {
        Source nothing{"", nothing.at};
        Units units;
        do {
            toUnicode(nothing, units, true);
            bool const last = !units.more && !units.failed;
            // Not until a call writes nothing: ISO-2022-KR begins anew with its header after each flush.
            UChar const* at = units.buffer;
            while (fromUnicodeOnce(at, units.end, last) && (at != units.end || m_bytesWait)) continue;
        } while (units.more || (units.failed && m_fruitless <= 1));
        m_waiting = false;
    }
    if (close) this->close();
}

/// Writes the piece that ICU would take next, if it is well-formed and ICU would keep nothing of it.
bool VmaraConvImpl::writeValidPiece(Source& source)
{
    auto const* bytes = reinterpret_cast<uchar_t const*>(source.at);
    auto const left = static_cast<size_t>(source.end - source.at);
    Utf8Piece const piece = utf8Piece(bytes, left, _unitsAtOnce);
    if (piece.units != _unitsAtOnce && piece.bytes != left) return false;
    if (piece.bytes > _bytesAtOnce && piece.last < _bytesAtOnce) return false;
    source.at += piece.bytes;
    m_unitsConverted += piece.units;
    auto const n = static_cast<uint_t>(piece.bytes);
    downstream().write(bytes, std::min(n, _bytesAtOnce));
    if (n > _bytesAtOnce) downstream().write(bytes + _bytesAtOnce, n - _bytesAtOnce);
    return true;
}

/// Whether the next piece of UTF-8 has to go through ICU because it would not come first.
bool VmaraConvImpl::somethingWaits(Units const& units) const
{
    UErrorCode status = U_ZERO_ERROR;
    bool const cutPair = units.more && !units.isEmpty() && U16_IS_LEAD(units.end[-1]);
    return m_markWaits || m_bytesWait || cutPair || ucnv_toUCountPending(m_fromConverter.get(), &status) != 0 ||
           ucnv_fromUCountPending(m_toConverter.get(), &status) != 0;
}

} // namespace Velmara
