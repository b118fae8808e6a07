// What a reader sees is worked out from two values alone, the pair of colours and the font size that
// were set last. Nothing goes back at an end tag: a mail client would do so, but text hidden by one
// element and shown by none is what statistics of installations count, and all have to count alike.
// `<font color=white>a</font>b` hides "a" and "b"; `<font size=0>` hides nothing, for 0 reads as 1
// there, while `style="font-size:0"` does.
#include <velmara/TextHtmlDoc.h>

#include <velmara/FontSize.h>
#include <velmara/StringOperations.h>

#include <algorithm>
#include <list>
#include <optional>
#include <string_view>

#include "html/Node.h"

namespace Velmara {

namespace {

constexpr unsigned int _maxLength = 150000;
constexpr unsigned int _initialSize = 4096;
constexpr unsigned int _blockSize = 1024;

RgbColour const _black(0, 0, 0);
RgbColour const _white(255, 255, 255);

char const* _bodyAndTable[] = {"body", "table", "tr", "th", "td", nullptr};

/// The expression reaches beyond headings: `hr` is a line break as well.
StringPattern s_createReplaceSFPattern()
{
    return StringPattern(std::list<StringPattern>{StringPattern("br", true, false), StringPattern("^h.$", true, true),
                                                  StringPattern("p", true, false)});
}

/// No longer name can match, and most names are longer.
bool _beginsLine(_xmlNode const* node)
{
    return HTML::name(node).size() <= 2 && ReplaceWithLF::instance().matches(node->name);
}

/// No longer name can match.
bool _hasBackground(_xmlNode const* node)
{
    return HTML::name(node).size() <= 5 && BodyOrTablePattern::instance().matches(node->name);
}

/// What stands from a position up to the next ";", trimmed.
std::string s_cssValue(unsigned long position, std::string const& style)
{
    std::string value = style.substr(position, style.find(';', position) - position);
    stringLeftTrim(value);
    stringRightTrim(value);
    return value;
}

/// The value behind a key of a style, if the key is there.
std::optional<std::string> _styleValue(std::string const& style, std::string const& key)
{
    size_t const at = style.find(key);
    if (at == std::string::npos) return std::nullopt;
    return s_cssValue(at + key.size(), style);
}

std::optional<RgbColour> _styleColour(std::string const& style, char const* key)
{
    std::optional<std::string> const value = _styleValue(style, key);
    if (!value) return std::nullopt;
    return CssRgbColour(*value, true);
}

RgbColour const* _pointer(std::optional<RgbColour> const& colour)
{
    return colour ? &*colour : nullptr;
}

} // namespace

BodyOrTablePattern::BodyOrTablePattern() : StringPattern(HTML::stringPatternFactory(_bodyAndTable))
{}

BodyOrTablePattern::~BodyOrTablePattern() = default;

ReplaceWithLF::ReplaceWithLF() : StringPattern(s_createReplaceSFPattern())
{}

ReplaceWithLF::~ReplaceWithLF() = default;

TextHtmlDoc::Colour::Colour(RgbColour const& f, RgbColour const& b) : foreground(f), background(b)
{}

TextHtmlDoc::Colour::~Colour() = default;

TextHtmlDoc::TextHtmlDoc(bool ignoreEncoding) : m_html(_initialSize, 0), m_ignoreEncoding(ignoreEncoding)
{
    m_html.maxSize(_maxLength);
}

TextHtmlDoc::TextHtmlDoc(Buffer& html, bool ignoreEncoding) : TextHtmlDoc(ignoreEncoding)
{
    m_html.append(html);
}

TextHtmlDoc::~TextHtmlDoc() = default;

void TextHtmlDoc::addVisitor(Ref<HtmlDocVisitor> const& visitor)
{
    if (!visitor.isNull()) m_visitors.push_back(visitor);
}

void TextHtmlDoc::write(uchar_t const* data, uint_t size)
{
    m_html.append(data, size);
}

void TextHtmlDoc::end()
{
    HTML::Parser::parseAll(*this, m_ignoreEncoding, m_html, m_charset.c_str());
    for (Ref<HtmlDocVisitor> const& visitor : m_visitors) visitor->done();
}

void TextHtmlDoc::characterSet(std::string const& name)
{
    m_charset = name;
}

void TextHtmlDoc::parse(MediaIn* in)
{
    Buffer block(_blockSize, 0);
    // The size is told, and the block alone tells the end: streams of callers know no more than that.
    for (;;) {
        block.length(0);
        in->read(block, _blockSize);
        if (block.isEmpty()) break;
        m_html.append(block);
    }
    end();
}

bool TextHtmlDoc::isVisible()
{
    if (m_visibility == Unknown) m_visibility = m_colour.isVisible() ? Visible : Hidden;
    // What is left behind here outlives the size, until a colour is set.
    if (m_fontSize == 0) m_visibility = Hidden;
    return m_visibility == Visible;
}

void TextHtmlDoc::foundTag(_xmlNode const* node)
{
    tag(node);
}

void TextHtmlDoc::endTag(_xmlNode const* node)
{
    for_each_call(&HtmlDocVisitor::endTag, node);
}

void TextHtmlDoc::foundText(_xmlNode const* node)
{
    for_each_call(&HtmlDocVisitor::text, node);
}

void TextHtmlDoc::foundCdata(_xmlNode const* node)
{
    for_each_call(&HtmlDocVisitor::cdata, node);
}

void TextHtmlDoc::foundComment(_xmlNode const* node)
{
    for_each_call(&HtmlDocVisitor::comment, node);
}

struct TextHtmlDoc::Kind {
    std::string_view name;
    void (TextHtmlDoc::*action)(_xmlNode const*);
};

TextHtmlDoc::Kind const TextHtmlDoc::s_kinds[] = {
    {"a", &TextHtmlDoc::href},    {"area", &TextHtmlDoc::href}, {"base", &TextHtmlDoc::href},
    {"big", &TextHtmlDoc::big},   {"body", &TextHtmlDoc::body}, {"embed", &TextHtmlDoc::image},
    {"font", &TextHtmlDoc::font}, {"form", &TextHtmlDoc::form}, {"frame", &TextHtmlDoc::image},
    {"img", &TextHtmlDoc::image}, {"meta", &TextHtmlDoc::meta}, {"small", &TextHtmlDoc::small},
    {"span", &TextHtmlDoc::span},
};

void TextHtmlDoc::tag(_xmlNode const* node)
{
    auto const kind = std::find_if(std::begin(s_kinds), std::end(s_kinds),
                                   [node](Kind const& row) { return HTML::isNamed(node, row.name); });
    if (kind != std::end(s_kinds))
        (this->*kind->action)(node);
    else if (_beginsLine(node))
        for_each_call(&HtmlDocVisitor::ignore, node);
    else if (_hasBackground(node))
        colour(node);
    else
        for_each_call(&HtmlDocVisitor::node, node);
    for_each_call(&HtmlDocVisitor::tags, node);
}

void TextHtmlDoc::big(_xmlNode const*)
{
    if (m_fontSize <= 6) fontsize(m_fontSize + 1);
}

void TextHtmlDoc::small(_xmlNode const*)
{
    if (m_fontSize >= 2) fontsize(m_fontSize - 1);
}

void TextHtmlDoc::body(_xmlNode const* node)
{
    m_bodySeen = true;
    colour(node);
}

void TextHtmlDoc::meta(_xmlNode const* node)
{
    if (!m_bodySeen) for_each_call(&HtmlDocVisitor::meta, node);
}

void TextHtmlDoc::href(_xmlNode const* node)
{
    for_each_call(&HtmlDocVisitor::href, node);
}

void TextHtmlDoc::image(_xmlNode const* node)
{
    for_each_call(&HtmlDocVisitor::image, node);
}

void TextHtmlDoc::form(_xmlNode const* node)
{
    for_each_call(&HtmlDocVisitor::form, node);
}

void TextHtmlDoc::span(_xmlNode const* node)
{
    bool reset = false;
    HTML::forEachAttribute(node, [&](xmlAttr const* attribute) {
        if (HTML::isNamed(attribute, "style") && attribute->children)
            parseStyle(attribute->children);
        else if (HTML::isNamed(attribute, "class") || HTML::isNamed(attribute, "id"))
            reset = true;
        if (!reset) return;
        // A style sheet would decide now, and we have none: back to the default view.
        colour(Colour(_black, _white));
        fontsize(3);
    });
}

void TextHtmlDoc::font(_xmlNode const* node)
{
    HTML::forEachAttribute(node, [&](xmlAttr const* attribute) {
        _xmlNode const* value = attribute->children;
        if (HTML::isNamed(attribute, "size") && value) {
            FontSize size;
            size.parse(value, m_fontSize);
            fontsize(size.size());
        } else if (HTML::isNamed(attribute, "color") && value)
            colour(Colour(RgbColour(value, true), m_colour.background));
        else if (HTML::isNamed(attribute, "style"))
            parseStyle(value);
    });
}

void TextHtmlDoc::colour(_xmlNode const* node)
{
    std::optional<RgbColour> foreground, background;
    HTML::forEachAttribute(node, [&](xmlAttr const* attribute) {
        _xmlNode const* value = attribute->children;
        auto const is = [attribute](char const* name) { return HTML::isNamed(attribute, name); };
        if (value && (is("BGCOLOR") || is("BACKGROUND-COLOR")))
            background = RgbColour(value, true);
        else if (value && (is("COLOR") || is("TEXT")))
            foreground = RgbColour(value, true);
        else if (is("style"))
            parseStyle(value); // takes effect at once, ahead of the colours of this walk
    });
    colour(_pointer(foreground), _pointer(background));
    for_each_call(&HtmlDocVisitor::background, node);
}

bool TextHtmlDoc::colour(RgbColour const* foreground, RgbColour const* background)
{
    if (!foreground && !background) return false;
    return colour(
        Colour(foreground ? *foreground : m_colour.foreground, background ? *background : m_colour.background));
}

bool TextHtmlDoc::colour(Colour const& both)
{
    m_colour = both;
    m_visibility = Unknown;
    return isVisible();
}

bool TextHtmlDoc::fontsize(unsigned int size)
{
    m_fontSize = size;
    return isVisible();
}

void TextHtmlDoc::parseStyle(_xmlNode const* value)
{
    if (!HTML::isText(value) || !value->content || !*value->content) return;
    std::string const style = stringToLower(HTML::content(value));
    if (std::optional<std::string> const text = _styleValue(style, "font-size:")) {
        CssFontSize size;
        size.parse(*text, m_fontSize);
        fontsize(size.size()); // 0 for a word that is not known: hidden from here on
    }
    // A plain search, so that "background-color:red" alone reads as red on red, hidden text. No smarter
    // one may take its place: counters of hidden text rest on it.
    std::optional<RgbColour> const foreground = _styleColour(style, "color:");
    std::optional<RgbColour> const background = _styleColour(style, "background-color:");
    colour(_pointer(foreground), _pointer(background));
}

void TextHtmlDoc::for_each_call(void (HtmlDocVisitor::*operation)(_xmlNode const*), _xmlNode const* node)
{
    for (Ref<HtmlDocVisitor> const& visitor : m_visitors) ((*visitor)->*operation)(node);
}

} // namespace Velmara
