// `velmara tokens`: for each text part its language, character set and token string.
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include <velmara/Velmara.h>

#include "Input.h"
#include "Verb.h"
#include "facts/HtmlReading.h"
#include "facts/PartPath.h"
#include "facts/Shown.h"
#include "facts/TokenText.h"

namespace VelmaraCommand {

namespace {

using namespace Velmara;

struct Options {
    std::vector<std::string> files;
    bool json = false;
};

bool _isText(ContentType const& type)
{
    return type.isNull() || type.mediatype() == ContentType::MediaTypeText;
}

std::string _string(Buffer const& bytes)
{
    return std::string(reinterpret_cast<char const*>(bytes.data()), bytes.length());
}

/// The text that a reader of an HTML body sees.
std::string _seen(std::string const& html, std::string const& charset)
{
    HtmlWanted wanted;
    wanted.charset = charset;
    wanted.runs = wanted.links = wanted.images = false;
    return readHtml(BufferMediaIn(html.data(), html.size()), wanted).text;
}

std::string _numbers(TD const& tokens)
{
    std::string text;
    for (wchar_t number : tokens.tokens())
        text += (text.empty() ? "" : " ") + std::to_string(static_cast<unsigned int>(number));
    return text;
}

Json _jsonOf(PartView const& view, TD const& tokens)
{
    Json json{{"path", view.path}, {"language", languageOf(tokens)}, {"charset", tokens.charset()}};
    json["tokens"] = Json::array();
    for (wchar_t number : tokens.tokens()) json["tokens"].push_back(static_cast<unsigned int>(number));
    return json;
}

class TokenPrinter {
public:
    explicit TokenPrinter(bool json) : m_json(json) {}

    void print(PartView const& view)
    {
        if (view.kind == PartKind::Leaf) printLeaf(view);
        for (PartView const& child : childrenOf(view)) print(child);
    }
    Json const& parts() const { return m_parts; }

private:
    void printLeaf(PartView const& view)
    {
        ContentType const type(view.part->headers().find(ContentType::htype));
        if (!_isText(type)) return;
        std::string const charset = type.isNull() || type.charset().empty() ? "us-ascii" : type.charset();
        std::string body;
        if (view.part->blen() != 0) view.part->body(true).read(body);
        bool const isHtml = !type.isNull() && type.subtype() == ContentType::SubTypeHtml;
        TD const tokens(isHtml ? _seen(body, charset)
                               : _string(VmaraConv::toUtf8(charset, body.data(), static_cast<unsigned int>(body.size()),
                                                           0, true, true)),
                        charset);
        if (m_json)
            m_parts.push_back(_jsonOf(view, tokens));
        else
            std::cout << view.path << ' ' << languageOf(tokens) << ' ' << shown(tokens.charset()) << ": "
                      << _numbers(tokens) << '\n';
    }

    bool m_json;
    Json m_parts = Json::array();
};

int _showTokens(Input& input, Options const& options)
{
    Ref<Rfc822Msg> message = Rfc822Msg::parse(input.media());
    if (!options.json && options.files.size() > 1) std::cout << shown(input.name()) << ":\n";
    TokenPrinter printer(options.json);
    printer.print(finishedRootOf(*message.get()));
    if (options.json) writeJsonLine(Json{{"file", input.name()}, {"parts", printer.parts()}});
    return Done;
}

} // namespace

void addTokens(CLI::App& commandLine, Action& action)
{
    auto options = std::make_shared<Options>();
    CLI::App* verb = commandLine.add_subcommand("tokens", "Reduce the text parts of a message to semantic tokens");
    verb->add_option("FILE", options->files, "Message files; \"-\" is standard input")->required();
    verb->add_flag("--json", options->json, "One JSON object a message");
    verb->footer("Example: velmara tokens mail.eml");
    verb->callback([options, &action] {
        action = [options] {
            waitForWordLists();
            return forEachInput(options->files, [&](Input& in) { return _showTokens(in, *options); });
        };
    });
}

} // namespace VelmaraCommand
