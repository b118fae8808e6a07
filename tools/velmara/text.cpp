// `velmara text`: the text of a message as statistical filters get it. What stands there is what words
// and token counts are made of, so nothing is tidied: no separator between parts, no conversion.
#include <algorithm>
#include <iostream>
#include <string>
#include <string_view>

#include <velmara/Velmara.h>

#include "MessageVerb.h"
#include "facts/Shown.h"
#include "facts/Text.h"

namespace VelmaraCommand {

namespace {

using namespace Velmara;

std::string _textOf(Rfc822Msg& message)
{
    BayesianVisitor visitor;
    visitor.init(message.root());
    message.root()->visit(&visitor);
    visitor.done();
    return stringOf(find_MimeRfc822Msg_Text_buffer(Ref<MimePart>(message.root(), true), MPartAttribute::TypeText));
}

void _writeLines(std::string_view text)
{
    while (!text.empty()) {
        std::string_view const line = text.substr(0, text.find('\n'));
        std::cout << shown(line) << '\n';
        text.remove_prefix(std::min(line.size() + 1, text.size()));
    }
}

int _showText(Input& input, MessageOptions const& options)
{
    Ref<Rfc822Msg> message = Rfc822Msg::parse(input.media());
    std::string const text = _textOf(*message.get());
    if (options.json) {
        writeJson(input, {{"text", text}});
        return Done;
    }
    printName(input, options);
    _writeLines(text);
    return Done;
}

} // namespace

void addText(CLI::App& commandLine, Action& action)
{
    MessageVerb<MessageOptions> verb(commandLine, "text", "Print the text of a message that an analysis gets");
    verb->footer("Example: velmara text mail.eml");
    verb.runForEach(_showText, action);
}

} // namespace VelmaraCommand
