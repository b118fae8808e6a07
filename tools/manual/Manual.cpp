#include "Manual.h"

#include <algorithm>
#include <iostream>
#include <string_view>

namespace VelmaraManual {

namespace {

using Options = std::vector<CLI::Option const*>;
using Programs = std::vector<CLI::App const*>;

/// Text of a paragraph: what roff would take for a request or an escape stands for itself.
std::string _roff(std::string_view text)
{
    std::string out;
    bool startsLine = true;
    for (char c : text) {
        if (startsLine && (c == '.' || c == '\'')) out += "\\&";
        startsLine = c == '\n';
        switch (c) {
        case '\\':
            out += "\\e";
            break;
        case '-':
            out += "\\-";
            break;
        case '\'':
            out += "\\(aq";
            break;
        case '`':
            out += "\\(ga";
            break;
        default:
            out += c;
        }
    }
    return out;
}

std::string _inCapitals(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(), [](char c) { return c >= 'a' && c <= 'z' ? c - 32 : c; });
    return text;
}

std::string _withoutEnd(std::string text)
{
    if (!text.empty() && text.back() == '.') text.pop_back();
    return text;
}

Programs _verbsOf(CLI::App const& program)
{
    return program.get_subcommands([](CLI::App const* verb) { return !verb->get_group().empty(); });
}

Options _optionsOf(CLI::App const& program)
{
    return program.get_options([](CLI::Option const* option) { return !option->get_positional(); });
}

Options _positionalsOf(CLI::App const& program)
{
    return program.get_options([](CLI::Option const* option) { return option->get_positional(); });
}

/// "FILE...", in brackets where it may be missing.
std::string _placeOf(CLI::Option const& positional)
{
    std::string const name = positional.get_name(true) + (positional.get_expected_max() > 1 ? "..." : "");
    return positional.get_required() ? name : "[" + name + "]";
}

/// The values of an option that takes one of a few, parted by `separator`; "" of others. CLI11 tells
/// them only as a part of the type, "TEXT:{a,b}".
std::string _valuesOf(CLI::Option const& option, char separator)
{
    std::string const type = option.get_type_name();
    size_t const begin = type.find('{'), end = type.rfind('}');
    if (begin == std::string::npos || end == std::string::npos) return std::string();
    std::string values = type.substr(begin + 1, end - begin - 1);
    std::replace(values.begin(), values.end(), ',', separator);
    return values;
}

std::vector<std::string> _spellingsOf(CLI::Option const& option)
{
    std::vector<std::string> spellings;
    for (std::string const& name : option.get_snames()) spellings.push_back("-" + name);
    for (std::string const& name : option.get_lnames()) spellings.push_back("--" + name);
    return spellings;
}

/// "--as VALUE" as it heads a paragraph.
std::string _headOf(CLI::Option const& option)
{
    std::string head;
    for (std::string const& spelling : _spellingsOf(option))
        head += (head.empty() ? "\\fB" : ", \\fB") + _roff(spelling) + "\\fR";
    if (option.get_expected_max() == 0) return head; // a flag
    std::string const values = _valuesOf(option, '|'), type = option.get_type_name();
    return head + " \\fI" + _roff(values.empty() ? type.substr(0, type.find(':')) : values) + "\\fR";
}

std::string _paragraph(std::string const& head, std::string const& text)
{
    return ".TP\n" + head + "\n" + _roff(text) + "\n";
}

std::string _paragraphsOf(CLI::App const& program)
{
    std::string out;
    for (CLI::Option const* option : _positionalsOf(program))
        out += _paragraph("\\fI" + _roff(option->get_name(true)) + "\\fR", option->get_description());
    for (CLI::Option const* option : _optionsOf(program))
        out += _paragraph(_headOf(*option), option->get_description());
    return out;
}

std::string _usageOf(CLI::App const& program, std::string const& name)
{
    std::string usage = ".B " + _roff(name) + "\n";
    if (!_verbsOf(program).empty()) return usage + ".I VERB\n[\\fIOPTIONS\\fR]\n[\\fIARGUMENTS\\fR]\n";
    usage += "[\\fIOPTIONS\\fR]\n";
    for (CLI::Option const* option : _positionalsOf(program)) usage += ".I " + _roff(_placeOf(*option)) + "\n";
    return usage;
}

/// The lines of the footer, the example as it is to be typed.
std::string _footerOf(CLI::App const& program)
{
    constexpr std::string_view mark = "Example: ";
    std::string const footer = program.get_footer();
    size_t const at = footer.find(mark);
    std::string out = footer.substr(0, at).empty() ? "" : ".PP\n" + _roff(footer.substr(0, at)) + "\n";
    while (out.size() > 1 && out[out.size() - 2] == '\n') out.pop_back(); // an empty line makes a gap
    if (at == std::string::npos) return out;
    return out + ".PP\n.EX\n    " + _roff(footer.substr(at + mark.size())) + "\n.EE\n";
}

std::string _sectionOf(CLI::App const& verb)
{
    return ".SS " + _roff(verb.get_name()) + "\n" +
           _usageOf(verb, verb.get_parent()->get_name() + " " + verb.get_name()) + ".PP\n" +
           _roff(verb.get_description()) + ".\n" + _paragraphsOf(verb) + _footerOf(verb);
}

std::string _wordsOf(Options const& options)
{
    std::string words;
    for (CLI::Option const* option : options)
        for (std::string const& spelling : _spellingsOf(*option)) words += (words.empty() ? "" : " ") + spelling;
    return words;
}

/// A row of a `case`.
std::string _caseOf(std::string const& pattern, std::string const& words)
{
    return "    " + pattern + ") words='" + words + "' ;;\n";
}

std::string _inQuotes(std::string const& verb, std::string const& word)
{
    return "'" + verb + " " + word + "'";
}

/// Rows of a `case` over "VERB OPTION" for those options whose values are known.
std::string _valueRowsOf(CLI::App const& program, std::string const& verb)
{
    std::string rows;
    for (CLI::Option const* option : _optionsOf(program))
        if (std::string const values = _valuesOf(*option, ' '); !values.empty())
            for (std::string const& spelling : _spellingsOf(*option))
                rows += _caseOf(_inQuotes(verb, spelling), values);
    return rows;
}

constexpr char _endOfCompletion[] = R"(    esac
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
}
)";

/// Words that can follow: the values of an option, else options behind a "-", else verbs; no word is a file.
std::string _completionOf(CLI::App const& program, std::string const& function)
{
    bool const hasVerbs = !_verbsOf(program).empty();
    std::string names, optionRows, valueRows = _valueRowsOf(program, "");
    for (CLI::App const* verb : _verbsOf(program)) {
        names += (names.empty() ? "" : " ") + verb->get_name();
        optionRows += _caseOf(_inQuotes(verb->get_name(), "-") + '*', _wordsOf(_optionsOf(*verb)));
        valueRows += _valueRowsOf(*verb, verb->get_name());
    }
    std::string const own = _wordsOf(_optionsOf(program));
    std::string out = function + "()\n{\n    local word=${COMP_WORDS[COMP_CWORD]} words='' verb=''\n";
    if (hasVerbs)
        out += "    [ \"$COMP_CWORD\" -eq 1 ] && words='" + names + " " + own + "'\n" +
               "    [ \"$COMP_CWORD\" -gt 1 ] && verb=${COMP_WORDS[1]}\n";
    out += "    case \"$verb $word\" in\n" + optionRows;
    if (!hasVerbs) out += _caseOf(_inQuotes("", "-") + '*', own);
    return out + "    esac\n    case \"$verb ${COMP_WORDS[COMP_CWORD - 1]}\" in\n" + valueRows + _endOfCompletion;
}

} // namespace

std::string pageOf(CLI::App const& program, Manual const& manual)
{
    std::string const& name = program.get_name();
    std::string page =
        ".TH " + _inCapitals(name) + " 1 \"\" \"" + name + " " + manual.version + "\" \"User Commands\"\n";
    std::string const description = program.get_description();
    std::string const first = description.substr(0, description.find(". "));
    page +=
        ".SH NAME\n" + _roff(name) + " \\- " + _roff(_withoutEnd(first)) + "\n.SH SYNOPSIS\n" + _usageOf(program, name);
    page += ".SH DESCRIPTION\n" + _roff(description) + "\n" + _footerOf(program);
    page += ".SH OPTIONS\n" + _paragraphsOf(program);
    if (!_verbsOf(program).empty()) page += ".SH VERBS\n";
    for (CLI::App const* verb : _verbsOf(program)) page += _sectionOf(*verb);
    for (auto const& [heading, terms] : manual.sections) {
        page += ".SH " + heading + "\n";
        for (auto const& [term, text] : terms) page += _paragraph("\\fB" + _roff(term) + "\\fR", text);
    }
    return page;
}

std::string completionOf(CLI::App const& program)
{
    std::string function = "_" + program.get_name();
    std::replace(function.begin(), function.end(), '-', '_');
    return "# bash completion for " + program.get_name() + "\n" + _completionOf(program, function) +
           "complete -o default -F " + function + " " + program.get_name() + "\n";
}

bool printed(CLI::App const& program, Manual const& manual, int argc, char const* const* argv)
{
    std::string_view const word = argc == 2 ? argv[1] : "";
    if (word == "--manual")
        std::cout << pageOf(program, manual);
    else if (word == "--completion")
        std::cout << completionOf(program);
    else
        return false;
    return true;
}

} // namespace VelmaraManual
