// `velmara headers`: each header as a reader would see it, or what the typed headers make of it.
#include <algorithm>
#include <iostream>
#include <string>
#include <vector>

#include <velmara/Velmara.h>

#include "MessageVerb.h"
#include "facts/Hop.h"
#include "facts/PartPath.h"
#include "facts/Shown.h"

namespace VelmaraCommand {

namespace {

using namespace Velmara;

struct Options : MessageOptions {
    bool raw = false, all = false;
};

void _addAddresses(Json& json, Header const& header)
{
    Json addresses = Json::array();
    for (EmailAddress const& address : EmailAddress::rfc5322ParseList(header.value(), true)) {
        Json entry{{"address", address.address()}};
        setIfAny(entry, "displayName", decoded(address.displayName()));
        addresses.push_back(std::move(entry));
    }
    json["addresses"] = std::move(addresses);
}

void _addIds(Json& json, Header const& header)
{
    Json ids = Json::array();
    for (EmailAddress const& id : EmailAddress::rfc5322ParseList(header.value(), " ")) ids.push_back(id.address());
    json["ids"] = std::move(ids);
}

void _addListId(Json& json, Header const& header)
{
    ListId const id(header);
    if (!id.domain().isNull()) json["domain"] = id.domain().asString();
}

template <class ListHeader> void _addUris(Json& json, Header const& header)
{
    Json uris = Json::array();
    ListHeader const list(header);
    for (Uri const& uri : list.uris()) uris.push_back(uri.asString());
    json["uris"] = std::move(uris);
}

void _addContentType(Json& json, Header const& header)
{
    ContentType const type(header);
    setIfAny(json, "mediaType", type.mediatypeAsString());
    setIfAny(json, "subType", type.subtypeAsString());
    setIfAny(json, "charset", type.charset());
    setIfAny(json, "attachmentName", type.utf8name()); // ahead of the boundary, which hides a name
    setIfAny(json, "boundary", type.boundary());
}

void _addContentDisposition(Json& json, Header const& header)
{
    ContentDisposition const disposition(header);
    json["disposition"] = stringToLower(ContentDisposition::dispositionAsString(disposition.fileType()));
    setIfAny(json, "attachmentName", disposition.utf8fileName());
}

void _addContentEncoding(Json& json, Header const& header)
{
    json["encoding"] = ContentEncoding::encodingAsString(ContentEncoding(header).encoding());
}

void _addHop(Json& json, Header const& header)
{
    json["hop"] = jsonOf(hopOf(Received(header)));
}

struct View {
    char const* name;
    void (*add)(Json&, Header const&);
};

constexpr View _views[] = {
    {"From", _addAddresses},
    {"Sender", _addAddresses},
    {"Reply-To", _addAddresses},
    {"To", _addAddresses},
    {"Cc", _addAddresses},
    {"Bcc", _addAddresses},
    {"Return-Path", _addAddresses},
    {"Delivered-To", _addAddresses},
    {"Errors-To", _addAddresses},
    {"Resent-From", _addAddresses},
    {"Resent-To", _addAddresses},
    {"Resent-Cc", _addAddresses},
    {"Message-ID", _addIds},
    {"In-Reply-To", _addIds},
    {"References", _addIds},
    {"List-Id", _addListId},
    {"List-Help", _addUris<HeaderListHelp>},
    {"List-Post", _addUris<HeaderListPost>},
    {"List-Owner", _addUris<HeaderListOwner>},
    {"List-Archive", _addUris<HeaderListArchive>},
    {"List-Subscribe", _addUris<HeaderListSubscribe>},
    {"List-Unsubscribe", _addUris<HeaderListUnsubscribe>},
    {"Content-Type", _addContentType},
    {"Content-Disposition", _addContentDisposition},
    {"Content-Transfer-Encoding", _addContentEncoding},
    {"Received", _addHop},
};

std::string _valueOf(Header const& header, bool raw)
{
    return raw ? header.value() : decoded(header.value());
}

Json _jsonOf(Header const& header, bool raw)
{
    Json json{{"name", header.type()}, {"value", _valueOf(header, raw)}};
    for (View const& view : _views)
        if (stringCompareNoCase(header.type(), view.name)) view.add(json, header);
    return json;
}

Json _jsonOf(HeaderContainer const& headers, bool raw)
{
    Json all = Json::array();
    for (Header const& header : headers.headers()) all.push_back(_jsonOf(header, raw));
    return all;
}

void _print(HeaderContainer const& headers, bool raw)
{
    for (Header const& header : headers.headers())
        std::cout << shown(header.type()) << ": " << shown(_valueOf(header, raw)) << '\n';
}

/// The message alone, or every part that has headers of its own.
std::vector<PartView> _partsOf(Rfc822Msg& message, bool all)
{
    if (!all) return {PartView{message.root(), PartKind::Leaf, "1"}};
    std::vector<PartView> parts = partsFrom(finishedRootOf(message));
    parts.erase(std::remove_if(parts.begin(), parts.end(),
                               [](PartView const& view) { return view.part->headers().headers().empty(); }),
                parts.end());
    return parts;
}

Json _jsonOf(std::vector<PartView> const& views, bool raw)
{
    Json parts = Json::array();
    for (PartView const& view : views)
        parts.push_back(Json{{"path", view.path}, {"headers", _jsonOf(view.part->headers(), raw)}});
    return parts;
}

int _showHeaders(Input& input, Options const& options)
{
    Ref<Rfc822Msg> message = Rfc822Msg::parse(input.media());
    std::vector<PartView> const parts = _partsOf(*message.get(), options.all);
    if (options.json) {
        writeJson(input, {{"parts", _jsonOf(parts, options.raw)}});
        return Done;
    }
    printName(input, options);
    for (PartView const& view : parts) {
        if (options.all) std::cout << view.path << '\n';
        _print(view.part->headers(), options.raw);
    }
    return Done;
}

} // namespace

void addHeaders(CLI::App& commandLine, Action& action)
{
    MessageVerb<Options> verb(commandLine, "headers", "Show the headers of a message, decoded to UTF-8",
                              "One JSON object a message, with what the typed headers read");
    verb->add_flag("--raw", verb.options().raw, "Values as they stand");
    verb->add_flag("--all", verb.options().all, "Those of every part, each behind its path");
    verb->footer("Example: velmara headers --json mail.eml");
    verb.runForEach(_showHeaders, action);
}

} // namespace VelmaraCommand
