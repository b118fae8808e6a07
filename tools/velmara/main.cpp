// The command for people: `velmara VERB [OPTIONS] FILE...`. It uses the public API alone. Each verb
// stands in a file of its own; this one knows their order and what all have in common.
#include <csignal>
#include <cstdio>
#include <exception>
#include <iostream>

#include "Verb.h"

namespace VelmaraCommand {
namespace {

/// In the order in which `--help` shows them.
constexpr AddVerb _verbs[] = {
    addTree, addBody,   addHeaders, addRoute, addDecode, addType,  addText,
    addHtml, addTokens, addSign,    addLinks, addReply,  addNames, addSelfTest,
};

int _run(int argc, char** argv)
{
    CLI::App commandLine("Shows what a mail is made of. Broken mail is read like any other.", "velmara");
    commandLine.set_version_flag("--version", "velmara " VELMARA_VERSION);
    commandLine.require_subcommand(1);
    commandLine.footer("`velmara VERB --help` tells more of a verb. FILE may be \"-\" for standard input.\n"
                       "Exit status: 0 done, 1 done with findings, 2 wrong use or unreadable input.");
    Action action;
    for (AddVerb add : _verbs) add(commandLine, action);
    try {
        commandLine.parse(argc, argv);
    } catch (CLI::ParseError const& error) {
        return commandLine.exit(error) == 0 ? Done : WrongUseOrUnreadable;
    }
    int const status = action();
    std::cout.flush();
    if (!std::cout) {
        std::fputs("velmara: standard output: cannot be written\n", stderr);
        return WrongUseOrUnreadable;
    }
    return status;
}

} // namespace
} // namespace VelmaraCommand

int main(int argc, char** argv)
{
    std::signal(SIGPIPE, SIG_DFL); // `velmara ... | head` ends quietly
    std::ios::sync_with_stdio(false);
    try {
        return VelmaraCommand::_run(argc, argv);
    } catch (std::exception const& error) {
        std::fprintf(stderr, "velmara: %s\n", error.what());
        return VelmaraCommand::WrongUseOrUnreadable;
    }
}
