// `velmara html`: what makes the text of an HTML part visible or hidden, where its links lead and which
// images it shows.
#include <cstdio>
#include <iostream>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <velmara/Velmara.h>

#include "Input.h"
#include "Verb.h"
#include "facts/HtmlReading.h"
#include "facts/PartPath.h"
#include "facts/Shown.h"

namespace VelmaraCommand {

namespace {

using namespace Velmara;

struct Options {
    std::vector<std::string> files;
    bool json = false;
};

HtmlFacts _read(MediaIn body)
{
    HtmlWanted wanted;
    wanted.heedDeclaration = false; // as for the text of an analysis
    return readHtml(std::move(body), wanted).facts;
}

std::string _asText(int const (&colour)[3])
{
    return std::to_string(colour[0]) + "," + std::to_string(colour[1]) + "," + std::to_string(colour[2]);
}

std::string _distanceOf(Run const& run)
{
    char text[64];
    std::snprintf(text, sizeof text, "%.1f", run.distance);
    return text;
}

void _print(Run const& run)
{
    if (isLayout(run.text)) return;
    std::cout << "    " << nameOf(run.view).label << ", " << _asText(run.foreground) << " on "
              << _asText(run.background) << " (distance " << _distanceOf(run) << "), size " << run.size << ": "
              << shown(folded(run.text)) << '\n';
}

void _print(Link const& link)
{
    std::cout << "    link (" << link.element << ") to " << (link.host.empty() ? "-" : shown(link.host)) << ": "
              << shown(link.uri) << '\n';
    for (std::string const& other : link.otherHosts)
        std::cout << "        its text names another host, " << shown(other) << ": " << shown(folded(link.text))
                  << '\n';
}

void _print(ShownImage const& image)
{
    std::cout << "    image " << shown(image.source) << ", " << image.width << " x " << image.height << ", "
              << image.textLine << " lines of text above" << (image.firstInRun ? ", first of its run" : "") << '\n';
}

Json _jsonOf(PartView const& view, HtmlFacts const& page)
{
    Json json{{"path", view.path}, {"runs", Json::array()}, {"links", Json::array()}, {"images", Json::array()}};
    for (Run const& run : page.runs) json["runs"].push_back(jsonOf(run));
    for (Link const& link : page.links) json["links"].push_back(jsonOf(link));
    for (ShownImage const& image : page.images) json["images"].push_back(jsonOf(image));
    return json;
}

void _print(PartView const& view, HtmlFacts const& page)
{
    std::cout << view.path << '\n';
    for (Run const& run : page.runs) _print(run);
    for (Link const& link : page.links) _print(link);
    for (ShownImage const& image : page.images) _print(image);
}

bool _isHtml(PartView const& view)
{
    if (view.kind != PartKind::Leaf) return false;
    ContentType const type(view.part->headers().find(ContentType::htype));
    return !type.isNull() && type.mediatype() == ContentType::MediaTypeText &&
           type.subtype() == ContentType::SubTypeHtml;
}

void _collect(PartView const& view, std::vector<PartView>& pages)
{
    if (_isHtml(view)) pages.push_back(view);
    for (PartView const& child : childrenOf(view)) _collect(child, pages);
}

int _showHtml(Input& input, Options const& options)
{
    Ref<Rfc822Msg> message = Rfc822Msg::parse(input.media());
    std::vector<PartView> views;
    _collect(finishedRootOf(*message.get()), views);
    if (!options.json && options.files.size() > 1) std::cout << shown(input.name()) << ":\n";
    Json parts = Json::array();
    for (PartView const& view : views) {
        HtmlFacts const page = view.part->blen() == 0 ? HtmlFacts() : _read(view.part->body(true));
        options.json ? parts.push_back(_jsonOf(view, page)) : _print(view, page);
    }
    if (options.json) writeJsonLine(Json{{"file", input.name()}, {"parts", parts}});
    return Done;
}

} // namespace

void addHtml(CLI::App& commandLine, Action& action)
{
    auto options = std::make_shared<Options>();
    CLI::App* verb =
        commandLine.add_subcommand("html", "Tell what is visible, linked and shown in the HTML of a message");
    verb->add_option("FILE", options->files, "Message files; \"-\" is standard input")->required();
    verb->add_flag("--json", options->json, "One JSON object a message");
    verb->footer("Example: velmara html mail.eml");
    verb->callback([options, &action] {
        action = [options] { return forEachInput(options->files, [&](Input& in) { return _showHtml(in, *options); }); };
    });
}

} // namespace VelmaraCommand
