#include <velmara/HtmlTxtExtract.h>

#include <velmara/Logger.h>
#include <velmara/StringOperations.h>
#include <velmara/TextHtmlDoc.h>
#include <velmara/Uri.h>

#include "html/DeclaredCharset.h"
#include "html/Node.h"

namespace Velmara {

namespace {

constexpr unsigned int _headOfSource = 2048;
constexpr size_t _shortestUri = 10;
constexpr unsigned int _uriMessage = 0x3000000;

char const* _linkAttributes[] = {"href", "action", "src", "background", nullptr};

void _write(MediaOut& output, std::string_view bytes)
{
    output.write(reinterpret_cast<unsigned char const*>(bytes.data()), static_cast<unsigned int>(bytes.size()));
}

bool _contains(std::string const& text, char c)
{
    return text.find(c) != std::string::npos;
}

/// Whether a value can be an absolute URI with a host. A "%" may hide any of the signs that tell.
bool _looksLikeUri(std::string const& value)
{
    if (value.size() < _shortestUri || !isAlpha(static_cast<unsigned char>(value[0]))) return false;
    bool const isMail = stringCompareNoCase(value, "mailto:", 7);
    if (isMail && !_contains(value, '@')) return false;
    if (_contains(value, '%')) return true;
    return _contains(value, ':') && _contains(value, '.') && (isMail || _contains(value, '/'));
}

/// False if the value leads to no host.
bool _addUri(UriContainer& uris, std::string const& value)
{
    if (!_looksLikeUri(value)) return false;
    try {
        Uri const uri(value);
        if (uri.hostname().isNull()) return false;
        uris.add(uri, true);
        return true;
    } catch (Exception const&) {
        std::string const text = "HtmlTxtExtract::href: Error parsing URI " + value;
        Logger::instance(false).log(_uriMessage, 0, "%d\x01%s", 7, text.c_str());
        return false;
    }
}

} // namespace

HrefAttributePatterns::HrefAttributePatterns() : StringPattern(HTML::stringPatternFactory(_linkAttributes))
{}

HrefAttributePatterns::~HrefAttributePatterns() = default;

HtmlTxtExtract::HtmlTxtExtract(TextHtmlDoc* document, unsigned long id, MediaOut const& output, UriContainer* uris)
    : m_document(document), m_id(id), m_output(output), m_uris(uris)
{}

HtmlTxtExtract::~HtmlTxtExtract() = default;

void HtmlTxtExtract::text(_xmlNode const* node)
{
    if (!node->content || !m_document->isVisible()) return;
    std::string_view rest = HTML::content(node);
    for (size_t end; (end = rest.find('\n')) != std::string_view::npos; rest.remove_prefix(end + 1)) {
        if (end == 0) continue;
        _write(m_output, rest.substr(0, end));
        if (rest[end - 1] != ' ') _write(m_output, " ");
    }
    if (!rest.empty()) _write(m_output, rest);
}

void HtmlTxtExtract::meta(_xmlNode const* node)
{
    tellDeclaredCharset(node, m_output);
}

void HtmlTxtExtract::href(_xmlNode const* node)
{
    if (!m_uris) return;
    m_uris->currentId(m_id);
    HTML::forEachAttribute(node, [this](xmlAttr const* attribute) {
        if (!HrefAttributePatterns::instance().matches(attribute->name) || HTML::text(attribute).empty()) return;
        std::string value(HTML::text(attribute));
        stringLeftTrim(value);
        stringRightTrim(value);
        if (!_addUri(*m_uris, value)) UriSniffer::search(*m_uris, value, 0, true);
    });
}

void HtmlTxtExtract::image(_xmlNode const* node)
{
    href(node);
}

void HtmlTxtExtract::form(_xmlNode const* node)
{
    href(node);
}

void HtmlTxtExtract::background(_xmlNode const* node)
{
    href(node);
}

void HtmlTxtExtract::ignore(_xmlNode const*)
{
    if (m_document->isVisible()) _write(m_output, "\n");
}

void HtmlTxtExtract::endTag(_xmlNode const* node)
{
    if (!HTML::isElement(node)) return;
    if (HTML::isNamed(node, "tr"))
        ignore(node);
    else if (HTML::isNamed(node, "a") || HTML::isNamed(node, "area") || HTML::isNamed(node, "base"))
        _write(m_output, " "); // so that the link does not run into the word behind it
}

void HtmlTxtExtract::done()
{
    m_output.end();
    if (!m_uris) return;
    Buffer const& source = m_document->html();
    Buffer const head(source.data(), min(source.length(), _headOfSource), false);
    UriSniffer::search(*m_uris, head, false);
}

} // namespace Velmara
