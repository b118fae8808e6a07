#pragma once

#include <cstddef>

namespace Velmara {

/// The beginning of a UTF-8 text as far as it is well-formed (RFC 3629) and fills no more than a
/// number of UTF-16 units.
struct Utf8Piece {
    size_t bytes;       // whole characters
    unsigned int units; // that they make in UTF-16
    size_t last;        // where the last character begins
};

/// Reads from the front of `n` bytes until `most` units are full, a character would not fit, or a
/// sequence is bad or cut.
Utf8Piece utf8Piece(unsigned char const* bytes, size_t n, unsigned int most);

} // namespace Velmara
