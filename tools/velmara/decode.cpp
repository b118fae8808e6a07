// `velmara decode`: header values as a reader would see them.
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include <velmara/Velmara.h>

#include "Verb.h"
#include "facts/Shown.h"

namespace VelmaraCommand {

namespace {

using namespace Velmara;

void _decode(std::string const& text)
{
    std::cout << shown(decoded(text)) << '\n';
}

int _decodeLines()
{
    for (std::string line; std::getline(std::cin, line);) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        _decode(line);
    }
    return Done;
}

int _decodeAll(std::vector<std::string> const& texts)
{
    if (texts.empty()) return _decodeLines();
    for (std::string const& text : texts) _decode(text);
    return Done;
}

} // namespace

void addDecode(CLI::App& commandLine, Action& action)
{
    auto texts = std::make_shared<std::vector<std::string>>();
    CLI::App* verb = commandLine.add_subcommand("decode", "Decode header values with encoded words to UTF-8");
    verb->add_option("TEXT", *texts, "Values; without any, each line of standard input is one");
    verb->footer("Example: velmara decode '=?iso-8859-1?Q?Caf=E9?='");
    verb->callback([texts, &action] { action = [texts] { return _decodeAll(*texts); }; });
}

} // namespace VelmaraCommand
