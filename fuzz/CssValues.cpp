// Colours and sizes of attributes and styles. Sizes stay on their scale, a colour is never seen on itself,
// contrast is the same from both sides, and a style leaves the same view however often it is read.
#include <cstdint>
#include <cstdlib>
#include <string>

#include <libxml/tree.h>
#include <velmara/FontSize.h>
#include <velmara/RgbColour.h>
#include <velmara/TextHtmlDoc.h>

using namespace Velmara;

namespace {

void require(bool holds)
{
    if (!holds) std::abort();
}

xmlNode textNode(std::string& text)
{
    xmlNode node{};
    node.type = XML_TEXT_NODE;
    node.content = reinterpret_cast<xmlChar*>(text.data());
    return node;
}

void colours(std::string const& text, xmlNode const& node)
{
    RgbColour const attribute(&node, true);
    CssRgbColour const style(text, true);
    require(!attribute.isVisible(attribute) && !style.isVisible(style));
    require(attribute.isVisible(style) == style.isVisible(attribute));
    require((attribute == style) == !(attribute != style));
    CssRgbColour again(text, true);
    again.parse(text, true);
    require(again == style);
}

/// The one way to a size of 0: "+-3" at a size of 3.
bool addsUpToNothing(std::string const& text, unsigned current)
{
    return text[0] == '+' && std::strtol(text.c_str() + 1, nullptr, 10) == -static_cast<long>(current);
}

void sizes(std::string const& text, xmlNode const& node, unsigned current)
{
    FontSize attribute;
    attribute.parse(&node, current);
    require(attribute.size() <= 7 && (attribute.size() >= 1 || addsUpToNothing(text, current)));
    CssFontSize style;
    style.parse(text, current);
    require(style.size() <= 7);
}

void styles(xmlNode const& node)
{
    TextHtmlDoc once(false), twice(false);
    once.parseStyle(&node);
    twice.parseStyle(&node);
    RgbColour const black(0, 0, 0), white(255, 255, 255);
    for (TextHtmlDoc* document : {&once, &twice}) document->colour(TextHtmlDoc::Colour(black, white));
    require(once.isVisible() == twice.isVisible());
    require(!twice.colour(TextHtmlDoc::Colour(white, white)));
    twice.fontsize(3);
    require(twice.colour(TextHtmlDoc::Colour(black, white)));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, size_t size)
{
    if (size == 0) return 0;
    std::string text(reinterpret_cast<char const*>(data + 1), size - 1);
    xmlNode const node = textNode(text);
    colours(text.c_str(), node);
    sizes(text.c_str(), node, data[0] % 8);
    styles(node);
    return 0;
}
