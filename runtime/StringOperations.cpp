#include <velmara/StringOperations.h>

#include <cstring>
#include <string_view>

#include "runtime/Ascii.h"

namespace Velmara {

namespace {

std::string_view _view(char const* text)
{
    return text ? std::string_view(text) : std::string_view();
}

std::string_view _view(unsigned char const* text)
{
    return _view(reinterpret_cast<char const*>(text));
}

std::string_view _view(std::string const& text)
{
    return text;
}

/// What a comparison of at most `n` bytes looks at: strncasecmp stops at a NUL, and a pointer need not
/// lead to one within or behind these bytes.
std::string_view _beginning(char const* text, unsigned int n)
{
    return text ? std::string_view(text, strnlen(text, n)) : std::string_view();
}

std::string_view _beginning(unsigned char const* text, unsigned int n)
{
    return _beginning(reinterpret_cast<char const*>(text), n);
}

std::string_view _beginning(std::string const& text, unsigned int n)
{
    return _beginning(text.c_str(), n);
}

template <class A, class B> bool _compare(A const& a, B const& b, unsigned int n)
{
    if (n == 0) return sameNoCase(_view(a), _view(b));
    return sameNoCase(_beginning(a, n), _beginning(b, n));
}

} // namespace

bool stringCompareNoCase(char const* a, char const* b, unsigned int n)
{
    return _compare(a, b, n);
}

bool stringCompareNoCase(char const* a, std::string const& b, unsigned int n)
{
    return _compare(a, b, n);
}

bool stringCompareNoCase(std::string const& a, char const* b, unsigned int n)
{
    return _compare(a, b, n);
}

bool stringCompareNoCase(std::string const& a, std::string const& b, unsigned int n)
{
    return _compare(a, b, n);
}

bool stringCompareNoCase(unsigned char const* a, unsigned char const* b, unsigned int n)
{
    return _compare(a, b, n);
}

bool stringCompareNoCase(unsigned char const* a, char const* b, unsigned int n)
{
    return _compare(a, b, n);
}

bool stringCompareNoCase(char const* a, unsigned char const* b, unsigned int n)
{
    return _compare(a, b, n);
}

bool stringCompareNoCase(unsigned char const* a, std::string const& b, unsigned int n)
{
    return _compare(a, b, n);
}

bool stringCompareNoCase(std::string const& a, unsigned char const* b, unsigned int n)
{
    return _compare(a, b, n);
}

std::string stringToLower(std::string const& text)
{
    std::string lowered = text;
    stringToLowerNoCopy(lowered);
    return lowered;
}

void stringToLowerNoCopy(std::string& text)
{
    for (char& c : text) c = static_cast<char>(toLower(static_cast<unsigned char>(c)));
}

namespace {

void _appendLower(std::string_view from, std::string& to, unsigned long pos, unsigned long n)
{
    if (pos >= from.size()) return;
    size_t const start = to.size();
    to.append(from.substr(pos, n));
    for (size_t i = start; i < to.size(); ++i) to[i] = static_cast<char>(toLower(static_cast<unsigned char>(to[i])));
}

} // namespace

void copyStringToLower(std::string const& from, std::string& to, unsigned long pos, unsigned long n)
{
    if (&from == &to)
        _appendLower(std::string(from), to, pos, n);
    else
        _appendLower(from, to, pos, n);
}

void copyStringToLower(char const* from, std::string& to, unsigned long pos, unsigned long n)
{
    _appendLower(_view(from), to, pos, n);
}

void stringLeftTrim(std::string& text)
{
    size_t n = 0;
    while (n < text.size() && isHeaderSpace(static_cast<unsigned char>(text[n]))) ++n;
    text.erase(0, n);
}

void stringRightTrim(std::string& text)
{
    size_t n = text.size();
    while (n > 0 && isHeaderSpace(static_cast<unsigned char>(text[n - 1]))) --n;
    text.erase(n);
}

std::wstring stringToWstring(std::string const& text)
{
    std::wstring wide(text.size(), L'\0');
    for (size_t i = 0; i < text.size(); ++i) wide[i] = static_cast<unsigned char>(text[i]);
    return wide;
}

bool stringContains8bitChar(std::string const& text)
{
    for (char c : text)
        if (static_cast<unsigned char>(c) & 0x80) return true;
    return false;
}

} // namespace Velmara
