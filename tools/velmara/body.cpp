// `velmara body`: the body of one part, so that a person can save an attachment.
#include <iostream>
#include <memory>
#include <string>

#include <velmara/Velmara.h>

#include "Input.h"
#include "Verb.h"
#include "facts/PartPath.h"
#include "facts/Shown.h"

namespace VelmaraCommand {

namespace {

using namespace Velmara;

struct Options {
    std::string file, path;
    bool raw = false;
};

class StandardOutImpl : public MediaOutImpl {
public:
    using MediaOutImpl::write;
    void write(uchar_t const* bytes, uint_t n) override
    {
        std::cout.write(reinterpret_cast<char const*>(bytes), static_cast<std::streamsize>(n));
    }
};

bool _hasBody(PartView const& view)
{
    return view.part && view.kind != PartKind::Multipart && view.kind != PartKind::Message;
}

int _writeBody(Input& input, Options const& options)
{
    Ref<Rfc822Msg> message = Rfc822Msg::parse(input.media());
    PartView const view = findPart(finishedRootOf(*message.get()), options.path);
    if (!_hasBody(view)) {
        std::string const what =
            view.part ? std::string("is a ") + nameOf(view.kind) + " and has no body of its own" : "does not exist";
        complain(input.name(), "part " + options.path + " " + what + "; `velmara tree` lists the parts");
        return WrongUseOrUnreadable;
    }
    if (view.part->blen() == 0) return Done; // an empty body that is read again gives the byte in front of it
    MediaOut out(new StandardOutImpl, false);
    view.part->body(!options.raw).write(out);
    return Done;
}

} // namespace

void addBody(CLI::App& commandLine, Action& action)
{
    auto options = std::make_shared<Options>();
    CLI::App* verb = commandLine.add_subcommand("body", "Write the body of one part, decoded, to standard output");
    verb->add_option("FILE", options->file, "Message file; \"-\" is standard input")->required();
    verb->add_option("PATH", options->path, "The part, as `velmara tree` shows it, such as 1.2")->required();
    verb->add_flag("--raw", options->raw, "The bytes as they stand in the message");
    verb->footer("Example: velmara body mail.eml 1.2 > attachment.pdf");
    verb->callback([options, &action] {
        action = [options] {
            return forEachInput({options->file}, [&](Input& in) { return _writeBody(in, *options); });
        };
    });
}

} // namespace VelmaraCommand
