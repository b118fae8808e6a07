// Characters give six bits each, four of them three bytes; bytes are expanded by runs; what comes out
// is a queue from which first the header is taken and then the data fork. Each of the three steps
// keeps its state between writes, so behind the notice a cut may fall anywhere:
//
//     ":#&4&8e3Z9&K8..."  -- step() -->  bytes  -- expand() -->  m_data  -- takeHeader(), flush() -->
//
// The fork goes on in pieces of some 8 KB. Once it is complete (resource fork and checksums may
// follow) bytes are dropped as they come: nothing can see them.
#include <velmara/CodecBinHex40.h>

#include <array>

#include "media/BinHex.h"
#include "runtime/Ascii.h"

namespace Velmara {

class CodecBinHex40Impl : public MediaOutDecoratorImpl {
public:
    CodecBinHex40Impl() = default;
    explicit CodecBinHex40Impl(MediaOut const& out) : MediaOutDecoratorImpl(out) {}

    void write(Buffer const& input) override;
    void write(uchar_t const* bytes, uint_t n) override { write(Buffer(bytes, n, false)); }
    /// Not passed on: a chain with this stage stops the `end` here.
    void end() override { endWrite(); }

private:
    enum State { AtNotice, AtStart, InNameLength, InName, InHeader, InDataFork, Finished };
    using Bytes = uchar_t const*;

    uint_t process(Bytes bytes, uint_t n);
    static bool skipNotice(Bytes& at, Bytes end);
    void findStart(Bytes& at, Bytes end);
    void decode(Bytes& at, Bytes end, uint_t wanted);
    uint_t wantedForHeader() const;
    bool takeHeader();
    bool group(unsigned value, uchar_t& byte);
    void expand(uchar_t byte);
    void output(uchar_t byte, unsigned copies);
    void flush();
    void endWrite();

    Buffer m_carry; // input behind the notice, until the next write
    Buffer m_data;  // decoded bytes: those of the header until it is complete, then of the fork
    State m_state = AtNotice;
    bool m_marker = false;   // the last byte was the run mark
    uchar_t m_last = 0;      // the byte that a run repeats
    unsigned m_phase = 0;    // characters of the begun group
    unsigned m_bits = 0;     // of the next byte, at their place in it
    uint_t m_nameLength = 0; // once the state is InName
    uint_t m_dataLeft = 0;   // of the fork, to deliver; once the state is InDataFork
};

namespace {

enum : unsigned char { _EndMark = 253, _Skip = 254, _Invalid = 255 };

constexpr std::array<unsigned char, 256> _makeValues()
{
    std::array<unsigned char, 256> values{};
    for (unsigned char& value : values) value = _Invalid;
    for (unsigned v = 0; v < 64; ++v)
        values[static_cast<unsigned char>(binHexAlphabet[v])] = static_cast<unsigned char>(v);
    for (unsigned char space : {' ', '\t', '\r', '\n'}) values[space] = _Skip;
    values[binHexEndMark] = _EndMark;
    return values;
}

constexpr auto _values = _makeValues();

constexpr uint_t _pieceLength = 8192;
constexpr uint_t _unlimited = ~0u;

uint_t _bigEndian32(unsigned char const* p)
{
    return uint_t(p[0]) << 24 | uint_t(p[1]) << 16 | uint_t(p[2]) << 8 | p[3];
}

} // namespace

void CodecBinHex40Impl::write(Buffer const& input)
{
    if (m_state == Finished) return;
    if (m_carry.isEmpty()) {
        uint_t const used = process(input.data(), input.length());
        m_carry.append(input.data() + used, input.length() - used);
        return;
    }
    m_carry.append(input);
    m_carry.shiftLeft(process(m_carry.data(), m_carry.length()));
}

/// Gives the number of bytes used: all of them, but for what follows the notice.
uint_t CodecBinHex40Impl::process(Bytes bytes, uint_t n)
{
    Bytes at = bytes;
    Bytes const end = bytes + n;
    if (m_state == AtNotice) {
        bool const found = skipNotice(at, end);
        m_state = AtStart;
        if (found) return static_cast<uint_t>(at - bytes);
    }
    if (m_state == AtStart) findStart(at, end);
    while (m_state > AtStart && m_state < InDataFork) {
        decode(at, end, wantedForHeader());
        if (!takeHeader()) break;
    }
    if (m_state == InDataFork) decode(at, end, _unlimited);
    return n;
}

/// Moves `at` behind white space, and behind a notice and the line ends after it if there is one.
bool CodecBinHex40Impl::skipNotice(Bytes& at, Bytes end)
{
    while (at != end && isCSpace(*at)) ++at;
    if (static_cast<size_t>(end - at) < binHexNotice.size()) return false;
    if (!sameNoCase({reinterpret_cast<char const*>(at), binHexNotice.size()}, binHexNotice)) return false;
    Bytes lineEnd = at + binHexNotice.size();
    while (lineEnd != end && *lineEnd != 0 && !isLineEnd(*lineEnd)) ++lineEnd;
    if (lineEnd == end || *lineEnd == 0) return false;
    while (lineEnd != end && isLineEnd(*lineEnd)) ++lineEnd;
    at = lineEnd;
    return true;
}

void CodecBinHex40Impl::findStart(Bytes& at, Bytes end)
{
    while (at != end && isCSpace(*at)) ++at;
    if (at == end) return;
    m_state = *at == binHexEndMark ? InNameLength : Finished;
    ++at;
}

uint_t CodecBinHex40Impl::wantedForHeader() const
{
    switch (m_state) {
    case InNameLength:
        return 1;
    case InName:
        return m_nameLength + 2; // with its length byte and the version
    default:
        return binHexFixedHeader;
    }
}

/// Goes to the next state if m_data holds what the present one waits for. A run may have given more,
/// which then belongs to what follows.
bool CodecBinHex40Impl::takeHeader()
{
    if (m_state == Finished || m_data.length() < wantedForHeader()) return false;
    switch (m_state) {
    case InNameLength:
        m_nameLength = m_data.at(0);
        m_state = InName;
        break;
    case InName:
        m_data.shiftLeft(m_nameLength + 2);
        m_state = InHeader;
        break;
    default:
        m_dataLeft = _bigEndian32(m_data.data() + binHexDataLengthAt);
        m_data.shiftLeft(binHexFixedHeader);
        m_state = InDataFork;
    }
    return true;
}

/// Decodes until m_data holds `wanted` bytes or the stream is finished.
void CodecBinHex40Impl::decode(Bytes& at, Bytes end, uint_t wanted)
{
    while (at != end && m_data.length() < wanted) {
        unsigned char const value = _values[*at++];
        uchar_t byte;
        if (value < 64) {
            if (group(value, byte)) expand(byte);
        } else if (value != _Skip) {
            endWrite();
            m_state = Finished;
            at = end;
        }
    }
}

/// Adds six bits; true if they complete a byte.
bool CodecBinHex40Impl::group(unsigned value, uchar_t& byte)
{
    // Of the six bits, those that complete the byte in the making, and those kept for the next one.
    constexpr struct {
        unsigned completing, keptUp;
    } shifts[] = {{6, 2}, {4, 4}, {2, 6}, {0, 8}};
    byte = static_cast<uchar_t>(m_bits | value >> shifts[m_phase].completing);
    bool const complete = m_phase != 0;
    m_bits = value << shifts[m_phase].keptUp & 0xff;
    m_phase = (m_phase + 1) % 4;
    return complete;
}

void CodecBinHex40Impl::expand(uchar_t byte)
{
    if (!m_marker) {
        if (byte == binHexRunMark)
            m_marker = true;
        else
            output(m_last = byte, 1);
        return;
    }
    m_marker = false;
    if (byte == 0)
        output(m_last = binHexRunMark, 1);
    else
        output(m_last, byte - 1u); // one of them has been put out already
}

void CodecBinHex40Impl::output(uchar_t byte, unsigned copies)
{
    if (m_state == InDataFork && m_dataLeft == 0) return;
    for (; copies > 0; --copies) m_data.append(byte);
    if (m_state == InDataFork && m_data.length() >= _pieceLength) flush();
}

void CodecBinHex40Impl::flush()
{
    if (m_dataLeft == 0 || m_data.isEmpty()) return;
    if (m_dataLeft < m_data.length()) m_data.length(m_dataLeft); // what follows is the checksum
    m_dataLeft -= m_data.length();
    downstream().write(m_data);
    m_data.length(0);
}

void CodecBinHex40Impl::endWrite()
{
    if (m_state == InDataFork) flush();
}

CodecBinHex40::CodecBinHex40() : MediaOutDecorator(new CodecBinHex40Impl, false)
{}

CodecBinHex40::CodecBinHex40(MediaOut const& out) : MediaOutDecorator(new CodecBinHex40Impl(out), false)
{}

} // namespace Velmara
