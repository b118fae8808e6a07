#pragma once

#include <string>
#include <string_view>

#include <velmara/Buffer.h>

/// Small questions about bytes that several rooms of the tools ask. As everywhere, nothing depends on the
/// locale. The library has such a header too, but keeps it to itself.
namespace VelmaraCommand {

/// The six of the C locale.
constexpr bool isSpace(char c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

/// Those of HTML, of which a page shows a row as one blank: the six without the vertical tab.
constexpr bool isHtmlSpace(char c)
{
    return isSpace(c) && c != '\v';
}

constexpr bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

constexpr bool startsWith(std::string_view text, std::string_view prefix)
{
    return text.substr(0, prefix.size()) == prefix;
}

constexpr bool endsWith(std::string_view text, std::string_view suffix)
{
    return text.size() >= suffix.size() && text.substr(text.size() - suffix.size()) == suffix;
}

inline std::string stringOf(Velmara::Buffer const& bytes)
{
    return std::string(reinterpret_cast<char const*>(bytes.data()), bytes.length());
}

} // namespace VelmaraCommand
