// Blocks of 32 bytes are judged at once: bit masks tell which bytes are trail bytes and which are leads of
// two, three and four, and where trail bytes must stand follows from the leads by shifts; the shifts that
// leave the block are carried into the next. Leads that restrict their second byte are rare (E0, ED, F0, F4)
// and looked at only where they occur, by more masks. The end of a text is a block filled up with NUL. Only
// what is left when a block is not well-formed, or has more units than may come, is read character by
// character.
#include "charset/Utf8Piece.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

#include <emmintrin.h>

namespace Velmara {

namespace {

static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__, "the first byte is the lowest of a word");

struct _Reader {
    unsigned char const* at;
    unsigned char const* const end;
    unsigned int room; // units that may still come

    size_t left() const { return static_cast<size_t>(end - at); }
    void take(size_t bytes, unsigned int units)
    {
        at += bytes;
        room -= units;
    }
};

using Mask = std::uint32_t; // a bit for each byte of a block

constexpr unsigned int _blockLength = 32;

struct _Block {
    __m128i low, high;

    explicit _Block(unsigned char const* bytes)
        : low(_mm_loadu_si128(reinterpret_cast<__m128i const*>(bytes))),
          high(_mm_loadu_si128(reinterpret_cast<__m128i const*>(bytes + 16)))
    {}

    template <class Test> Mask where(Test test) const
    {
        return static_cast<Mask>(_mm_movemask_epi8(test(low))) | static_cast<Mask>(_mm_movemask_epi8(test(high))) << 16;
    }
    Mask notAscii() const
    {
        return where([](__m128i bytes) { return bytes; });
    }
    Mask equal(unsigned char c) const
    {
        return where([=](__m128i bytes) { return _mm_cmpeq_epi8(bytes, _mm_set1_epi8(static_cast<char>(c))); });
    }
    /// As signed numbers, in which ASCII is above all others.
    Mask above(unsigned char c) const
    {
        return where([=](__m128i bytes) { return _mm_cmpgt_epi8(bytes, _mm_set1_epi8(static_cast<char>(c))); });
    }
    /// Leads that need a closer look, but for F0 and above.
    Mask unusual() const
    {
        return where([](__m128i bytes) {
            __m128i const overlong = _mm_cmpeq_epi8(_mm_and_si128(bytes, _mm_set1_epi8('\xFE')), _mm_set1_epi8('\xC0'));
            __m128i const e0 = _mm_cmpeq_epi8(bytes, _mm_set1_epi8('\xE0'));
            return _mm_or_si128(_mm_or_si128(overlong, e0), _mm_cmpeq_epi8(bytes, _mm_set1_epi8('\xED')));
        });
    }
};

unsigned int _bitsIn(Mask mask)
{
    mask -= mask >> 1 & 0x55555555u;
    mask = (mask & 0x33333333u) + (mask >> 2 & 0x33333333u);
    return ((mask + (mask >> 4)) & 0x0F0F0F0Fu) * 0x01010101u >> 24;
}

/// Whether unusual leads have their second byte in the block and it suits them; `four` are F0 and above.
bool _suitsUnusual(_Block const& block, Mask trails, Mask four)
{
    if ((block.equal(0xC0) | block.equal(0xC1) | (block.above(0xF4) & four)) != 0) return false;
    Mask const e0 = block.equal(0xE0), ed = block.equal(0xED), f0 = block.equal(0xF0), f4 = block.equal(0xF4);
    if (((e0 | ed | f0 | f4) >> (_blockLength - 1)) != 0) return false;
    Mask const fromA0 = trails & block.above(0x9F), from90 = trails & block.above(0x8F);
    return ((e0 << 1 & ~fromA0) | (ed << 1 & fromA0) | (f0 << 1 & ~from90) | (f4 << 1 & from90)) == 0;
}

bool _isTrail(unsigned char c)
{
    return (c & 0xC0) == 0x80;
}

/// The length of the well-formed sequence at `p`, 0 if there is none within the `left` bytes. The
/// second byte bears what excludes overlong forms, surrogates and numbers above U+10FFFF.
unsigned int _sequence(unsigned char const* p, size_t left)
{
    unsigned char const lead = p[0];
    if (lead < 0x80) return 1;
    if (lead < 0xC2 || lead > 0xF4 || left < 2) return 0;
    unsigned char const second = p[1];
    if (lead < 0xE0) return _isTrail(second) ? 2 : 0;
    if (lead < 0xF0) {
        unsigned char const lowest = lead == 0xE0 ? 0xA0 : 0x80;
        unsigned char const highest = lead == 0xED ? 0x9F : 0xBF;
        return left >= 3 && second >= lowest && second <= highest && _isTrail(p[2]) ? 3 : 0;
    }
    unsigned char const lowest = lead == 0xF0 ? 0x90 : 0x80;
    unsigned char const highest = lead == 0xF4 ? 0x8F : 0xBF;
    return left >= 4 && second >= lowest && second <= highest && _isTrail(p[2]) && _isTrail(p[3]) ? 4 : 0;
}

/// Takes one character, if there is one and it fits.
bool _takeOne(_Reader& reader)
{
    if (reader.room == 0 || reader.left() == 0) return false;
    unsigned int const length = _sequence(reader.at, reader.left());
    unsigned int const units = length == 4 ? 2 : 1;
    if (length == 0 || units > reader.room) return false;
    reader.take(length, units);
    return true;
}

_Block _nextBlock(_Reader const& reader)
{
    if (reader.left() >= _blockLength) return _Block(reader.at);
    unsigned char filled[_blockLength] = {};
    std::memcpy(filled, reader.at, reader.left());
    return _Block(filled);
}

/// The index of the bit that has `n` others below it; there are more than `n`.
unsigned int _place(Mask mask, unsigned int n)
{
    for (; n != 0; --n) mask &= mask - 1;
    return static_cast<unsigned int>(__builtin_ctz(mask));
}

/// Takes the next block, as far as its units may come; false, with nothing taken, if it is not well-formed.
/// `due` has the places of trail bytes that the blocks before it ask for, and then those that it asks of
/// the next.
bool _takeBlock(_Reader& reader, std::uint64_t& due)
{
    _Block const block = _nextBlock(reader);
    auto const n = static_cast<unsigned int>(std::min<size_t>(reader.left(), _blockLength));
    Mask const notAscii = block.notAscii();
    Mask const leads = notAscii & block.above(0xBF);
    Mask const trails = notAscii ^ leads;
    Mask const three = notAscii & block.above(0xDF);
    Mask const four = notAscii & block.above(0xEF);
    std::uint64_t const places = due | std::uint64_t(leads) << 1 | std::uint64_t(three) << 2 | std::uint64_t(four) << 3;
    if (static_cast<Mask>(places) != trails) return false;
    if ((block.unusual() | four) != 0 && !_suitsUnusual(block, trails, four)) return false;
    unsigned int const units = n - _bitsIn(trails) + (four == 0 ? 0 : _bitsIn(four));
    if (units <= reader.room) {
        reader.take(n, units);
        due = places >> _blockLength;
        return true;
    }
    if (four != 0) return false;
    reader.take(_place(~trails, reader.room), reader.room);
    due = 0;
    return true;
}

/// Takes blocks, up to the end of the last character that ends in them.
void _takeBlocks(_Reader& reader)
{
    std::uint64_t due = 0;
    while (reader.room != 0 && reader.left() != 0 && _takeBlock(reader, due)) {
    }
    if (due == 0) return;
    while (_isTrail(*--reader.at)) {
    }
    reader.room += *reader.at < 0xF0 ? 1 : 2;
}

} // namespace

Utf8Piece utf8Piece(unsigned char const* bytes, size_t n, unsigned int most)
{
    _Reader reader{bytes, bytes + n, most};
    do _takeBlocks(reader);
    while (_takeOne(reader));
    unsigned char const* last = reader.at;
    while (last != bytes && _isTrail(*--last)) {
    }
    return {static_cast<size_t>(reader.at - bytes), most - reader.room, static_cast<size_t>(last - bytes)};
}

} // namespace Velmara
