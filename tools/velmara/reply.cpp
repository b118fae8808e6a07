// `velmara reply`: SMTP reply lines, classified.
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include <velmara/SmtpResponse.h>

#include "Input.h"
#include "Verb.h"
#include "facts/Shown.h"

namespace VelmaraCommand {

namespace {

using namespace Velmara;

struct Options {
    std::vector<std::string> lines;
    bool json = false;
};

std::string _dotted(SMTP::EnhancedStatusCode const& code)
{
    return std::to_string(code.classValue()) + "." + std::to_string(code.category()) + "." +
           std::to_string(code.detail());
}

void _showJson(std::string const& line, SMTP::Response const& reply)
{
    SMTP::EnhancedStatusCode const& code = reply.enhancedStatusCode();
    Json json{{"line", line},
              {"valid", reply.isValid()},
              {"class", reply.classValue()},
              {"category", reply.category()},
              {"detail", reply.detail()}};
    json["enhanced"] = nullptr;
    if (code.isPresent())
        json["enhanced"] = Json{{"class", code.classValue()}, {"category", code.category()}, {"detail", code.detail()}};
    writeJsonLine(json);
}

void _showText(std::string const& line, SMTP::Response const& reply)
{
    if (reply.isValid())
        std::cout << "class " << reply.classValue() << ", category " << reply.category() << ", detail "
                  << reply.detail();
    else
        std::cout << "not valid";
    if (reply.enhancedStatusCode().isPresent()) std::cout << ", enhanced " << _dotted(reply.enhancedStatusCode());
    std::cout << ": " << shown(line) << '\n';
}

int _classify(Options const& options)
{
    return forEachLine(options.lines, [&](std::string const& line) {
        SMTP::Response const reply(line);
        options.json ? _showJson(line, reply) : _showText(line, reply);
    });
}

} // namespace

void addReply(CLI::App& commandLine, Action& action)
{
    auto options = std::make_shared<Options>();
    CLI::App* verb = commandLine.add_subcommand("reply", "Classify SMTP reply lines");
    verb->add_option("LINE", options->lines, "Reply lines; none or \"-\" is standard input, line by line");
    verb->add_flag("--json", options->json, "One JSON object a line");
    verb->footer("Example: velmara reply '550 5.7.1 Not today'");
    verb->callback([options, &action] { action = [options] { return _classify(*options); }; });
}

} // namespace VelmaraCommand
