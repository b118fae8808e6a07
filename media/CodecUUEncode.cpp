#include <velmara/CodecUUEncode.h>

#include "runtime/Ascii.h"

namespace Velmara {

class CodecUUEncodeImpl : public MediaOutDecoratorImpl {
public:
    CodecUUEncodeImpl() = default;
    explicit CodecUUEncodeImpl(MediaOut const& out) : MediaOutDecoratorImpl(out) {}

    using MediaOutImpl::write;
    void write(uchar_t const* line, uint_t n) override;

private:
    enum State { BeforeBegin, InBody, Finished };

    void writeBodyLine(uchar_t const* line, uint_t n);

    State m_state = BeforeBegin;
};

namespace {

constexpr uint_t _shortestBegin = 11; // "begin 644 a"
constexpr unsigned char _lowestCount = '!';

bool _startsWith(uchar_t const* line, uint_t n, std::string_view word)
{
    return n >= word.size() && sameNoCase({reinterpret_cast<char const*>(line), word.size()}, word);
}

/// Blank and grave accent are both 0.
unsigned _valueOf(uchar_t c)
{
    return (c - 32u) % 64u;
}

/// The three bytes of a group of four characters.
void _decodeGroup(uchar_t const* group, uchar_t* out)
{
    unsigned const c0 = _valueOf(group[0]), c1 = _valueOf(group[1]), c2 = _valueOf(group[2]), c3 = _valueOf(group[3]);
    out[0] = static_cast<uchar_t>(c0 << 2 | c1 >> 4);
    out[1] = static_cast<uchar_t>(c1 << 4 | c2 >> 2);
    out[2] = static_cast<uchar_t>(c2 << 6 | c3);
}

} // namespace

void CodecUUEncodeImpl::write(uchar_t const* line, uint_t n)
{
    if (m_state == Finished) return;
    if (m_state == BeforeBegin) {
        if (n >= _shortestBegin && _startsWith(line, n, "begin ")) m_state = InBody;
    } else if (n > 3) {
        writeBodyLine(line, n);
    } else if (n == 0 || (line[0] != '\r' && line[0] != '\n')) {
        m_state = Finished; // such as "`", the usual last line of a body
    }
}

void CodecUUEncodeImpl::writeBodyLine(uchar_t const* line, uint_t n)
{
    if (_startsWith(line, n, "end") || line[0] < _lowestCount) {
        m_state = Finished;
        return;
    }
    uint_t const declared = _valueOf(line[0]);
    uchar_t bytes[63 + 2]; // whole groups are decoded; what lies past the declared count is padding
    uint_t decoded = 0;
    // A group has to end before the line does: the line end is what spares the last one.
    for (uint_t at = 1; decoded < declared && n - at > 4; at += 4, decoded += 3)
        _decodeGroup(line + at, bytes + decoded);
    if (decoded > declared) decoded = declared;
    if (decoded != 0) downstream().write(bytes, decoded);
}

CodecUUEncode::CodecUUEncode() : MediaOutDecorator(new CodecUUEncodeImpl, false)
{}

CodecUUEncode::CodecUUEncode(MediaOut const& out) : MediaOutDecorator(new CodecUUEncodeImpl(out), false)
{}

} // namespace Velmara
