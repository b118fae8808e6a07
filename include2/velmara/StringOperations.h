#pragma once

#include <string>

#include <velmara/Export.h>

/// String helpers that mail needs: ASCII only, whatever the locale; other bytes are left as they are.
namespace Velmara {

/// True when equal without regard to ASCII case. With `n` 0 the whole strings are compared, otherwise
/// the first `n` bytes in the manner of strncasecmp (strings that end earlier, or at a NUL, must end
/// alike). Null pointers count as empty strings.
VELMARA_EXPORT bool stringCompareNoCase(char const* a, char const* b, unsigned int n = 0);
VELMARA_EXPORT bool stringCompareNoCase(char const* a, std::string const& b, unsigned int n = 0);
VELMARA_EXPORT bool stringCompareNoCase(std::string const& a, char const* b, unsigned int n = 0);
VELMARA_EXPORT bool stringCompareNoCase(std::string const& a, std::string const& b, unsigned int n = 0);
VELMARA_EXPORT bool stringCompareNoCase(unsigned char const* a, unsigned char const* b, unsigned int n = 0);
VELMARA_EXPORT bool stringCompareNoCase(unsigned char const* a, char const* b, unsigned int n = 0);
VELMARA_EXPORT bool stringCompareNoCase(char const* a, unsigned char const* b, unsigned int n = 0);
VELMARA_EXPORT bool stringCompareNoCase(unsigned char const* a, std::string const& b, unsigned int n = 0);
VELMARA_EXPORT bool stringCompareNoCase(std::string const& a, unsigned char const* b, unsigned int n = 0);

/// A lower-cased copy.
VELMARA_EXPORT std::string stringToLower(std::string const& text);
/// Lower-cases in place.
VELMARA_EXPORT void stringToLowerNoCopy(std::string& text);
/// Appends to `to` the `n` bytes of `from` at `pos`, lower-cased; an `n` of -1, or one that is too
/// large, means to the end, and a `pos` past the end appends nothing.
VELMARA_EXPORT void copyStringToLower(std::string const& from, std::string& to, unsigned long pos, unsigned long n);
VELMARA_EXPORT void copyStringToLower(char const* from, std::string& to, unsigned long pos, unsigned long n);

/// Remove white space (blank, tab, CR, LF) in place from one end.
VELMARA_EXPORT void stringLeftTrim(std::string& text);
VELMARA_EXPORT void stringRightTrim(std::string& text);

/// Each byte as one wide character.
VELMARA_EXPORT std::wstring stringToWstring(std::string const& text);
/// True if a byte has its high bit set.
VELMARA_EXPORT bool stringContains8bitChar(std::string const& text);

/// The smaller value, for the mixes of widths that lengths come in.
inline unsigned int min(unsigned int a, unsigned int b)
{
    return a < b ? a : b;
}
inline unsigned long min(unsigned long a, unsigned int b)
{
    return a < b ? a : b;
}
inline unsigned long min(unsigned long a, unsigned long b)
{
    return a < b ? a : b;
}

} // namespace Velmara
