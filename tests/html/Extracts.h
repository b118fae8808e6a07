#pragma once

#include <libxml/tree.h>

#include <string>

#include <velmara/MediaIn.h>
#include <velmara/MediaOut.h>
#include <velmara/TextHtmlDoc.h>

namespace Velmara {

/// Feeds a body to a document whose visitors `add` names.
template <class Add> void readHtml(std::string const& html, Add add)
{
    TextHtmlDoc document(true);
    add(document);
    BufferMediaIn in(html);
    document.parse(&in);
}

/// A node with one attribute, as the parser never makes it: names and texts may be missing.
class BareNode {
public:
    explicit BareNode(xmlElementType type, char const* name = nullptr, char const* content = nullptr)
        : m_name(name ? name : ""), m_content(content ? content : "")
    {
        m_node.type = type;
        if (name) m_node.name = bytes(m_name);
        if (content) m_node.content = bytes(m_content);
    }
    /// Replaces the one there was. Without a value it has a text node without content.
    void attribute(char const* name, char const* value)
    {
        m_attributeName = name ? name : "";
        m_value = value ? value : "";
        m_text.type = XML_TEXT_NODE;
        m_text.content = value ? bytes(m_value) : nullptr;
        m_attribute.type = XML_ATTRIBUTE_NODE;
        m_attribute.name = name ? bytes(m_attributeName) : nullptr;
        m_attribute.children = &m_text;
        m_node.properties = &m_attribute;
    }
    xmlNode const* node() const { return &m_node; }

private:
    static xmlChar* bytes(std::string& text) { return reinterpret_cast<xmlChar*>(text.data()); }

    std::string m_name, m_content, m_attributeName, m_value;
    xmlNode m_node{}, m_text{};
    xmlAttr m_attribute{};
};

/// Keeps what is written, with ends and character sets.
class RecordedImpl : public MediaOutImpl {
public:
    using MediaOutImpl::write;
    void write(uchar_t const* bytes, uint_t n) override { text.append(reinterpret_cast<char const*>(bytes), n); }
    void end() override { ++ends; }
    void characterSet(std::string const& name) override { charset += name + ";"; }

    std::string text, charset;
    int ends = 0;
};

} // namespace Velmara
