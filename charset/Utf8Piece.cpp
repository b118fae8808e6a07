#include "charset/Utf8Piece.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace Velmara {

namespace {

/// How many of `n` bytes are ASCII ahead of the first that is not.
size_t _asciiRun(unsigned char const* bytes, size_t n)
{
    size_t at = 0;
    for (std::uint64_t word; n - at >= sizeof word; at += sizeof word) {
        std::memcpy(&word, bytes + at, sizeof word);
        if (word & 0x8080808080808080u) break;
    }
    while (at < n && bytes[at] < 0x80) ++at;
    return at;
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

} // namespace

Utf8Piece utf8Piece(unsigned char const* bytes, size_t n, unsigned int most)
{
    Utf8Piece piece{0, 0, 0};
    while (piece.units < most && piece.bytes < n) {
        unsigned char const* p = bytes + piece.bytes;
        size_t const left = n - piece.bytes;
        if (*p < 0x80) {
            size_t const run = _asciiRun(p, std::min<size_t>(left, most - piece.units));
            piece.bytes += run;
            piece.units += static_cast<unsigned int>(run);
            piece.last = piece.bytes - 1;
            continue;
        }
        unsigned int const length = _sequence(p, left);
        unsigned int const units = length == 4 ? 2 : 1;
        if (length == 0 || units > most - piece.units) break;
        piece.last = piece.bytes;
        piece.bytes += length;
        piece.units += units;
    }
    return piece;
}

} // namespace Velmara
