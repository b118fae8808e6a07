// The Quoted-Printable decoder. A line without "=" goes on as the caller's own buffer; from the first
// "=" on the output is built in one pass, literal runs eight bytes at a time. What a write must do
// depends on whether anything in it was an escape: only then is the built output delivered and the
// carry emptied. The result of a stream so depends on its cuts, and the header says how.
#include <velmara/CodecQuotedPrintable.h>

#include <array>
#include <cstdint>
#include <cstring>

#include <velmara/Exception.h>

#include "runtime/Ascii.h"

namespace Velmara {

namespace {

constexpr std::array<std::int32_t, 256> _hexValues()
{
    std::array<std::int32_t, 256> values{};
    for (unsigned c = 0; c < 256; ++c) values[c] = hexValue(static_cast<unsigned char>(c));
    return values;
}

constexpr unsigned int _stride = 8; // bytes copied at a time; the output has as much room to spare

/// Moves bytes up to the next "=" or the end; `in` is left there.
unsigned char* _copyLiterals(unsigned char const*& in, unsigned char const* end, unsigned char* out)
{
    constexpr std::uint64_t ones = 0x0101010101010101u, highs = 0x8080808080808080u;
    while (end - in >= static_cast<int>(_stride)) {
        std::uint64_t bytes;
        std::memcpy(&bytes, in, _stride);
        std::memcpy(out, &bytes, _stride);
        std::uint64_t const differs = bytes ^ ones * '='; // 0 where an "=" stands
        std::uint64_t const hit = (differs - ones) & ~differs & highs;
        int const literal = hit == 0 ? static_cast<int>(_stride) : __builtin_ctzll(hit) / 8;
        in += literal;
        out += literal;
        if (hit != 0) return out;
    }
    while (in != end && *in != '=') *out++ = *in++;
    return out;
}

} // namespace

class CodecQuotedPrintableImpl : public MediaOutDecoratorImpl {
public:
    CodecQuotedPrintableImpl() = default;
    explicit CodecQuotedPrintableImpl(MediaOut const& out) : MediaOutDecoratorImpl(out) {}

    void write(Buffer const& input) override;
    void write(uchar_t const* bytes, uint_t n) override { write(Buffer(bytes, n, false)); }

    /// By byte: 0 to 15 for a hexadecimal digit, else -1.
    static std::array<std::int32_t, 256> const s_QuotedPrintableValues;

private:
    /// What one pass over the bytes of a write found.
    struct Pass {
        unsigned int read;    // bytes up to an escape that the end cuts, or all
        unsigned int written; // bytes in m_work
        bool changed;         // an escape was decoded or cut, so m_work differs from the bytes
    };

    void decode(Buffer const& input);
    Pass rewrite(Buffer const& bytes);

    Buffer m_carry; // an escape cut by a seam, and what follows it until a write changes something
    Buffer m_work;  // output of one write
};

constexpr std::array<std::int32_t, 256> CodecQuotedPrintableImpl::s_QuotedPrintableValues = _hexValues();

void CodecQuotedPrintableImpl::write(Buffer const& input)
{
    try {
        decode(input);
    } catch (MediaException const&) {
        throw;
    } catch (Exception const& failure) {
        MediaException translated(__LINE__, "MessageMediaImpl", 4);
        translated.cause(failure);
        throw translated;
    }
}

void CodecQuotedPrintableImpl::decode(Buffer const& input)
{
    bool const joined = !m_carry.isEmpty();
    if (joined) m_carry.append(input);
    Buffer const& bytes = joined ? m_carry : input;
    Pass const pass = rewrite(bytes);
    if (!pass.changed) {
        // The carry is kept and so delivered again with the next write: body signatures cover what
        // arrives, so a carried "=Z" counts twice everywhere or nowhere.
        downstream().write(bytes);
        return;
    }
    if (joined)
        m_carry.shiftLeft(pass.read);
    else
        m_carry.append(bytes.data() + pass.read, bytes.length() - pass.read);
    downstream().write(m_work.data(), pass.written);
}

CodecQuotedPrintableImpl::Pass CodecQuotedPrintableImpl::rewrite(Buffer const& bytes)
{
    unsigned int const length = bytes.length();
    unsigned char const* const start = bytes.data();
    unsigned char const* const end = start + length;
    void const* const first = length == 0 ? nullptr : std::memchr(start, '=', length);
    if (!first) return {length, 0, false};

    if (m_work.size() < length + _stride) m_work.size(length + _stride);
    unsigned char* const work = m_work.data();
    auto const* in = static_cast<unsigned char const*>(first);
    size_t const prefix = static_cast<size_t>(in - start);
    std::memcpy(work, start, prefix);
    unsigned char* out = work + prefix;
    bool changed = false;
    while (in != end) {
        if (*in != '=') {
            out = _copyLiterals(in, end, out);
        } else if (end - in >= 3) {
            std::int32_t const byte = s_QuotedPrintableValues[in[1]] * 16 | s_QuotedPrintableValues[in[2]];
            bool const softBreak = in[1] == '\r' && in[2] == '\n';
            if (byte >= 0)
                *out++ = static_cast<unsigned char>(byte);
            else if (!softBreak)
                *out++ = '=';
            bool const escape = byte >= 0 || softBreak;
            changed |= escape;
            in += escape ? 3 : 1;
        } else {
            changed = true;
            // A bare LF ends a soft break only here, at the end of a write.
            if (end - in == 2 && in[1] == '\n') in = end;
            break;
        }
    }
    return {static_cast<unsigned int>(in - start), static_cast<unsigned int>(out - work), changed};
}

CodecQuotedPrintable::CodecQuotedPrintable() : MediaOut(new CodecQuotedPrintableImpl, false)
{}

CodecQuotedPrintable::CodecQuotedPrintable(MediaOut const& out) : MediaOut(new CodecQuotedPrintableImpl(out), false)
{}

} // namespace Velmara
