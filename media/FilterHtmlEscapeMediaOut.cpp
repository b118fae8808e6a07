// A "&" is the beginning of one of three things: a reference, a literal, or something that only the
// next write can tell. At most 12 bytes decide, so what waits stays short and the cost of a text full
// of "&" stays linear. "&lt;" and "&#x3C;" give "<"; "&lt", "&#;" and "&Lt;" are literals.
//
// Text is copied in runs between references, and not at all while there is none.
#include <velmara/FilterHtmlEscapeMediaOut.h>

#include <cstdint>
#include <cstring>

#include <libxml/HTMLparser.h>

#include "runtime/Ascii.h"

namespace Velmara {

class FilterHtmlEscapeMediaOutImpl : public MediaOutDecoratorImpl {
public:
    FilterHtmlEscapeMediaOutImpl() = default;
    explicit FilterHtmlEscapeMediaOutImpl(MediaOut const& out) : MediaOutDecoratorImpl(out) {}

    void write(Buffer const& bytes) override;
    void write(uchar_t const* bytes, uint_t n) override;
    void end() override;
    void attach(MediaOut const& out) override;
    void detach() override;

private:
    void writeCarried(Buffer const& bytes);
    void flush();

    Buffer m_carry{8192, 0}; // what may be the beginning of a reference
    Buffer m_work{8192, 0};  // the output of one pass
};

namespace {

/// What stands at a "&".
struct _Reference {
    enum Kind { Literal, Cut, Resolved };
    Kind kind;
    std::uint32_t value = 0; // what a resolved one denotes
    size_t length = 1;       // bytes that it takes
};

/// Digits from p[begin] on, at most `most` of them.
_Reference _number(char const* p, size_t n, size_t begin, size_t most, unsigned base)
{
    std::uint64_t value = 0;
    size_t at = begin;
    for (; at != n && at - begin < most; ++at) {
        int const digit = hexValue(static_cast<unsigned char>(p[at]));
        if (digit < 0 || static_cast<unsigned>(digit) >= base) break;
        value = value * base + static_cast<unsigned>(digit);
    }
    if (at == n) return {_Reference::Cut};
    if (p[at] != ';' || at == begin) return {_Reference::Literal};
    // Ten decimal digits can exceed 32 bits. scanf keeps the low ones, and texts so written are read
    // like that elsewhere.
    auto const kept = static_cast<std::uint32_t>(value);
    if (kept > 0x7FFFFFFF) return {_Reference::Literal};
    return {_Reference::Resolved, kept, at + 1};
}

_Reference _numeric(char const* p, size_t n)
{
    if (n < 4) return {_Reference::Cut};
    if (p[2] == 'x' || p[2] == 'X') return _number(p, n, 3, 8, 16);
    return _number(p, n, 2, 10, 10);
}

_Reference _named(char const* p, size_t n)
{
    constexpr size_t longest = 11; // with "&" and ";"
    if (n < 3) return {_Reference::Cut};
    auto const* semicolon = static_cast<char const*>(std::memchr(p, ';', n < longest ? n : longest));
    if (!semicolon) return {n < longest ? _Reference::Cut : _Reference::Literal};
    auto const length = static_cast<size_t>(semicolon - p) + 1;
    xmlChar name[longest] = {};
    std::memcpy(name, p + 1, length - 2);
    htmlEntityDesc const* entity = htmlEntityLookup(name);
    if (!entity) return {_Reference::Literal};
    return {_Reference::Resolved, entity->value, length};
}

/// What `n` bytes that begin with "&" are.
_Reference _read(char const* p, size_t n)
{
    if (n == 1) return {_Reference::Cut};
    return p[1] == '#' ? _numeric(p, n) : _named(p, n);
}

void _append(Buffer& out, char const* begin, char const* end)
{
    out.append(reinterpret_cast<unsigned char const*>(begin), static_cast<unsigned int>(end - begin));
}

/// UTF-8 as it was before it ended at U+10FFFF: six bytes hold 31 bits. Nothing is refused, since a
/// reference that vanished would hide text from later stages.
void _appendUtf8(Buffer& out, std::uint32_t value)
{
    if (value < 0x80) {
        out.append(static_cast<unsigned char>(value));
        return;
    }
    unsigned trail = 1; // each byte more holds five bits more
    while (trail < 5 && value >> (6 + 5 * trail) != 0) ++trail;
    auto const lead = static_cast<unsigned char>(0xFC << (5 - trail));
    out.append(static_cast<unsigned char>(lead | value >> (6 * trail)));
    while (trail-- > 0) out.append(static_cast<unsigned char>(0x80 | (value >> (6 * trail) & 0x3F)));
}

/// The pass itself; `left` becomes the number of bytes at the end that are not judged yet.
bool _resolve(char const* bytes, size_t n, size_t& left, Buffer& out)
{
    char const* const end = bytes + n;
    char const* copied = bytes; // up to here all is in `out`
    char const* at = bytes;
    bool replaced = false;
    out.length(0);
    left = 0;
    while (at != end) {
        at = static_cast<char const*>(std::memchr(at, '&', static_cast<size_t>(end - at)));
        if (!at) break;
        _Reference const reference = _read(at, static_cast<size_t>(end - at));
        if (reference.kind == _Reference::Cut) {
            left = static_cast<size_t>(end - at);
            break;
        }
        if (reference.kind == _Reference::Resolved) {
            _append(out, copied, at);
            _appendUtf8(out, reference.value);
            copied = at + reference.length;
            replaced = true;
        }
        at += reference.length;
    }
    if (replaced) _append(out, copied, end - left);
    return replaced;
}

bool _resolve(Buffer const& bytes, size_t& left, Buffer& out)
{
    return _resolve(reinterpret_cast<char const*>(bytes.data()), bytes.length(), left, out);
}

} // namespace

bool unicode_str_to_utf8(char* bytes, unsigned long* length, Buffer& out)
{
    size_t left = 0;
    bool const replaced = _resolve(bytes, *length, left, out);
    *length = left;
    return replaced;
}

void FilterHtmlEscapeMediaOutImpl::write(Buffer const& bytes)
{
    if (bytes.isEmpty()) return;
    if (!m_carry.isEmpty()) {
        writeCarried(bytes);
        return;
    }
    size_t left = 0;
    if (!_resolve(bytes, left, m_work)) {
        // A cut reference at the end goes as well. Signatures cover what arrives, so nobody may wait
        // for its rest.
        downstream().write(bytes);
        return;
    }
    downstream().write(m_work);
    m_carry.append(bytes.data() + (bytes.length() - left), static_cast<uint_t>(left));
}

/// What waited belongs in front.
void FilterHtmlEscapeMediaOutImpl::writeCarried(Buffer const& bytes)
{
    m_carry.append(bytes);
    size_t left = 0;
    bool const replaced = _resolve(m_carry, left, m_work);
    downstream().write(replaced ? m_work : m_carry);
    m_carry.shiftLeft(replaced ? m_carry.length() - static_cast<uint_t>(left) : m_carry.length());
}

void FilterHtmlEscapeMediaOutImpl::write(uchar_t const* bytes, uint_t n)
{
    write(Buffer(bytes, n, false));
}

void FilterHtmlEscapeMediaOutImpl::flush()
{
    if (!m_carry.isEmpty()) downstream().write(m_carry);
    m_carry.length(0);
}

void FilterHtmlEscapeMediaOutImpl::end()
{
    flush();
    MediaOutDecoratorImpl::end();
}

void FilterHtmlEscapeMediaOutImpl::attach(MediaOut const& out)
{
    flush();
    MediaOutDecoratorImpl::attach(out);
}

void FilterHtmlEscapeMediaOutImpl::detach()
{
    flush();
    MediaOutDecoratorImpl::detach();
}

FilterHtmlEscapeMediaOut::FilterHtmlEscapeMediaOut() : MediaOutDecorator(new FilterHtmlEscapeMediaOutImpl, false)
{}

FilterHtmlEscapeMediaOut::FilterHtmlEscapeMediaOut(MediaOut const& downstream)
    : MediaOutDecorator(new FilterHtmlEscapeMediaOutImpl(downstream), false)
{}

} // namespace Velmara
