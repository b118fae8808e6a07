#pragma once

#include <libxml/HTMLparser.h>
#include <libxml/tree.h>

#include <memory>
#include <string>
#include <vector>

namespace Velmara {
namespace HTML {

/// A tree as libxml2 writes it down.
inline std::string dumped(xmlDoc* document)
{
    xmlChar* bytes = nullptr;
    int n = 0;
    xmlDocDumpMemory(document, &bytes, &n);
    std::string const text(reinterpret_cast<char const*>(bytes), static_cast<size_t>(n));
    xmlFree(bytes);
    return text;
}

/// Whether each node of a document knows the one before it and what it stands in.
inline bool pointsBack(xmlDoc const* document)
{
    std::vector<xmlNode const*> open{reinterpret_cast<xmlNode const*>(document)};
    while (!open.empty()) {
        xmlNode const* const parent = open.back();
        open.pop_back();
        xmlNode const* last = nullptr;
        for (xmlNode const* node = parent->children; node; last = node, node = node->next) {
            if (node->prev != last || node->parent != parent) return false;
            if (node->type == XML_ELEMENT_NODE) open.push_back(node);
        }
        if (parent->last != last) return false;
    }
    return true;
}

/// What libxml2 alone makes of a document, with the options that the library gives it.
inline std::string treeOfLibxml(std::string const& html)
{
    std::unique_ptr<xmlParserCtxt, void (*)(xmlParserCtxt*)> const parser(
        htmlCreatePushParserCtxt(nullptr, nullptr, nullptr, 0, nullptr, XML_CHAR_ENCODING_NONE), htmlFreeParserCtxt);
    htmlCtxtUseOptions(parser.get(), HTML_PARSE_RECOVER | HTML_PARSE_NOERROR | HTML_PARSE_NOWARNING |
                                         HTML_PARSE_NOBLANKS | HTML_PARSE_IGNORE_ENC);
    htmlParseChunk(parser.get(), html.data(), static_cast<int>(html.size()), 1);
    std::string const written = parser->myDoc ? dumped(parser->myDoc) : "";
    xmlFreeDoc(parser->myDoc);
    return written;
}

} // namespace HTML
} // namespace Velmara
