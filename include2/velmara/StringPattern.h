#pragma once

#include <list>
#include <memory>
#include <string>
#include <vector>

#include <velmara/Export.h>

namespace Velmara {

/// A compiled set of patterns for names: of files, tags, attributes.
///
/// A glob covers the whole text: "*" is any bytes, "?" any one byte, "[a-z]" one of a set, "[!a-z]" or
/// "[^a-z]" one outside it; a "]" right behind the opening stands for itself, and a back slash is an
/// ordinary character. A regular expression (see Regex::Expression) is found anywhere in the text.
/// Without regard to case means ASCII letters (in an expression, those of Latin-1). What cannot be compiled (an
/// unclosed or backward set, a bad expression) matches nothing and throws nothing: patterns come out of data files, and
/// one bad line must not cost the others.
///
/// Copies share the compiled form, which any number of threads may use at once.
class VELMARA_EXPORT StringPattern {
public:
    /// Null: matches nothing.
    StringPattern();
    StringPattern(std::string const& pattern, bool ignoreCase, bool regex);
    /// Matches what any of these matches; an empty list matches nothing.
    StringPattern(std::list<StringPattern> const& alternatives);
    StringPattern(StringPattern const&) = default;
    StringPattern& operator=(StringPattern const&) = default;
    virtual ~StringPattern();

    /// Without a pattern, be it one that could not be compiled.
    bool isNull() const { return m_alternatives.empty(); }

    /// Whether one of the patterns fits; none fits where there is none.
    bool matches(std::string const& text) const;
    /// Up to the NUL; a null pointer matches nothing.
    bool matches(unsigned char const* text) const;

private:
    struct Alternative;
    std::vector<std::shared_ptr<Alternative const>> m_alternatives;
};

} // namespace Velmara
