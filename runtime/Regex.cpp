// The end of the text is where this differs from the engine underneath, whose "$" matches at the very
// end only. A reply line is matched as it was read, line end and all, so a text that ends in LF is
// searched twice, whole and without that LF, and the match that begins first counts. Both searches
// are linear, and other texts are searched once.
#include <velmara/Regex.h>

#include <re2/re2.h>

#include <velmara/Exception.h>

namespace Velmara::Regex {

struct Expression::Compiled {
    Compiled(std::string const& pattern, RE2::Options const& options) : program(pattern, options) {}

    RE2 program;
    int wanted = 1; // the whole match and the groups that a caller gets; 0: none is asked for
};

namespace {

RE2::Options _options(unsigned int flags)
{
    RE2::Options options(RE2::Latin1);
    options.set_case_sensitive(!(flags & Expression::IgnoreCase));
    options.set_log_errors(false);
    return options;
}

using Pieces = std::vector<re2::StringPiece>;

bool _search(RE2 const& program, re2::StringPiece text, Pieces& found)
{
    return program.Match(text, 0, text.size(), RE2::UNANCHORED, found.data(), static_cast<int>(found.size()));
}

/// Of two searches, the one with the leftmost match; the whole text wins a tie.
bool _searchLine(RE2 const& program, re2::StringPiece text, Pieces& found)
{
    bool const whole = _search(program, text, found);
    if (text.empty() || text[text.size() - 1] != '\n' || (whole && found.empty())) return whole;
    Pieces shorter(found.size());
    bool const cut = _search(program, re2::StringPiece(text.data(), text.size() - 1), shorter);
    if (cut && (!whole || shorter[0].data() < found[0].data())) found.swap(shorter);
    return whole || cut;
}

} // namespace

Expression::Expression(std::string const& pattern, unsigned int flags, bool capture)
{
    auto compiled = std::make_shared<Compiled>(pattern, _options(flags));
    if (!compiled->program.ok()) {
        Exception bad("Regex::Expression", 5, "Regex", __LINE__);
        bad.stringParameter(compiled->program.error());
        throw bad;
    }
    compiled->wanted = capture ? compiled->program.NumberOfCapturingGroups() + 1 : 0;
    m_compiled = compiled;
}

bool Expression::operator()(std::string const& text, std::vector<std::string>& groups) const
{
    groups.clear();
    Pieces found(static_cast<size_t>(m_compiled->wanted));
    if (!_searchLine(m_compiled->program, text, found)) return false;
    groups.reserve(found.size());
    for (re2::StringPiece const& piece : found) groups.emplace_back(piece.data(), piece.size());
    return true;
}

} // namespace Velmara::Regex
