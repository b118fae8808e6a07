#include <velmara/HtmlTagExtract.h>

#include "html/Node.h"

namespace Velmara {

HtmlTagExtract::HtmlTagExtract(TDProperties* properties, std::string const& charset)
{
    if (!properties || properties->descriptors().size() >= TDProperties::maxDescriptors) return;
    m_tokens = Ref<TD>(new TD(charset), false);
    properties->descriptors().push_back(m_tokens);
}

HtmlTagExtract::~HtmlTagExtract() = default;

void HtmlTagExtract::tags(_xmlNode const* node)
{
    if (m_tokens.isNull() || !HTML::isElement(node) || HTML::name(node).empty()) return;
    if (HTML::isNamed(node, "br") || HTML::isNamed(node, "span")) return;
    m_tokens->add(std::string(HTML::name(node)));
    HTML::forEachAttribute(node, [this](xmlAttr const* attribute) {
        if (!HTML::name(attribute).empty()) m_tokens->add(std::string(HTML::name(attribute)));
    });
}

} // namespace Velmara
