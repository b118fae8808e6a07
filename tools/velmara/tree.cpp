// `velmara tree`: one line for each part. The tree is finished first and printed then, because a part
// learns the length of its body only when the parser leaves it.
#include <iostream>
#include <string>
#include <vector>

#include <velmara/Velmara.h>

#include "MessageVerb.h"
#include "facts/PartLabels.h"
#include "facts/PartPath.h"
#include "facts/Shown.h"

namespace VelmaraCommand {

namespace {

using namespace Velmara;

struct Options : MessageOptions {
    bool headers = false;
};

constexpr unsigned long _notSet = 0xFFFFFFFFul;

void _addWord(std::string& line, char const* label, std::string const& text)
{
    if (!text.empty()) line += std::string(" ") + label + shown(text);
}

std::string _lineOf(PartView const& view)
{
    MimePart& part = *view.part;
    std::string line = view.path + " " + nameOf(view.kind);
    if (!hasHeaders(view.kind)) return line;
    PartLabels const labels = labelsOf(part.headers());
    _addWord(line, "", labels.mediaType);
    _addWord(line, "charset=", labels.charset);
    _addWord(line, "encoding=", labels.encoding);
    if (!labels.name.empty()) line += " name=\"" + shown(labels.name) + "\"";
    std::string const body = part.blen() == _notSet ? "?" : std::to_string(part.blen());
    return line + " at " + std::to_string(part.sourcePosition()) + ", header " + std::to_string(part.hlen()) +
           ", body " + body;
}

class TextPrinter {
public:
    explicit TextPrinter(bool headers) : m_headers(headers), m_colour(colourWanted()) {}

    void print(PartView const& view, std::string const& before, std::string const& below)
    {
        std::cout << dim(before) << _lineOf(view) << '\n';
        std::vector<PartView> const children = childrenOf(view);
        if (m_headers && hasHeaders(view.kind)) printHeaders(*view.part, below + (children.empty() ? "    " : "│   "));
        for (size_t i = 0; i < children.size(); ++i) {
            bool const last = i + 1 == children.size();
            print(children[i], below + (last ? "└── " : "├── "), below + (last ? "    " : "│   "));
        }
    }

private:
    void printHeaders(MimePart& part, std::string const& before)
    {
        for (Header const& header : part.headers().headers())
            std::cout << dim(before) << shown(header.asString()) << '\n';
    }
    std::string dim(std::string const& text) const { return m_colour ? "\033[2m" + text + "\033[0m" : text; }

    bool m_headers;
    bool m_colour;
};

Json _jsonHeaders(MimePart& part)
{
    Json headers = Json::array();
    for (Header const& header : part.headers().headers())
        headers.push_back(Json{{"name", header.type()}, {"value", header.value()}});
    return headers;
}

/// Counts what it is given.
class CountingOutImpl : public MediaOutImpl {
public:
    using MediaOutImpl::write;
    void write(uchar_t const*, uint_t n) override { total += n; }
    unsigned long total = 0;
};

unsigned long _decodedSize(MimePart& part)
{
    if (part.blen() == 0) return 0; // an empty body that is read again gives the byte in front of it
    auto* counting = new CountingOutImpl;
    MediaOut out(counting, false);
    part.body(true).write(out);
    return counting->total;
}

Json _jsonOf(PartView const& view, bool headers)
{
    MimePart& part = *view.part;
    Json json{{"path", view.path}, {"kind", nameOf(view.kind)}};
    if (hasHeaders(view.kind)) {
        PartLabels const labels = labelsOf(part.headers());
        setIfAny(json, "mediaType", labels.mediaType);
        setIfAny(json, "charset", labels.charset);
        setIfAny(json, "encoding", labels.encoding);
        setIfAny(json, "name", labels.name);
        json["sourcePosition"] = part.sourcePosition();
        json["hlen"] = part.hlen();
        json["blen"] = part.blen() == _notSet ? Json(nullptr) : Json(part.blen());
        if (view.kind == PartKind::Leaf) json["decodedSize"] = _decodedSize(part);
        if (headers) json["headers"] = _jsonHeaders(part);
    }
    Json children = Json::array();
    for (PartView const& child : childrenOf(view)) children.push_back(_jsonOf(child, headers));
    if (!children.empty()) json["children"] = std::move(children);
    return json;
}

int _showTree(Input& input, Options const& options)
{
    Ref<Rfc822Msg> message = Rfc822Msg::parse(input.media());
    PartView const root = finishedRootOf(*message.get());
    if (options.json) {
        writeJson(input, {{"root", _jsonOf(root, options.headers)}});
        return Done;
    }
    printName(input, options);
    TextPrinter(options.headers).print(root, "", "");
    return Done;
}

} // namespace

void addTree(CLI::App& commandLine, Action& action)
{
    MessageVerb<Options> verb(commandLine, "tree", "Draw the parts of a message, one line a part");
    verb->add_flag("--headers", verb.options().headers, "Show each header of each part as it stands");
    verb->footer("Example: velmara tree --headers mail.eml");
    verb.runForEach(_showTree, action);
}

} // namespace VelmaraCommand
