// `velmara html`: what makes the text of an HTML part visible or hidden, where its links lead and which
// images it shows.
#include <iostream>
#include <string>
#include <utility>

#include <velmara/Velmara.h>

#include "MessageVerb.h"
#include "facts/HtmlReading.h"
#include "facts/PartLabels.h"
#include "facts/PartPath.h"
#include "facts/Shown.h"

namespace VelmaraCommand {

namespace {

using namespace Velmara;

HtmlFacts _read(MediaIn body)
{
    HtmlWanted wanted;
    wanted.heedDeclaration = false; // as for the text of an analysis
    return readHtml(std::move(body), wanted).facts;
}

void _print(Run const& run)
{
    if (isLayout(run.text)) return;
    std::cout << "    " << nameOf(run.view).label << ", " << shownColour(run.foreground) << " on "
              << shownColour(run.background) << " (distance " << shownDistance(run) << "), size " << run.size << ": "
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

bool _isPage(PartView const& view)
{
    return view.kind == PartKind::Leaf && isHtml(ContentType(view.part->headers().find(ContentType::htype)));
}

int _showHtml(Input& input, MessageOptions const& options)
{
    Ref<Rfc822Msg> message = Rfc822Msg::parse(input.media());
    if (!options.json) printName(input, options);
    Json parts = Json::array();
    for (PartView const& view : partsFrom(finishedRootOf(*message.get()))) {
        if (!_isPage(view)) continue;
        HtmlFacts const page = view.part->blen() == 0 ? HtmlFacts() : _read(view.part->body(true));
        options.json ? parts.push_back(_jsonOf(view, page)) : _print(view, page);
    }
    if (options.json) writeJson(input, {{"parts", parts}});
    return Done;
}

} // namespace

void addHtml(CLI::App& commandLine, Action& action)
{
    MessageVerb<MessageOptions> verb(commandLine, "html",
                                     "Tell what is visible, linked and shown in the HTML of a message");
    verb->footer("Example: velmara html mail.eml");
    verb.runForEach(_showHtml, action);
}

} // namespace VelmaraCommand
