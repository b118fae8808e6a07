// `velmara text`: the text of a message as statistical filters get it. What stands there is what words
// and token counts are made of, so nothing is tidied: no separator between parts, no conversion.
#include <algorithm>
#include <iostream>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <velmara/Velmara.h>

#include "Input.h"
#include "Verb.h"
#include "facts/Shown.h"

namespace VelmaraCommand {

namespace {

using namespace Velmara;

struct Options {
    std::vector<std::string> files;
    bool json = false;
};

std::string _textOf(Rfc822Msg& message)
{
    BayesianVisitor visitor;
    visitor.init(message.root());
    message.root()->visit(&visitor);
    visitor.done();
    Buffer const& text = find_MimeRfc822Msg_Text_buffer(Ref<MimePart>(message.root(), true), MPartAttribute::TypeText);
    return std::string(reinterpret_cast<char const*>(text.data()), text.length());
}

void _writeLines(std::string_view text)
{
    while (!text.empty()) {
        std::string_view const line = text.substr(0, text.find('\n'));
        std::cout << shown(line) << '\n';
        text.remove_prefix(std::min(line.size() + 1, text.size()));
    }
}

int _showText(Input& input, Options const& options)
{
    Ref<Rfc822Msg> message = Rfc822Msg::parse(input.media());
    std::string const text = _textOf(*message.get());
    if (options.json) {
        writeJsonLine(Json{{"file", input.name()}, {"text", text}});
        return Done;
    }
    if (options.files.size() > 1) std::cout << shown(input.name()) << ":\n";
    _writeLines(text);
    return Done;
}

} // namespace

void addText(CLI::App& commandLine, Action& action)
{
    auto options = std::make_shared<Options>();
    CLI::App* verb = commandLine.add_subcommand("text", "Print the text of a message that an analysis gets");
    verb->add_option("FILE", options->files, "Message files; \"-\" is standard input")->required();
    verb->add_flag("--json", options->json, "One JSON object a message");
    verb->footer("Example: velmara text mail.eml");
    verb->callback([options, &action] {
        action = [options] { return forEachInput(options->files, [&](Input& in) { return _showText(in, *options); }); };
    });
}

} // namespace VelmaraCommand
