// `velmara decode`: header values as a reader would see them.
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include <velmara/Velmara.h>

#include "Input.h"
#include "Verb.h"
#include "facts/Shown.h"

namespace VelmaraCommand {

namespace {

using namespace Velmara;

void _decode(std::string const& text)
{
    std::cout << shown(decoded(text)) << '\n';
}

} // namespace

void addDecode(CLI::App& commandLine, Action& action)
{
    auto texts = std::make_shared<std::vector<std::string>>();
    CLI::App* verb = commandLine.add_subcommand("decode", "Decode header values with encoded words to UTF-8");
    verb->add_option("TEXT", *texts, "Values; none or \"-\" is standard input, line by line");
    verb->footer("Example: velmara decode '=?iso-8859-1?Q?Caf=E9?='");
    verb->callback([texts, &action] { action = [texts] { return forEachLine(*texts, _decode); }; });
}

} // namespace VelmaraCommand
