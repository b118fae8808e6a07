#pragma once

#include <string_view>

#include <velmara/Buffer.h>

namespace Velmara {

/// The content of a buffer as text; valid until the buffer changes.
inline std::string_view viewOf(Buffer const& buffer)
{
    return std::string_view(reinterpret_cast<char const*>(buffer.data()), buffer.length());
}

inline void append(Buffer& buffer, std::string_view text)
{
    buffer.append(reinterpret_cast<unsigned char const*>(text.data()), static_cast<unsigned int>(text.size()));
}

/// As a C string would show it: up to the first NUL.
inline std::string_view untilNul(std::string_view text)
{
    return text.substr(0, text.find('\0'));
}

} // namespace Velmara
