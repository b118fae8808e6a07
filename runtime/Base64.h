#pragma once

#include <array>
#include <cstddef>
#include <string>

/// Base64 (RFC 4648) over plain bytes; the one place that knows the alphabet.
namespace Velmara {

enum : unsigned char { Base64Padding = 64, Base64Space = 65, Base64Foreign = 66 };

/// By byte: the value 0 to 63 of a letter of the alphabet, or one of the three kinds above.
extern std::array<unsigned char, 256> const base64Kinds;

struct Base64Decoded {
    size_t read;    // characters used, up to and with the padding that ended it
    size_t written; // bytes
    bool complete;  // false: stopped by a foreign byte, or the text ended within a group of four
};

/// Decodes up to the padding, skipping white space. `out` needs room for 3 bytes for each begun group
/// of four characters, and 1 more.
Base64Decoded base64Decode(unsigned char const* in, size_t n, unsigned char* out);

struct Base64Letters {
    size_t read;    // characters used, a multiple of 4
    size_t written; // bytes
};

/// Decodes whole groups of four letters for as long as there are only such, without white space or
/// padding. The same room is needed.
Base64Letters base64DecodeLetters(unsigned char const* in, size_t n, unsigned char* out);

/// Appends `n` bytes in Base64, padded, without line ends.
void base64Encode(unsigned char const* in, size_t n, std::string& out);

} // namespace Velmara
