// `velmara report`: one message as a page for a browser, in one file that asks nobody for anything.
#include <unistd.h>

#include <iostream>
#include <memory>
#include <string>

#include "Input.h"
#include "Verb.h"
#include "facts/MessageFacts.h"
#include "facts/OutputFile.h"
#include "report/Page.h"

namespace VelmaraCommand {

namespace {

struct Options {
    std::string file, output;
};

std::string _pageOf(Input& input, MessageFacts const& facts)
{
    return pageOf(facts, thumbnailsOf(input.media(), facts.parts), input.name());
}

int _writeTo(std::string const& output, std::string const& page)
{
    if (output.empty() || output == "-") {
        std::cout << page;
        return Done;
    }
    try {
        OutputFile file(output);
        file.write(page);
        file.finish();
    } catch (Velmara::Exception const& failure) {
        complain(output, reasonOf(failure, output)); // it is not the message that is at fault
        return WrongUseOrUnreadable;
    }
    return Done;
}

int _report(Input& input, std::string const& output)
{
    Wanted wanted;
    wanted.textBytes = 16 << 10; // what the page shows of a text
    MessageFacts const facts = factsOf(input.media(), {}, wanted);
    if (int const status = _writeTo(output, _pageOf(input, facts))) return status;
    return facts.findings.empty() ? Done : DoneWithFindings;
}

int _reportTo(Options const& options)
{
    if (options.output.empty() && ::isatty(STDOUT_FILENO)) {
        complain("report", "a page is of no use on a terminal; write it to a file with -o report.html");
        return WrongUseOrUnreadable;
    }
    return forEachInput({options.file}, [&](Input& in) { return _report(in, options.output); });
}

} // namespace

void addReport(CLI::App& commandLine, Action& action)
{
    auto options = std::make_shared<Options>();
    CLI::App* verb = commandLine.add_subcommand("report", "Write a page about a message, to be looked at in a browser");
    verb->add_option("FILE", options->file, "Message file; \"-\" is standard input")->required();
    verb->add_option("-o,--output", options->output, "The page; \"-\", like nothing, is standard output")
        ->type_name("PAGE");
    verb->footer("Example: velmara report mail.eml -o report.html");
    verb->callback([options, &action] { action = [options] { return _reportTo(*options); }; });
}

} // namespace VelmaraCommand
