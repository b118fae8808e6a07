// The command for people: `velmara VERB [OPTIONS] FILE...`. It uses the public API alone. Each verb
// stands in a file of its own; this one knows their order and what all have in common.
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <exception>
#include <iostream>
#include <string>
#include <system_error>

#include <velmara/Installation.h>

#include "Input.h"
#include "Verb.h"
#include "manual/Manual.h"

namespace VelmaraCommand {
namespace {

using Velmara::Installation;

/// In the order in which `--help` shows them.
constexpr AddVerb _verbs[] = {
    addInspect, addExplain, addReport, addTree,  addBody,  addHeaders, addRoute, addDecode, addType,     addText,
    addHtml,    addTokens,  addSign,   addLinks, addReply, addScan,    addGroup, addNames,  addSelfTest,
};

/// What is wrong, and where to look. CLI11's own word for a verb that is missing or unknown is "subcommand".
int _refuse(CLI::App const& commandLine, CLI::ParseError const& error, std::string const& firstWord)
{
    auto const verbs = commandLine.get_subcommands();
    if (!verbs.empty()) {
        std::string const verb = verbs.front()->get_name();
        complain(verb, std::string(error.what()) + "; `velmara " + verb + " --help` tells more");
    } else if (firstWord.empty()) {
        complain("no verb", "write `velmara VERB ...`; `velmara --help` lists the verbs");
    } else {
        complain(firstWord, "is no verb; `velmara --help` lists the verbs");
    }
    return WrongUseOrUnreadable;
}

/// The status, unless what was printed could not be written.
int _afterFlush(int status)
{
    errno = 0;
    std::cout.flush();
    if (std::cout) return status;
    complain("standard output", errno == 0 ? "cannot be written" : std::generic_category().message(errno));
    return WrongUseOrUnreadable;
}

/// A stream that the caller closed must not become the number of a mail or of a file that is written.
void _occupyStandardStreams()
{
    for (int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        if (::fcntl(stream, F_GETFD) < 0) ::open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
}

void _describe(CLI::App& commandLine)
{
    commandLine.set_version_flag("--version", "velmara " VELMARA_VERSION, "Print the version and exit");
    commandLine.require_subcommand(1);
    commandLine.footer(
        "`velmara VERB --help` tells more of a verb. FILE may be \"-\" for standard input; \"--\" ends the options.\n"
        "Exit status: 0 done, 1 done with findings or failed messages, 2 wrong use or unreadable input.\n"
        "Example: velmara tree mail.eml");
}

/// What the man page has beyond the options.
VelmaraManual::Manual _manual()
{
    return {
        VELMARA_VERSION,
        {{"EXIT STATUS",
          {{"0", "Done. A broken mail alone is never an error."},
           {"1", "Done, with findings or with messages that failed."},
           {"2", "Wrong use, an input that could not be read, or an output that could not be written. Each file "
                 "that cannot be read gets one line on standard error, and the others are still done."}}},
         {"ENVIRONMENT",
          {{"NO_COLOR", "If it is set and not empty, no colour is used. Colour is for terminals only."}}},
         {"FILES",
          {{Installation::typeDatabase(), "The database of file types."},
           {Installation::magicFile(), "The tests of the older detector of file types."},
           {Installation::wordDirectory(), "The word lists of the semantic tokens, as velmara-dict(1) makes them."}}},
         {"SEE ALSO", {{"velmara-dict(1)", "The builder of word lists."}}}}};
}

/// The command line with all its verbs.
void _fill(CLI::App& commandLine, Action& action)
{
    _describe(commandLine);
    for (AddVerb add : _verbs) add(commandLine, action);
    for (CLI::App* verb : commandLine.get_subcommands({}))
        for (CLI::Option* option : verb->get_options())
            if (option->get_positional()) option->type_name(""); // its own name says it
}

int _run(int argc, char** argv)
{
    CLI::App commandLine("Shows what a mail is made of. Broken mail is read like any other.", "velmara");
    Action action;
    _fill(commandLine, action);
    if (VelmaraManual::printed(commandLine, _manual(), argc, argv)) return _afterFlush(Done);
    try {
        commandLine.parse(argc, argv);
    } catch (CLI::ParseError const& error) {
        if (error.get_exit_code() != 0) return _refuse(commandLine, error, argc > 1 ? argv[1] : "");
        return _afterFlush(commandLine.exit(error)); // help or version
    }
    return _afterFlush(action());
}

} // namespace
} // namespace VelmaraCommand

int main(int argc, char** argv)
{
    VelmaraCommand::_occupyStandardStreams();
    std::signal(SIGPIPE, SIG_DFL); // `velmara ... | head` ends quietly
    std::ios::sync_with_stdio(false);
    try {
        return VelmaraCommand::_run(argc, argv);
    } catch (std::exception const& error) {
        std::cerr << std::string("velmara: ") + error.what() + '\n';
        return VelmaraCommand::WrongUseOrUnreadable;
    }
}
