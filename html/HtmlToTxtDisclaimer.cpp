#include <velmara/HtmlToTxtDisclaimer.h>

#include <velmara/HtmlParser.h>

#include <algorithm>

#include "html/DeclaredCharset.h"
#include "html/Node.h"

namespace Velmara {

namespace {

char const* _writtenAttributes[] = {"href", nullptr};

constexpr std::string_view _linesEndBehind[] = {"tr", "br", "div", "p",  "li", "dt", "dd",
                                                "h1", "h2", "h3",  "h4", "h5", "h6", "a"};
constexpr std::string_view _blanksBehind[] = {"span", "td", "th"};

template <size_t n> bool _isOneOf(_xmlNode const* node, std::string_view const (&names)[n])
{
    return std::any_of(names, names + n, [node](std::string_view name) { return HTML::isNamed(node, name); });
}

constexpr std::string_view _contentId = "cid:";

} // namespace

DisclaimerHrefAttributePatterns::DisclaimerHrefAttributePatterns()
    : StringPattern(HTML::stringPatternFactory(_writtenAttributes))
{}

DisclaimerHrefAttributePatterns::~DisclaimerHrefAttributePatterns() = default;

HtmlToTxtDisclaimer::HtmlToTxtDisclaimer(TextHtmlDoc*, MediaOut const& output) : m_output(output)
{}

HtmlToTxtDisclaimer::~HtmlToTxtDisclaimer() = default;

void HtmlToTxtDisclaimer::write(std::string_view bytes)
{
    m_output.write(reinterpret_cast<unsigned char const*>(bytes.data()), static_cast<unsigned int>(bytes.size()));
}

/// Writes text, less a blank at its start if there already is one.
void HtmlToTxtDisclaimer::writeJoined(std::string_view text)
{
    if (m_last == Blank && text.substr(0, 1) == " ") text.remove_prefix(1);
    if (!text.empty()) write(text);
}

void HtmlToTxtDisclaimer::text(_xmlNode const* node)
{
    if (!node->content) return;
    std::string_view const all = HTML::content(node);
    std::string_view rest = all;
    for (size_t end; (end = rest.find('\n')) != std::string_view::npos; rest.remove_prefix(end + 1)) {
        if (end == 0) continue;
        writeJoined(rest.substr(0, end));
        if (rest[end - 1] != ' ') write(" ");
        m_last = Blank;
    }
    writeJoined(rest);
    m_last = !all.empty() && all.back() == ' ' ? Blank : OtherText;
}

void HtmlToTxtDisclaimer::meta(_xmlNode const* node)
{
    tellDeclaredCharset(node, m_output);
}

void HtmlToTxtDisclaimer::href(_xmlNode const* node)
{
    HTML::forEachAttribute(node, [this](xmlAttr const* attribute) {
        std::string_view target = HTML::text(attribute);
        if (target.empty() || !DisclaimerHrefAttributePatterns::instance().matches(attribute->name)) return;
        if (sameNoCase(target.substr(0, _contentId.size()), _contentId)) target.remove_prefix(_contentId.size());
        write("(");
        write(target);
        write(")\n");
        m_last = LineFeed;
    });
}

void HtmlToTxtDisclaimer::image(_xmlNode const* node)
{
    href(node);
}

void HtmlToTxtDisclaimer::form(_xmlNode const* node)
{
    href(node);
}

void HtmlToTxtDisclaimer::ignore(_xmlNode const*)
{}

void HtmlToTxtDisclaimer::background(_xmlNode const* node)
{
    href(node);
}

void HtmlToTxtDisclaimer::endTag(_xmlNode const* node)
{
    if (!HTML::isElement(node)) return;
    if (m_last != LineFeed && _isOneOf(node, _linesEndBehind)) {
        write("\n");
        m_last = LineFeed;
    }
    if (m_last != Blank && _isOneOf(node, _blanksBehind)) {
        write(" ");
        m_last = Blank;
    }
}

void HtmlToTxtDisclaimer::done()
{
    m_output.end();
}

} // namespace Velmara
