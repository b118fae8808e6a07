// `velmara links`: the URIs of a text, each with the host that a browser would reach.
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

struct Options {
    std::vector<std::string> texts;
    bool json = false, bareNames = false;
};

void _show(Uri const& uri, bool json)
{
    std::string const host = uri.hostname().asString();
    if (json)
        writeJsonLine(Json{{"uri", uri.asString()}, {"scheme", uri.scheme()}, {"host", host}});
    else
        std::cout << (host.empty() ? "-" : shown(host)) << '\t' << shown(uri.asString()) << '\n';
}

int _links(std::vector<std::string> const& texts, Options const& options)
{
    UriContainer links;
    for (std::string const& text : texts) UriSniffer::search(links, text, 0, options.bareNames);
    for (Uri const& uri : links.hrefs(0)) _show(uri, options.json);
    return Done;
}

int _links(Options const& options)
{
    if (!options.texts.empty() && options.texts != std::vector<std::string>{"-"}) return _links(options.texts, options);
    return forEachInput({"-"}, [&](Input& in) {
        std::string text;
        in.media().read(text);
        return _links({text}, options);
    });
}

} // namespace

void addLinks(CLI::App& commandLine, Action& action)
{
    auto options = std::make_shared<Options>();
    CLI::App* verb = commandLine.add_subcommand("links", "List the links of a text with the host that each reaches");
    verb->add_option("TEXT", options->texts, "Texts; none or \"-\" is standard input");
    verb->add_flag("--json", options->json, "One JSON object a link");
    verb->add_flag("--bare-names", options->bareNames, "Host names without a scheme are links too");
    verb->footer("Example: velmara links 'see http://www.bank.example@0x7f.1/login'");
    verb->callback([options, &action] { action = [options] { return _links(*options); }; });
}

} // namespace VelmaraCommand
