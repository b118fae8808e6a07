// `velmara sign`: the signatures of a message's parts, and where one is missing, why. The extract can be
// shown, so that a person sees what two bodies with different signatures differ in.
#include <algorithm>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include <velmara/Velmara.h>

#include "MessageVerb.h"
#include "facts/PartPath.h"
#include "facts/Shown.h"
#include "facts/Signing.h"

namespace VelmaraCommand {

namespace {

using namespace Velmara;

struct Options : MessageOptions {
    std::string as; // empty: the file is a message
    bool showExtract = false;
};

std::string _hex(std::string const& bytes)
{
    std::string hex;
    for (unsigned char c : bytes) {
        hex += "0123456789abcdef"[c >> 4];
        hex += "0123456789abcdef"[c & 15];
    }
    return hex;
}

/// Text as it is, pixels and other bytes in hexadecimal digits.
std::string _readable(Signing const& signing)
{
    return signing.isText() ? signing.extract() : _hex(signing.extract());
}

std::string _lineOf(Signing const& signing, size_t bodyLength)
{
    std::string line = std::string(signing.kind()) + ", " + std::to_string(signing.lookedAt()) + " of " +
                       std::to_string(bodyLength) + " bytes looked at, ";
    if (signing.signature().empty()) return line + "no signature: " + signing.whyNone();
    return line + std::to_string(signing.entered()) + " entered: " + signing.signature();
}

void _addTo(Json& json, Signing const& signing, size_t bodyLength, bool showExtract)
{
    json["kind"] = signing.kind();
    json["bodyLength"] = bodyLength;
    json["lookedAt"] = signing.lookedAt();
    json["entered"] = signing.entered();
    if (signing.signature().empty()) {
        json["signature"] = nullptr;
        json["reason"] = signing.whyNone();
    } else {
        json["signature"] = signing.signature();
        if (showExtract) json["extract"] = _readable(signing);
    }
}

void _printText(std::string const& name, Signing const& signing, size_t bodyLength, bool showExtract)
{
    std::cout << name << ' ' << _lineOf(signing, bodyLength) << '\n';
    if (showExtract && !signing.signature().empty()) std::cout << "    " << shown(_readable(signing)) << '\n';
}

/// A part and what was made of it.
struct SignedPart {
    std::string path;
    Signing signing;
    size_t bodyLength;
};

SignedPart _signed(PartView const& view)
{
    ContentType const type(view.part->headers().find(ContentType::htype));
    std::string const body = decodedBodyOf(*view.part);
    Signing signing(HasherFactory::createHasher(type, 0).dataType());
    signing.process(body, HasherFactory::maxHashBufSize(type), body.size());
    return SignedPart{view.path, signing, body.size()};
}

Json _jsonOf(SignedPart const& part, bool showExtract)
{
    Json json{{"path", part.path}};
    _addTo(json, part.signing, part.bodyLength, showExtract);
    return json;
}

int _signMessage(Input& input, Options const& options)
{
    Ref<Rfc822Msg> message = Rfc822Msg::parse(input.media());
    if (!options.json) printName(input, options);
    Json parts = Json::array();
    for (PartView const& view : partsFrom(finishedRootOf(*message.get()))) {
        if (view.kind != PartKind::Leaf && view.kind != PartKind::Skipped) continue; // has no body of its own
        SignedPart const part = _signed(view);
        if (options.json)
            parts.push_back(_jsonOf(part, options.showExtract));
        else
            _printText(part.path, part.signing, part.bodyLength, options.showExtract);
    }
    if (options.json) writeJson(input, {{"parts", parts}});
    return Done;
}

int _signFile(Input& input, Hasher::DataType type, Options const& options)
{
    std::string body;
    input.media().read(body);
    Signing signing(type);
    signing.process(body, std::max<size_t>(body.size(), 1), body.size());
    if (options.json) {
        Json json;
        _addTo(json, signing, body.size(), options.showExtract);
        writeJson(input, json);
    } else {
        _printText(shown(input.name()) + ":", signing, body.size(), options.showExtract);
    }
    return Done;
}

int _sign(Input& input, Options const& options)
{
    if (options.as.empty()) return _signMessage(input, options);
    return _signFile(input, signingKindOf(options.as), options);
}

} // namespace

void addSign(CLI::App& commandLine, Action& action)
{
    auto options = std::make_shared<Options>();
    CLI::App* verb = commandLine.add_subcommand("sign", "Give the signature of each part");
    verb->add_option("FILE", options->files, "Message files, or with --as plain ones; \"-\" is standard input")
        ->required();
    verb->add_option("--as", options->as, "FILE is no message but a body of this kind")
        ->check(CLI::IsMember(signingKinds()));
    verb->add_flag("--json", options->json, "One JSON object a file");
    verb->add_flag("--show-extract", options->showExtract, "Show what was hashed; images and binaries in hexadecimal");
    verb->footer("Example: velmara sign --as html --show-extract page.html");
    verb->callback([options, &action] {
        action = [options] { return forEachInput(options->files, [&](Input& in) { return _sign(in, *options); }); };
    });
}

} // namespace VelmaraCommand
