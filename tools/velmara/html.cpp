// `velmara html`: what makes the text of an HTML part visible or hidden, where its links lead and which
// images it shows. A visitor of our own stands beside those of the library, so that every piece is told
// with what was in force at its place; what counts as a link or an image is left to theirs.
#include <libxml/tree.h>

#include <algorithm>
#include <cstdio>
#include <iostream>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <velmara/Velmara.h>

#include "Input.h"
#include "Verb.h"
#include "facts/PartPath.h"
#include "facts/Shown.h"

namespace VelmaraCommand {

namespace {

using namespace Velmara;

struct Options {
    std::vector<std::string> files;
    bool json = false;
};

enum class View { Visible, HiddenByColour, HiddenBySize, HiddenByEarlierSize };

struct ViewName {
    View view;
    char const *name, *label;
};

constexpr ViewName _viewNames[] = {
    {View::Visible, "visible", "visible"},
    {View::HiddenByColour, "colour", "hidden by colour"},
    {View::HiddenBySize, "size", "hidden by size 0"},
    {View::HiddenByEarlierSize, "earlier-size", "hidden by an earlier size 0"},
};

ViewName const& _nameOf(View view)
{
    return *std::find_if(std::begin(_viewNames), std::end(_viewNames), [=](auto& row) { return row.view == view; });
}

/// One text node with what was in force at its place.
struct Run {
    std::string text;
    View view;
    TextHtmlDoc::Colour colour;
    unsigned int size;
};

struct Link {
    std::string element; // "source": it is in no attribute
    Uri uri;
    std::string text;                    // what a reader sees of it
    std::vector<std::string> otherHosts; // that the text names
};

/// What one part comes to.
struct Page {
    std::vector<Run> runs;
    std::vector<Link> links;
    ImageProperties images{0};
};

std::string _name(xmlNode const* node)
{
    return node->name ? stringToLower(reinterpret_cast<char const*>(node->name)) : std::string();
}

std::vector<std::string> _hostsNamedIn(std::string const& text, std::string const& but)
{
    UriContainer found;
    UriSniffer::search(found, text, 0, true);
    std::vector<std::string> hosts;
    for (Uri const& uri : found.hrefs(0)) {
        std::string const host = uri.hostname().asString();
        if (!host.empty() && host != but && std::find(hosts.begin(), hosts.end(), host) == hosts.end())
            hosts.push_back(host);
    }
    return hosts;
}

/// Notes text and links in the order of the document.
class PageReader : public HtmlDocVisitor {
public:
    PageReader(TextHtmlDoc* document, Page& page) : m_document(document), m_page(page) {}

    void text(_xmlNode const* node) override
    {
        if (!node->content) return;
        std::string const text = reinterpret_cast<char const*>(node->content);
        View const view = present();
        m_page.runs.push_back(Run{text, view, m_document->presentColour(), m_document->presentFontSize()});
        if (view == View::Visible) m_anchorText += text;
    }
    void href(_xmlNode const* node) override
    {
        addLinks(node);
        if (_name(node) != "a") return;
        m_firstOfAnchor = m_page.links.size() - m_added;
        m_endOfAnchor = m_page.links.size();
        m_anchorText.clear();
    }
    void image(_xmlNode const* node) override { addLinks(node); }
    void form(_xmlNode const* node) override { addLinks(node); }
    void background(_xmlNode const* node) override { addLinks(node); }
    void endTag(_xmlNode const* node) override
    {
        if (node->type != XML_ELEMENT_NODE || _name(node) != "a") return;
        for (; m_firstOfAnchor < m_endOfAnchor; ++m_firstOfAnchor) {
            Link& link = m_page.links[m_firstOfAnchor];
            link.text = m_anchorText;
            link.otherHosts = _hostsNamedIn(link.text, link.uri.hostname().asString());
        }
    }

private:
    View present()
    {
        if (m_document->isVisible()) return View::Visible;
        if (m_document->presentFontSize() == 0) return View::HiddenBySize;
        return m_document->presentColour().isVisible() ? View::HiddenByEarlierSize : View::HiddenByColour;
    }

    /// Those that the library finds in the attributes of one element.
    void addLinks(_xmlNode const* node)
    {
        UriContainer found;
        HtmlTxtExtract(m_document, 0, MediaOut(), &found).href(node);
        for (Uri const& uri : found.hrefs(0)) m_page.links.push_back(Link{_name(node), uri, "", {}});
        m_added = found.hrefs(0).size();
    }

    TextHtmlDoc* m_document; // not owned
    Page& m_page;
    size_t m_added = 0; // links of the last element
    // of the last anchor
    size_t m_firstOfAnchor = 0, m_endOfAnchor = 0;
    std::string m_anchorText;
};

/// The links that the library finds, but for those in attributes.
void _addLinksOfSource(UriContainer const& all, std::vector<Link>& links)
{
    for (Uri const& uri : all.hrefs(0))
        if (std::none_of(links.begin(), links.end(), [&](Link const& link) { return link.uri == uri; }))
            links.push_back(Link{"source", uri, "", {}});
}

void _readPage(MediaIn body, Page& page)
{
    // As for the text of an analysis, whatever character set the document declares.
    TextHtmlDoc document(true);
    UriContainer links;
    Buffer text;
    document.addVisitor(Ref<HtmlDocVisitor>(new PageReader(&document, page), false));
    document.addVisitor(Ref<HtmlDocVisitor>(new HtmlTxtExtract(&document, 0, BufferMediaOut(text), &links), false));
    document.addVisitor(Ref<HtmlDocVisitor>(new HtmlImageExtract(&document, 0, &page.images), false));
    document.parse(&body);
    _addLinksOfSource(links, page.links);
}

std::string _asText(RgbColour const& colour)
{
    return std::to_string(colour.red) + "," + std::to_string(colour.green) + "," + std::to_string(colour.blue);
}

std::string _distanceOf(TextHtmlDoc::Colour const& colour)
{
    char text[64];
    std::snprintf(text, sizeof text, "%.1f", colour.foreground.distance(colour.background));
    return text;
}

/// White space of the source, line ends above all, as single blanks.
std::string _folded(std::string const& text)
{
    std::string out;
    for (char c : text)
        if (std::string_view(" \t\r\n").find(c) == std::string_view::npos)
            out += c;
        else if (out.empty() || out.back() != ' ')
            out += ' ';
    return shown(out);
}

void _print(Run const& run)
{
    std::string const text = _folded(run.text);
    if (text.empty() || text == " ") return; // layout of the source
    std::cout << "    " << _nameOf(run.view).label << ", " << _asText(run.colour.foreground) << " on "
              << _asText(run.colour.background) << " (distance " << _distanceOf(run.colour) << "), size " << run.size
              << ": " << _folded(run.text) << '\n';
}

void _print(Link const& link)
{
    std::string const host = link.uri.hostname().asString();
    std::cout << "    link (" << link.element << ") to " << (host.empty() ? "-" : shown(host)) << ": "
              << shown(link.uri.asString()) << '\n';
    for (std::string const& other : link.otherHosts)
        std::cout << "        its text names another host, " << shown(other) << ": " << _folded(link.text) << '\n';
}

void _print(ImageSummary const& image)
{
    std::cout << "    image " << shown(image.cid.value) << ", " << image.width << " x " << image.height << ", "
              << image.textLine << " lines of text above" << (image.firstInRun ? ", first of its run" : "") << '\n';
}

Json _jsonOf(RgbColour const& colour)
{
    return Json::array({colour.red, colour.green, colour.blue});
}

Json _jsonOf(Run const& run)
{
    Json json{{"text", run.text}, {"visible", run.view == View::Visible}};
    if (run.view != View::Visible) json["hiddenBy"] = _nameOf(run.view).name;
    json["foreground"] = _jsonOf(run.colour.foreground);
    json["background"] = _jsonOf(run.colour.background);
    json["distance"] = run.colour.foreground.distance(run.colour.background);
    json["size"] = run.size;
    return json;
}

Json _jsonOf(Link const& link)
{
    Json json{{"element", link.element}, {"uri", link.uri.asString()}, {"host", link.uri.hostname().asString()}};
    setIfAny(json, "text", link.text);
    if (!link.otherHosts.empty()) json["otherHosts"] = link.otherHosts;
    return json;
}

Json _jsonOf(ImageSummary const& image)
{
    return Json{{"source", image.cid.value},  {"isContentId", image.cid.type == CID::TypeContentId},
                {"width", image.width},       {"height", image.height},
                {"textLine", image.textLine}, {"firstInRun", image.firstInRun}};
}

Json _jsonOf(PartView const& view, Page const& page)
{
    Json json{{"path", view.path}, {"runs", Json::array()}, {"links", Json::array()}, {"images", Json::array()}};
    for (Run const& run : page.runs) json["runs"].push_back(_jsonOf(run));
    for (Link const& link : page.links) json["links"].push_back(_jsonOf(link));
    for (Ref<ImageSummary> const& image : page.images.images()) json["images"].push_back(_jsonOf(*image.get()));
    return json;
}

void _print(PartView const& view, Page const& page)
{
    std::cout << view.path << '\n';
    for (Run const& run : page.runs) _print(run);
    for (Link const& link : page.links) _print(link);
    for (Ref<ImageSummary> const& image : page.images.images()) _print(*image.get());
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
        Page page;
        if (view.part->blen() != 0) _readPage(view.part->body(true), page);
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
