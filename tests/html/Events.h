#pragma once

#include <libxml/tree.h>

#include <string>

#include <velmara/HtmlParser.h>

namespace Velmara {
namespace HTML {

/// Writes down a walk as one line: "p('text'())" is an element with a text; a comment stands between
/// "!", CDATA in brackets, and each ")" is an end event.
class Events : public Builder {
public:
    void beginParsing() override { seen += "BEGIN"; }
    void endParsing() override { seen += "END"; }
    void foundTag(xmlNode const* node) override { seen.append(text(node->name)).append("("); }
    void foundText(xmlNode const* node) override { seen.append("'").append(text(node->content)).append("'("); }
    void foundCdata(xmlNode const* node) override { seen.append("[").append(text(node->content)).append("]("); }
    void foundComment(xmlNode const* node) override { seen.append("!").append(text(node->content)).append("!("); }
    void endTag(xmlNode const*) override { seen += ")"; }

    std::string seen;

private:
    static char const* text(xmlChar const* bytes) { return bytes ? reinterpret_cast<char const*>(bytes) : ""; }
};

} // namespace HTML
} // namespace Velmara
