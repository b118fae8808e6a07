// Eight bytes are looked at at a time. They begin with a run of ASCII, with up to four sequences of two
// bytes, or with two of three: each kind shows in a few fixed bits of the word, and the lowest bit that is
// wrong tells how far the run goes. Whatever else the word begins with is read by itself.
#include "charset/Utf8Piece.h"

#include <cstdint>
#include <cstring>

namespace Velmara {

namespace {

static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__, "the first byte is the lowest of a word");

using Word = std::uint64_t;

constexpr size_t _wordLength = sizeof(Word);

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

/// Bytes ahead of the one that holds the lowest bit of `wrong`.
unsigned int _goodBytes(Word wrong)
{
    return wrong == 0 ? _wordLength : static_cast<unsigned int>(__builtin_ctzll(wrong)) / 8;
}

unsigned int _asciiBytes(Word word)
{
    return _goodBytes(word & 0x8080808080808080u);
}

/// Sequences of two bytes at the front; C0 and C1, which begin overlong forms, are wrong ahead of them.
unsigned int _pairs(Word word)
{
    Word const form = (word & 0xC0E0C0E0C0E0C0E0u) ^ 0x80C080C080C080C0u;
    Word const above = (word & 0x001E001E001E001Eu) + 0x00FE00FE00FE00FEu; // bit 8 where the lead is above C1
    return _goodBytes(form | (~above & 0x0100010001000100u)) / 2;
}

/// Whether two sequences of three bytes stand at the front whose leads allow any second byte.
bool _areTriples(Word word)
{
    if ((word & 0x0000C0C0F0C0C0F0u) != 0x00008080E08080E0u) return false;
    auto const isPlain = [](Word lead) { return (lead & 0xF) != 0x0 && (lead & 0xF) != 0xD; };
    return isPlain(word) && isPlain(word >> 24);
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

/// Takes the run that a word begins with; false if it begins with none.
bool _takeRun(_Reader& reader)
{
    Word word;
    std::memcpy(&word, reader.at, sizeof word);
    if (unsigned int const ascii = _asciiBytes(word)) {
        reader.take(ascii, ascii);
    } else if (unsigned int const pairs = _pairs(word)) {
        reader.take(2 * pairs, pairs);
    } else {
        if (!_areTriples(word)) return false;
        reader.take(6, 2);
    }
    return true;
}

} // namespace

Utf8Piece utf8Piece(unsigned char const* bytes, size_t n, unsigned int most)
{
    _Reader reader{bytes, bytes + n, most};
    do {
        while (reader.room >= _wordLength && reader.left() >= _wordLength && _takeRun(reader)) {
        }
    } while (_takeOne(reader));
    unsigned char const* last = reader.at;
    while (last != bytes && _isTrail(*--last)) {
    }
    return {static_cast<size_t>(reader.at - bytes), most - reader.room, static_cast<size_t>(last - bytes)};
}

} // namespace Velmara
