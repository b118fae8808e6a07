// Globs against a plain reading that tries each length of each "*"; expressions either match or are refused
// with one code. A set of patterns matches what one of them does.
#include <cstdint>
#include <cstdlib>
#include <list>
#include <string>

#include <velmara/Exception.h>
#include <velmara/Regex.h>
#include <velmara/StringPattern.h>

using namespace Velmara;

namespace {

void require(bool holds)
{
    if (!holds) std::abort();
}

unsigned char lower(char c)
{
    return static_cast<unsigned char>(c >= 'A' && c <= 'Z' ? c + 32 : c);
}

bool same(char a, char b, bool ignoreCase)
{
    return ignoreCase ? lower(a) == lower(b) : a == b;
}

bool lies(unsigned char c, unsigned char low, unsigned char high)
{
    return c >= low && c <= high;
}

/// The length of the set that begins here, 0 if it is none; whether a byte is in it.
std::size_t set(std::string const& pattern, std::size_t begin, char byte, bool ignoreCase, bool& in)
{
    std::size_t at = begin + 1;
    bool const negated = at < pattern.size() && (pattern[at] == '!' || pattern[at] == '^');
    if (negated) ++at;
    std::size_t const first = at;
    bool found = false;
    auto const c = static_cast<unsigned char>(byte);
    for (; at < pattern.size(); ++at) {
        if (pattern[at] == ']' && at != first) {
            in = found != negated;
            return at + 1 - begin;
        }
        auto const low = static_cast<unsigned char>(pattern[at]);
        auto high = low;
        if (at + 2 < pattern.size() && pattern[at + 1] == '-' && pattern[at + 2] != ']') {
            high = static_cast<unsigned char>(pattern[at + 2]);
            at += 2;
        }
        if (high < low) return 0;
        found = found || lies(c, low, high);
        if (!ignoreCase) continue;
        unsigned char const small = lower(byte);
        bool const isLetter = small >= 'a' && small <= 'z';
        if (isLetter)
            found = found || lies(small, low, high) || lies(static_cast<unsigned char>(small - 32), low, high);
    }
    return 0;
}

bool isGlob(std::string const& pattern)
{
    bool in = false;
    for (std::size_t at = 0; at < pattern.size();) {
        std::size_t const length = pattern[at] == '[' ? set(pattern, at, 'a', false, in) : 1;
        if (length == 0) return false;
        at += length;
    }
    return true;
}

bool plain(std::string const& pattern, std::size_t p, std::string const& text, std::size_t t, bool ignoreCase)
{
    if (p == pattern.size()) return t == text.size();
    if (pattern[p] == '*') {
        for (std::size_t end = t; end <= text.size(); ++end)
            if (plain(pattern, p + 1, text, end, ignoreCase)) return true;
        return false;
    }
    if (t == text.size()) return false;
    bool in = true;
    std::size_t length = 1;
    if (pattern[p] == '[')
        length = set(pattern, p, text[t], ignoreCase, in);
    else if (pattern[p] != '?')
        in = same(pattern[p], text[t], ignoreCase);
    return in && plain(pattern, p + length, text, t + 1, ignoreCase);
}

void checkGlob(std::string const& pattern, std::string const& text, bool ignoreCase)
{
    StringPattern const glob(pattern, ignoreCase, false);
    bool const expected = isGlob(pattern) && plain(pattern, 0, text, 0, ignoreCase);
    require(glob.matches(text) == expected);
    std::string const ended = text.c_str();
    if (ended == text) require(glob.matches(reinterpret_cast<unsigned char const*>(text.c_str())) == expected);
    StringPattern const both(std::list<StringPattern>{StringPattern("x?", false, false), glob, StringPattern()});
    require(both.matches(text) == (expected || (text.size() == 2 && text[0] == 'x')));
}

void checkExpression(std::string const& pattern, std::string const& text, bool ignoreCase)
{
    StringPattern const searched(pattern, ignoreCase, true);
    try {
        Regex::Expression const expression(pattern, ignoreCase ? Regex::Expression::IgnoreCase : 0, true);
        std::vector<std::string> groups;
        bool const found = expression(text, groups);
        require(found == !groups.empty());
        require(!found || text.find(groups[0]) != std::string::npos);
        require(searched.matches(text) == found);
    } catch (Exception const& refusal) {
        require(refusal.code() == 5 && searched.isNull() && !searched.matches(text));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t n)
{
    // Each "*" multiplies the time of the plain way.
    if (n < 2 || n > 60) return 0;
    bool const ignoreCase = data[0] & 1;
    std::size_t const cut = std::min<std::size_t>(data[0] >> 1, n - 1);
    std::string const all(reinterpret_cast<char const*>(data) + 1, n - 1);
    std::string pattern = all.substr(0, cut);
    std::string const text = all.substr(cut);
    checkExpression(pattern, text, ignoreCase);
    int stars = 0;
    for (char& c : pattern)
        if (c == '*' && ++stars > 3) c = '?';
    checkGlob(pattern, text, ignoreCase);
    return 0;
}
