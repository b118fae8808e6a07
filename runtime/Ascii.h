#pragma once

#include <cstddef>
#include <string_view>

/// The meanings of "space", "digit" and "same letter" that mail knows, each named once. None depends
/// on the locale: two installations must read a message alike.
namespace Velmara {

/// Blank and tab: what folds a header line.
constexpr bool isBlank(unsigned char c)
{
    return c == ' ' || c == '\t';
}

constexpr bool isLineEnd(unsigned char c)
{
    return c == '\r' || c == '\n';
}

/// Blank, tab, CR and LF: what trimming removes.
constexpr bool isHeaderSpace(unsigned char c)
{
    return isBlank(c) || isLineEnd(c);
}

/// The six of the C locale's isspace: those and vertical tab and form feed.
constexpr bool isCSpace(unsigned char c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

constexpr bool isDigit(unsigned char c)
{
    return c >= '0' && c <= '9';
}

constexpr bool isAlpha(unsigned char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

constexpr bool isAlnum(unsigned char c)
{
    return isAlpha(c) || isDigit(c);
}

constexpr unsigned char toLower(unsigned char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<unsigned char>(c + ('a' - 'A')) : c;
}

/// 0 to 15, or -1 for a byte that is no hexadecimal digit.
constexpr int hexValue(unsigned char c)
{
    return isDigit(c) ? c - '0' : toLower(c) >= 'a' && toLower(c) <= 'f' ? toLower(c) - 'a' + 10 : -1;
}

constexpr bool isHexDigit(unsigned char c)
{
    return hexValue(c) >= 0;
}

/// What a URI scheme consists of; it begins with a letter.
constexpr bool isSchemeByte(unsigned char c)
{
    return isAlnum(c) || c == '+' || c == '-' || c == '.';
}

/// Without the white space (blank, tab, CR, LF) at both ends.
constexpr std::string_view trimmed(std::string_view text)
{
    while (!text.empty() && isHeaderSpace(static_cast<unsigned char>(text.front()))) text.remove_prefix(1);
    while (!text.empty() && isHeaderSpace(static_cast<unsigned char>(text.back()))) text.remove_suffix(1);
    return text;
}

/// Equal without regard to ASCII case; a NUL is a byte like others.
constexpr bool sameNoCase(std::string_view a, std::string_view b)
{
    if (a.size() != b.size()) return false;
    for (size_t i = 0; i < a.size(); ++i)
        if (toLower(static_cast<unsigned char>(a[i])) != toLower(static_cast<unsigned char>(b[i]))) return false;
    return true;
}

} // namespace Velmara
