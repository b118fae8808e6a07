#pragma once

#include <memory>
#include <string>
#include <vector>

#include <velmara/Export.h>

namespace Velmara::Regex {

/// A compiled regular expression that searches bytes in time linear in the text, whatever the pattern.
///
/// The syntax is that of Perl without what needs backtracking: no back references, no look-around.
/// Patterns and texts are bytes, whatever their character set: "." is any byte but LF. "$" and "\z"
/// match at the end and before one LF that ends the text, so a line may still carry its line end.
///
/// Copies share the compiled pattern, which any number of threads may use at once.
class VELMARA_EXPORT Expression {
public:
    /// A flag; 0 means none. It covers the letters of Latin-1, as whose bytes patterns are read.
    static constexpr unsigned int IgnoreCase = 1;

    /// Throws Exception (code 5, the reason as string parameter) for a bad pattern. With `capture`
    /// false a search fills no groups, which makes it quicker.
    Expression(std::string const& pattern, unsigned int flags, bool capture);

    /// True if the pattern is found anywhere in `text`, at the leftmost place. `groups` then holds the
    /// whole match followed by one text for each group of the pattern, "" for a group that took no
    /// part. Without a match, and with `capture` false, it is left empty.
    bool operator()(std::string const& text, std::vector<std::string>& groups) const;

private:
    struct Compiled;
    std::shared_ptr<Compiled const> m_compiled; // never null
};

} // namespace Velmara::Regex
