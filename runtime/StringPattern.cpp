// A glob is compiled into one element per character of the text, and matched with one place to come
// back to: the last "*" seen. What stands before that "*" is matched for good, since whatever an
// earlier "*" could take instead, the last one can take as well. So there is no recursion, and the
// cost is at most the length of the text times that of the pattern. "*a*b" finds "xaxb" by way of the
// first "a"; it never looks for a second one.
//
// Most patterns are plain names of tags and attributes: compiling one is a copy, a look-up that fails
// mostly compares two lengths.
#include <velmara/StringPattern.h>

#include <bitset>
#include <optional>
#include <string_view>

#include <velmara/Exception.h>
#include <velmara/Regex.h>

#include "runtime/Ascii.h"

namespace Velmara {

namespace {

using ByteSet = std::bitset<256>;

/// What stands for one byte of the text, or for any number of them.
struct Element {
    enum Kind { Byte, AnyByte, AnyBytes, OneOf } kind;
    unsigned char byte; // of Byte, folded if case does not count
    size_t set;         // of OneOf, an index into the sets
};

struct Glob {
    std::vector<Element> elements;
    std::vector<ByteSet> sets; // with both cases if case does not count
};

/// Reads what stands behind a "[" and gives the place behind the "]"; npos for a set that is none.
size_t _readSet(std::string_view pattern, size_t at, ByteSet& set)
{
    for (bool first = true; at < pattern.size(); first = false) {
        auto const low = static_cast<unsigned char>(pattern[at++]);
        if (low == ']' && !first) return at;
        auto high = low;
        if (pattern.size() - at >= 2 && pattern[at] == '-' && pattern[at + 1] != ']') {
            high = static_cast<unsigned char>(pattern[at + 1]);
            at += 2;
        }
        if (high < low) break;
        for (unsigned c = low; c <= high; ++c) set.set(c);
    }
    return std::string_view::npos;
}

void _addOtherCase(ByteSet& set)
{
    for (unsigned c = 'A'; c <= 'Z'; ++c) {
        bool const either = set[c] || set[toLower(static_cast<unsigned char>(c))];
        set[c] = set[toLower(static_cast<unsigned char>(c))] = either;
    }
}

/// Appends the set that begins behind a "[", and gives the place behind it.
size_t _addSet(Glob& glob, std::string_view pattern, size_t at, bool ignoreCase)
{
    bool const negated = at < pattern.size() && (pattern[at] == '!' || pattern[at] == '^');
    ByteSet set;
    at = _readSet(pattern, negated ? at + 1 : at, set);
    if (ignoreCase) _addOtherCase(set);
    glob.elements.push_back({Element::OneOf, 0, glob.sets.size()});
    glob.sets.push_back(negated ? ~set : set);
    return at;
}

std::optional<Glob> _compile(std::string_view pattern, bool ignoreCase)
{
    Glob glob;
    glob.elements.reserve(pattern.size());
    for (size_t at = 0; at < pattern.size();) {
        auto const c = static_cast<unsigned char>(pattern[at++]);
        switch (c) {
        case '*':
            glob.elements.push_back({Element::AnyBytes, 0, 0});
            break;
        case '?':
            glob.elements.push_back({Element::AnyByte, 0, 0});
            break;
        case '[':
            at = _addSet(glob, pattern, at, ignoreCase);
            break;
        default:
            glob.elements.push_back({Element::Byte, ignoreCase ? toLower(c) : c, 0});
        }
        if (at == std::string_view::npos) return std::nullopt;
    }
    return glob;
}

bool _fits(Glob const& glob, Element const& element, unsigned char c)
{
    switch (element.kind) {
    case Element::Byte:
        return element.byte == c;
    case Element::OneOf:
        return glob.sets[element.set][c];
    default:
        return true;
    }
}

bool _matches(Glob const& glob, std::string_view text, bool ignoreCase)
{
    size_t const none = glob.elements.size();
    size_t element = 0, at = 0, star = none, starAt = 0;
    while (at < text.size()) {
        auto const c = static_cast<unsigned char>(text[at]);
        if (element < none && glob.elements[element].kind == Element::AnyBytes) {
            star = element++;
            starAt = at;
        } else if (element < none && _fits(glob, glob.elements[element], ignoreCase ? toLower(c) : c)) {
            ++element;
            ++at;
        } else if (star < none) {
            element = star + 1;
            at = ++starAt;
        } else
            return false;
    }
    while (element < none && glob.elements[element].kind == Element::AnyBytes) ++element;
    return element == none;
}

} // namespace

/// A plain name where neither of the other two is there.
struct StringPattern::Alternative {
    Alternative(std::string const& pattern, bool noCase, bool isRegex) : name(pattern), ignoreCase(noCase)
    {
        if (isRegex)
            regex.emplace(pattern, noCase ? Regex::Expression::IgnoreCase : 0u, false);
        else if (pattern.find_first_of("*?[") != std::string::npos) {
            glob = _compile(pattern, noCase);
            if (!glob) throw Exception("StringPattern", 5, "StringPattern", __LINE__);
        }
    }

    bool matches(std::string_view text) const
    {
        std::vector<std::string> noGroups;
        if (regex) return (*regex)(std::string(text), noGroups);
        if (glob) return _matches(*glob, text, ignoreCase);
        return ignoreCase ? sameNoCase(name, text) : name == text;
    }

    std::string name;
    bool ignoreCase;
    std::optional<Glob> glob;
    std::optional<Regex::Expression> regex;
};

StringPattern::StringPattern() = default;

StringPattern::StringPattern(std::string const& pattern, bool ignoreCase, bool regex)
{
    try {
        m_alternatives.push_back(std::make_shared<Alternative>(pattern, ignoreCase, regex));
    } catch (Exception const&) {
        // It matches nothing, as the header says: one bad line of a data file must not cost the others.
    }
}

StringPattern::StringPattern(std::list<StringPattern> const& alternatives)
{
    for (StringPattern const& pattern : alternatives)
        m_alternatives.insert(m_alternatives.end(), pattern.m_alternatives.begin(), pattern.m_alternatives.end());
}

StringPattern::~StringPattern() = default;

bool StringPattern::matches(std::string const& text) const
{
    for (auto const& alternative : m_alternatives)
        if (alternative->matches(text)) return true;
    return false;
}

bool StringPattern::matches(unsigned char const* text) const
{
    if (!text) return false;
    std::string_view const view(reinterpret_cast<char const*>(text));
    for (auto const& alternative : m_alternatives)
        if (alternative->matches(view)) return true;
    return false;
}

} // namespace Velmara
