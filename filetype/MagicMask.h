#pragma once

#include <algorithm>
#include <string>
#include <string_view>

#include "runtime/Ascii.h"

/// How the tests of the type database see a byte.
namespace Velmara {

/// The letter that stands for a 0 byte.
constexpr unsigned char withoutZero(unsigned char byte)
{
    return byte == 0 ? 'X' : byte;
}

/// A byte under the mask's pair of digits at `pair`; a character that is no digit counts as 0.
inline unsigned char maskByte(std::string_view mask, size_t pair)
{
    auto const nibble = [&](size_t at) {
        int const value = hexValue(static_cast<unsigned char>(mask[at]));
        return value < 0 ? 0 : value;
    };
    return static_cast<unsigned char>(nibble(pair * 2) << 4 | nibble(pair * 2 + 1));
}

/// The bytes under the mask, as many as both have; a 0 among them becomes "X".
inline std::string masked(std::string_view bytes, std::string_view mask)
{
    std::string result(std::min(bytes.size(), mask.size() / 2), '\0');
    for (size_t i = 0; i < result.size(); ++i)
        result[i] = static_cast<char>(withoutZero(static_cast<unsigned char>(bytes[i]) & maskByte(mask, i)));
    return result;
}

} // namespace Velmara
