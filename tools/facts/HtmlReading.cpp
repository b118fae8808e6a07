// One walk over a body carries all visitors. One of our own stands beside those of the library, so that
// every piece is told with what was in force at its place; what counts as a link or an image is left to
// theirs. The library gathers links by element here: only so is it known which element each stands in.
//
// Text is kept with the links of the anchor around it. An element can have thousands of links, a value
// that is no URI being searched for some, and the text of each would grow with the square of the
// page. So only the first few links of an element have a text.
#include "HtmlReading.h"

#include <libxml/tree.h>

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <unordered_set>

#include <velmara/HtmlImageExtract.h>
#include <velmara/HtmlTagExtract.h>
#include <velmara/HtmlTxtExtract.h>
#include <velmara/ImageProperties.h>
#include <velmara/StringOperations.h>
#include <velmara/TextHtmlDoc.h>
#include <velmara/Uri.h>

#include "Text.h"
#include "TokenText.h"
#include "Utf8.h"

namespace VelmaraCommand {

using namespace Velmara;

namespace {

constexpr size_t _mostLinksWithText = 8;

constexpr ViewName _viewNames[] = {
    {Run::Visible, "visible", "visible"},
    {Run::HiddenByColour, "colour", "hidden by colour"},
    {Run::HiddenBySize, "size", "hidden by size 0"},
    {Run::HiddenByEarlierSize, "earlier-size", "hidden by an earlier size 0"},
};

bool _isAnchor(xmlNode const* node)
{
    return node->name && stringCompareNoCase(reinterpret_cast<char const*>(node->name), "a");
}

std::string _name(xmlNode const* node)
{
    return node->name ? stringToLower(reinterpret_cast<char const*>(node->name)) : std::string();
}

/// In the order of the text, each once.
std::vector<std::string> _hostsNamedIn(std::string const& text)
{
    UriContainer found;
    UriSniffer::search(found, text, 0, true);
    std::vector<std::string> hosts;
    std::unordered_set<std::string> known;
    for (Uri const& uri : found.hrefs(0)) {
        std::string host = uri.hostname().asString();
        if (!host.empty() && known.insert(host).second) hosts.push_back(std::move(host));
    }
    return hosts;
}

Link _linkOf(std::string const& element, Uri const& uri)
{
    Link link;
    link.element = element;
    link.uri = uri.asString();
    link.host = uri.hostname().asString();
    return link;
}

void _copy(RgbColour const& from, int (&to)[3])
{
    to[0] = from.red;
    to[1] = from.green;
    to[2] = from.blue;
}

/// Notes text and links in the order of the document.
class PageReader : public HtmlDocVisitor {
public:
    PageReader(TextHtmlDoc& document, HtmlWanted const& wanted, HtmlFacts& facts)
        : m_document(document), m_wanted(wanted), m_facts(facts)
    {}

    void text(_xmlNode const* node) override
    {
        if (!node->content) return;
        std::string text = reinterpret_cast<char const*>(node->content);
        Run::View const view = present();
        if (!isBlank(text)) (view == Run::Visible ? m_facts.visibleBytes : m_facts.hiddenBytes) += text.size();
        if (view == Run::Visible && m_firstOfAnchor < m_endOfAnchor) m_anchorText += text;
        if (m_wanted.runs) m_facts.runs.push_back(runOf(std::move(text), view));
    }
    void href(_xmlNode const* node) override
    {
        addLinks(node);
        if (!_isAnchor(node)) return;
        m_firstOfAnchor = m_facts.links.size() - m_added;
        m_endOfAnchor = m_firstOfAnchor + std::min(m_added, _mostLinksWithText);
        m_anchorText.clear();
    }
    void image(_xmlNode const* node) override { addLinks(node); }
    void form(_xmlNode const* node) override { addLinks(node); }
    void background(_xmlNode const* node) override { addLinks(node); }
    void endTag(_xmlNode const* node) override
    {
        if (m_firstOfAnchor >= m_endOfAnchor || node->type != XML_ELEMENT_NODE || !_isAnchor(node)) return;
        std::vector<std::string> const hosts = _hostsNamedIn(m_anchorText);
        for (; m_firstOfAnchor < m_endOfAnchor; ++m_firstOfAnchor) {
            Link& link = m_facts.links[m_firstOfAnchor];
            link.text = m_anchorText;
            std::copy_if(hosts.begin(), hosts.end(), std::back_inserter(link.otherHosts),
                         [&](std::string const& host) { return host != link.host; });
        }
    }

private:
    Run::View present()
    {
        if (m_document.isVisible()) return Run::Visible;
        if (m_document.presentFontSize() == 0) return Run::HiddenBySize;
        return m_document.presentColour().isVisible() ? Run::HiddenByEarlierSize : Run::HiddenByColour;
    }

    Run runOf(std::string text, Run::View view) const
    {
        TextHtmlDoc::Colour const& colour = m_document.presentColour();
        Run run;
        run.view = view;
        run.text = std::move(text);
        _copy(colour.foreground, run.foreground);
        _copy(colour.background, run.background);
        run.distance = colour.foreground.distance(colour.background);
        run.size = m_document.presentFontSize();
        return run;
    }

    /// Those that the library finds in the attributes of one element.
    void addLinks(_xmlNode const* node)
    {
        m_added = 0;
        if (!m_wanted.links || !node->properties) return;
        UriContainer found;
        HtmlTxtExtract(&m_document, 0, MediaOut(), &found).href(node);
        for (Uri const& uri : found.hrefs(0)) m_facts.links.push_back(_linkOf(_name(node), uri));
        m_added = found.hrefs(0).size();
    }

    TextHtmlDoc& m_document;
    HtmlWanted const& m_wanted;
    HtmlFacts& m_facts;
    size_t m_added = 0; // links of the last element
    // of the last anchor: those of its links that get its text
    size_t m_firstOfAnchor = 0, m_endOfAnchor = 0;
    std::string m_anchorText;
};

/// Gathers the text that a reader sees, and the character set that the document declares.
class SeenText : public MediaOutImpl {
public:
    explicit SeenText(HtmlReading& reading) : m_reading(reading) {}
    using MediaOutImpl::write;
    void write(uchar_t const* bytes, uint_t n) override
    {
        m_reading.text.append(reinterpret_cast<char const*>(bytes), n);
    }
    void characterSet(std::string const& name) override { m_reading.declaredCharset = name; }

private:
    HtmlReading& m_reading;
};

/// The links that the library finds, but for those in attributes.
void _addLinksOfSource(TextHtmlDoc const& document, std::vector<Link>& links)
{
    constexpr unsigned int head = 2048;
    std::unordered_set<std::string> known;
    for (Link const& link : links) known.insert(link.uri);
    UriContainer found;
    Buffer const& source = document.html();
    UriSniffer::search(found, Buffer(source.data(), std::min(source.length(), head), false), false);
    for (Uri const& uri : found.hrefs(0))
        if (known.insert(uri.asString()).second) links.push_back(_linkOf("source", uri));
}

ShownImage _imageOf(ImageSummary const& summary)
{
    ShownImage image;
    image.source = summary.cid.value;
    image.isContentId = summary.cid.type == CID::TypeContentId;
    image.width = summary.width;
    image.height = summary.height;
    image.textLine = summary.textLine;
    image.firstInRun = summary.firstInRun;
    return image;
}

std::string _tagTokens(TDProperties& properties)
{
    return properties.descriptors().empty() ? std::string() : signatureOf(properties.descriptors()[0]->tokens());
}

Json _jsonOf(int const (&colour)[3])
{
    return Json::array({colour[0], colour[1], colour[2]});
}

} // namespace

HtmlReading readHtml(MediaIn body, HtmlWanted const& wanted)
{
    HtmlReading reading;
    TextHtmlDoc document(!wanted.heedDeclaration);
    document.characterSet(wanted.charset);
    MediaOut text(new SeenText(reading), false);
    ImageProperties images(0);
    TDProperties tags;
    auto const add = [&](HtmlDocVisitor* visitor) { document.addVisitor(Ref<HtmlDocVisitor>(visitor, false)); };
    add(new PageReader(document, wanted, reading.facts));
    add(new HtmlTxtExtract(&document, 0, text, nullptr));
    add(new HtmlTagExtract(&tags, wanted.charset));
    if (wanted.images) add(new HtmlImageExtract(&document, 0, &images));
    document.parse(&body);
    if (wanted.links) _addLinksOfSource(document, reading.facts.links);
    for (Ref<ImageSummary> const& image : images.images()) reading.facts.images.push_back(_imageOf(*image.get()));
    reading.tagTokens = _tagTokens(tags);
    return reading;
}

ViewName const& nameOf(Run::View view)
{
    return *std::find_if(std::begin(_viewNames), std::end(_viewNames), [=](auto& row) { return row.view == view; });
}

Json jsonOf(Run const& run)
{
    Json json{{"text", run.text}, {"visible", run.view == Run::Visible}};
    if (run.view != Run::Visible) json["hiddenBy"] = nameOf(run.view).name;
    json["foreground"] = _jsonOf(run.foreground);
    json["background"] = _jsonOf(run.background);
    json["distance"] = run.distance;
    json["size"] = run.size;
    return json;
}

Json jsonOf(Link const& link)
{
    Json json{{"element", link.element}, {"uri", link.uri}, {"host", link.host}};
    setIfAny(json, "text", link.text);
    if (!link.otherHosts.empty()) json["otherHosts"] = link.otherHosts;
    return json;
}

Json jsonOf(ShownImage const& image)
{
    return Json{{"source", image.source}, {"isContentId", image.isContentId}, {"width", image.width},
                {"height", image.height}, {"textLine", image.textLine},       {"firstInRun", image.firstInRun}};
}

std::string shownColour(int const (&colour)[3])
{
    return std::to_string(colour[0]) + "," + std::to_string(colour[1]) + "," + std::to_string(colour[2]);
}

std::string shownDistance(Run const& run)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.1f", run.distance);
    return text;
}

std::string folded(std::string_view text)
{
    std::string out;
    for (char c : text)
        if (!isHtmlSpace(c))
            out += c;
        else if (out.empty() || out.back() != ' ')
            out += ' ';
    return out;
}

bool isLayout(std::string_view text)
{
    return std::all_of(text.begin(), text.end(), isHtmlSpace);
}

bool isBlank(std::string_view text)
{
    constexpr char32_t invisible[] = {0xA0, 0xAD, 0x34F, 0x200B, 0x200C, 0x200D, 0x2060, 0xFEFF};
    for (Utf8Character c; !text.empty(); text.remove_prefix(c.length)) {
        if (isHtmlSpace(text.front())) {
            c.length = 1;
            continue;
        }
        c = firstCharacter(text);
        if (c.length == 0 || std::find(std::begin(invisible), std::end(invisible), c.value) == std::end(invisible))
            return false;
    }
    return true;
}

} // namespace VelmaraCommand
