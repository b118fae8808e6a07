#pragma once

#include <libxml/tree.h>

#include <string>
#include <string_view>

#include "runtime/Ascii.h"

/// The few questions that this room asks the nodes of libxml2.
namespace Velmara {
namespace HTML {

inline bool isElement(xmlNode const* node)
{
    return node && node->type == XML_ELEMENT_NODE;
}

inline bool isText(xmlNode const* node)
{
    return node && node->type == XML_TEXT_NODE;
}

/// NUL-ended; may be null.
inline char const* content(xmlNode const* node)
{
    return reinterpret_cast<char const*>(node->content);
}

/// Empty for a node without a name.
inline std::string_view name(xmlNode const* node)
{
    return node->name ? reinterpret_cast<char const*>(node->name) : std::string_view();
}

inline std::string_view name(xmlAttr const* attribute)
{
    return attribute->name ? reinterpret_cast<char const*>(attribute->name) : std::string_view();
}

inline bool isNamed(xmlNode const* node, std::string_view text)
{
    return sameNoCase(name(node), text);
}

inline bool isNamed(xmlAttr const* attribute, std::string_view text)
{
    return sameNoCase(name(attribute), text);
}

/// The text of an attribute's value; empty if the value is no text node or has no content.
inline std::string_view text(xmlAttr const* attribute)
{
    xmlNode const* value = attribute->children;
    return isText(value) && value->content ? content(value) : std::string_view();
}

/// Calls `work` with each attribute of an element in order; other nodes have none.
template <class Work> void forEachAttribute(xmlNode const* node, Work work)
{
    if (!isElement(node)) return;
    for (xmlAttr const* attribute = node->properties; attribute; attribute = attribute->next) work(attribute);
}

} // namespace HTML
} // namespace Velmara
