// The Quoted-Printable decoder. A line without "=" goes on as the caller's own buffer; for others the
// output is built in one pass. What a write must do depends on whether anything in it was an escape:
// only then is the built output delivered and the carry emptied. The result of a stream so depends on
// its cuts, and the header says how.
//
// Mail in other scripts is escapes from end to end, so the pass is made for them: 64 bytes are
// compared with "=" at once, and the runs between are copied 32 bytes at a time whatever their length,
// for a branch on it would be guessed wrong every other time. Both read and write past what counts;
// the output has room for it, and the last bytes of a write are moved to where reading on is safe.
#include <velmara/CodecQuotedPrintable.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <memory>

#include <emmintrin.h>

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

constexpr size_t _windowLength = 64;

/// A bit for each "=" among 64 bytes, the first byte the lowest bit.
std::uint64_t _equalSigns(unsigned char const* window)
{
    std::uint64_t found = 0;
    for (unsigned at = 0; at < _windowLength; at += 16) {
        __m128i const bytes = _mm_loadu_si128(reinterpret_cast<__m128i const*>(window + at));
        auto const hits = static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(bytes, _mm_set1_epi8('='))));
        found |= static_cast<std::uint64_t>(hits) << at;
    }
    return found;
}

/// Copies up to 64 bytes, of which most times there are few: 32 always, and 32 more where needed.
/// Gives the place behind what counts.
unsigned char* _copyRun(unsigned char* out, unsigned char const* in, unsigned char const* end)
{
    constexpr long half = _windowLength / 2;
    std::memcpy(out, in, half);
    if (end - in > half) std::memcpy(out + half, in + half, half);
    return out + (end - in);
}

/// Up to 128 bytes, for which a call of memcpy or the string instruction in its place takes longer.
void _copyShort(unsigned char* out, unsigned char const* in, size_t n)
{
    constexpr size_t step = 16;
    for (size_t at = 0; n - at >= step; at += step) std::memcpy(out + at, in + at, step);
    if (n >= step)
        std::memcpy(out + n - step, in + n - step, step);
    else
        for (size_t at = 0; at < n; ++at) out[at] = in[at];
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
    struct Pass;

    void decode(Buffer const& input);
    uchar_t* workFor(size_t n);

    Buffer m_carry;                    // an escape cut by a seam, and what follows it until a write changes something
    std::unique_ptr<uchar_t[]> m_work; // output of one write
    size_t m_workSize = 0;
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

/// A walk over the bytes of a write.
struct CodecQuotedPrintableImpl::Pass {
    Pass(uchar_t const* bytes, uint_t n, uchar_t* output) : in(bytes), end(bytes + n), out(output) {}

    void run();
    void window();

    uchar_t const* in;
    uchar_t const* end;
    uchar_t* out;
    bool changed = false;              // an escape was decoded or cut, so the output differs from the bytes
    bool cut = false;                  // by the end; the escape is what stands at `in`
    uchar_t padded[4 * _windowLength]; // the last bytes, with room to read on behind them
};

void CodecQuotedPrintableImpl::Pass::run()
{
    constexpr long reach = 2 * _windowLength; // how far a window may read
    while (end - in >= reach) window();
    auto const left = static_cast<size_t>(end - in);
    _copyShort(padded, in, left);
    in = padded;
    end = padded + left;
    while (in != end && !cut) window();
}

/// Handles the next 64 bytes, and those of an escape that begins in them.
void CodecQuotedPrintableImpl::Pass::window()
{
    // Copies of the pointers, because any byte written could be one of the members to the compiler.
    uchar_t const* at = in;
    uchar_t* to = out;
    std::uint64_t marks = _equalSigns(in);
    long const length = std::min<long>(end - in, _windowLength);
    if (length < static_cast<long>(_windowLength)) marks &= (std::uint64_t(1) << length) - 1;
    uchar_t const* const windowEnd = in + length;
    bool escapes = false;
    for (; marks != 0; marks &= marks - 1) {
        uchar_t const* const mark = in + __builtin_ctzll(marks);
        to = _copyRun(to, at, mark);
        at = mark;
        if (end - at < 3) break;
        std::int32_t const byte = s_QuotedPrintableValues[at[1]] * 16 | s_QuotedPrintableValues[at[2]];
        // Branches that are guessed right, so that the next escape need not wait for this one.
        if (__builtin_expect(byte >= 0, true)) {
            *to++ = static_cast<uchar_t>(byte);
            at += 3;
            escapes = true;
        } else if (at[1] == '\r' && at[2] == '\n') {
            at += 3;
            escapes = true;
        } else {
            *to++ = *at++;
        }
    }
    if (marks != 0) {
        escapes = true;
        // A bare LF ends a soft break only here, at the end of a write.
        cut = end - at != 2 || at[1] != '\n';
        if (!cut) at = end;
    } else if (at < windowEnd) {
        to = _copyRun(to, at, windowEnd);
        at = windowEnd;
    }
    changed |= escapes;
    in = at;
    out = to;
}

void CodecQuotedPrintableImpl::decode(Buffer const& input)
{
    bool const joined = !m_carry.isEmpty();
    if (joined) m_carry.append(input);
    Buffer const& bytes = joined ? m_carry : input;
    uint_t const length = bytes.length();
    if (length == 0 || !std::memchr(bytes.data(), '=', length)) return downstream().write(bytes);

    uchar_t* const work = workFor(length);
    Pass pass(bytes.data(), length, work);
    pass.run();
    // Unchanged, the carry is kept and so delivered again with the next write: body signatures cover
    // what arrives, so a carried "=Z" counts twice everywhere or nowhere.
    if (!pass.changed) return downstream().write(bytes);
    auto const cut = static_cast<uint_t>(pass.end - pass.in);
    if (joined)
        m_carry.shiftLeft(length - cut);
    else if (cut != 0)
        m_carry.append(bytes.data() + length - cut, cut);
    downstream().write(work, static_cast<uint_t>(pass.out - work));
}

/// Room for the output of `n` bytes and for what is copied past it.
uchar_t* CodecQuotedPrintableImpl::workFor(size_t n)
{
    if (n + _windowLength > m_workSize) {
        size_t const grown = std::max(2 * m_workSize, n + _windowLength);
        m_work.reset(new uchar_t[grown]);
        m_workSize = grown;
    }
    return m_work.get();
}

CodecQuotedPrintable::CodecQuotedPrintable() : MediaOutDecorator(new CodecQuotedPrintableImpl, false)
{}

CodecQuotedPrintable::CodecQuotedPrintable(MediaOut const& out)
    : MediaOutDecorator(new CodecQuotedPrintableImpl(out), false)
{}

} // namespace Velmara
