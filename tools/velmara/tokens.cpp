// `velmara tokens`: for each text part its language, character set and token string.
#include <iostream>
#include <string>

#include <velmara/Velmara.h>

#include "MessageVerb.h"
#include "facts/HtmlReading.h"
#include "facts/PartLabels.h"
#include "facts/PartPath.h"
#include "facts/Shown.h"
#include "facts/Text.h"
#include "facts/TokenText.h"

namespace VelmaraCommand {

namespace {

using namespace Velmara;

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

/// The text that tokens are made of.
std::string _textOf(std::string const& body, bool isPage, std::string const& charset)
{
    if (isPage) return _seen(body, charset);
    return stringOf(VmaraConv::toUtf8(charset, body.data(), static_cast<unsigned int>(body.size()), 0, true, true));
}

void _print(PartView const& view, TD const& tokens)
{
    std::cout << view.path << ' ' << languageOf(tokens) << ' ' << shown(tokens.charset()) << ": " << _numbers(tokens)
              << '\n';
}

int _showTokens(Input& input, MessageOptions const& options)
{
    Ref<Rfc822Msg> message = Rfc822Msg::parse(input.media());
    if (!options.json) printName(input, options);
    Json parts = Json::array();
    for (PartView const& view : partsFrom(finishedRootOf(*message.get()))) {
        if (view.kind != PartKind::Leaf) continue;
        ContentType const type(view.part->headers().find(ContentType::htype));
        if (!isText(type)) continue;
        std::string const charset = type.isNull() || type.charset().empty() ? defaultCharset : type.charset();
        TD const tokens(_textOf(decodedBodyOf(*view.part), isHtml(type), charset), charset);
        options.json ? parts.push_back(_jsonOf(view, tokens)) : _print(view, tokens);
    }
    if (options.json) writeJson(input, {{"parts", parts}});
    return Done;
}

int _showAllTokens(MessageOptions const& options)
{
    waitForWordLists();
    return forEachInput(options.files, [&](Input& in) { return _showTokens(in, options); });
}

} // namespace

void addTokens(CLI::App& commandLine, Action& action)
{
    MessageVerb<MessageOptions> verb(commandLine, "tokens", "Reduce the text parts of a message to semantic tokens");
    verb->footer("Example: velmara tokens mail.eml");
    verb.run(_showAllTokens, action);
}

} // namespace VelmaraCommand
