// File types, patterns and replies of servers.
#include <velmara/Velmara.h>

#include "hostile/Case.h"
#include "hostile/Work.h"

namespace Velmara::Hostile {

namespace {

/// Patterns that make a search with backtracking never end.
void _matchPatterns(Input const& input, Sink& sink)
{
    static StringPattern const patterns[] = {
        {"*a*a*a*a*a*a*a*a*b", false, false}, {"*[a-z]?*[a-z]?*!", true, false},           {"(a*)*b", false, true},
        {"(a|aa)+$b", false, true},           {"^(([a-z])+.)+[A-Z]([a-z])+$", true, true}, {"(x+x+)+y", false, true},
    };
    for (StringPattern const& pattern : patterns) sink.number(pattern.matches(input.text()));
}

/// The input as the pattern itself.
void _compilePattern(Input const& input, Sink& sink)
{
    std::string const& text = input.text();
    sink.number(StringPattern(text, true, false).matches("subject"));
    sink.number(StringPattern(text, true, true).matches("subject"));
    try {
        Regex::Expression const expression(text, 0, true);
        std::vector<std::string> groups;
        sink.number(expression("subject", groups));
    } catch (Exception const& failure) {
        sink.number(failure.code());
    }
}

void _readReply(Input const& input, Sink& sink)
{
    SMTP::Response const reply(input.text());
    SMTP::EnhancedStatusCode code;
    code.value(input.text());
    for (int part :
         {reply.classValue(), reply.category(), reply.detail(), code.classValue(), code.category(), code.detail()})
        sink.number(part);
}

} // namespace

std::vector<Case> typeCases()
{
    return {
        {"type/zip-without-end", [](size_t n) { return filled(n, "PK\x03\x04", "PK\x01\x02", ""); }, detectType},
        {"type/text-of-tags", [](size_t n) { return filled(n, "", "<?xml ", ""); }, detectType},
        {"type/blanks-ahead-of-all", [](size_t n) { return filled(n, "", " ", "<html>"); }, detectType},
        {"type/line-feeds", [](size_t n) { return filled(n, "#!", "\n", ""); }, detectType},
        {"type/nul-bytes", [](size_t n) { return filled(n, "", std::string(1, '\0'), ""); }, detectType},
        {"type/name-of-dots", [](size_t n) { return filled(n, "a", ".", "tar.gz"); }, detectType},
        {"type/name-of-suffixes", [](size_t n) { return filled(n, "a", ".doc.exe", ".pdf"); }, detectType},

        {"pattern/runs-of-one-letter", [](size_t n) { return filled(n, "", "a", ""); }, _matchPatterns},
        {"pattern/two-letters-in-turn", [](size_t n) { return filled(n, "", "xa", "!"); }, _matchPatterns},
        {"pattern/stars", [](size_t n) { return filled(n, "", "*", ""); }, _compilePattern},
        {"pattern/stars-and-letters", [](size_t n) { return filled(n, "", "*a", ""); }, _compilePattern},
        {"pattern/open-brackets", [](size_t n) { return filled(n, "", "[", ""); }, _compilePattern},
        {"pattern/open-groups", [](size_t n) { return filled(n, "", "(", ""); }, _compilePattern},
        {"pattern/closed-groups", [](size_t n) { return filled(n / 2, "", "(", "a") + filled(n / 2, "", ")", ""); },
         _compilePattern},
        {"pattern/repetitions-of-repetitions", [](size_t n) { return filled(n, "a", "{9}", ""); }, _compilePattern},
        {"pattern/alternatives", [](size_t n) { return counted(n, "a", "|b{}", ""); }, _compilePattern},

        {"reply/digits", [](size_t n) { return filled(n, "550 5.1.", "1", ""); }, _readReply},
        {"reply/dots", [](size_t n) { return filled(n, "550 ", "1.", ""); }, _readReply},
        {"reply/blanks", [](size_t n) { return filled(n, "550 5.1.1", " ", "x"); }, _readReply},
        {"reply/line-ends", [](size_t n) { return filled(n, "550-5.1.1 x", "\r\n550-5.1.1 x", ""); }, _readReply},
    };
}

} // namespace Velmara::Hostile
