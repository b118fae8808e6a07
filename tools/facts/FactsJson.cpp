#include "HtmlReading.h"
#include "MessageFacts.h"

namespace VelmaraCommand {

namespace {

Json _jsonOf(Span const& span)
{
    return Json::array({span.begin, span.end});
}

Json _jsonOf(Address const& address)
{
    Json json{{"address", address.address}};
    setIfAny(json, "displayName", address.displayName);
    return json;
}

Json _jsonOf(Ending const& ending)
{
    return Json{{"line", _jsonOf(ending.line)},  {"text", ending.text},       {"path", ending.path},
                {"delimiter", ending.delimiter}, {"closing", ending.closing}, {"exact", ending.exact}};
}

Json _jsonOf(TypeFacts const& type)
{
    return Json{{"detected", type.detected},
                {"code", type.code},
                {"reason", type.reason},
                {"decidedBy", type.decidedBy},
                {"mismatch", type.mismatch}};
}

Json _jsonOf(SignatureFacts const& signature)
{
    Json json{{"kind", signature.kind}, {"lookedAt", signature.lookedAt}, {"entered", signature.entered}};
    if (signature.signature.empty()) {
        json["signature"] = nullptr;
        json["reason"] = signature.whyNone;
    } else
        json["signature"] = signature.signature;
    setIfAny(json, "tagTokens", signature.tagTokens);
    return json;
}

Json _jsonOf(TextFacts const& text)
{
    Json json = Json::object();
    setIfAny(json, "charset", text.charset);
    setIfAny(json, "declaredCharset", text.declaredCharset);
    if (!text.charsetKnown) json["charsetKnown"] = false;
    json["undecodable"] = text.undecodable;
    json["unencodable"] = text.unencodable;
    setIfAny(json, "language", text.language);
    if (!text.tokens.empty()) json["tokens"] = text.tokens;
    json["text"] = text.text;
    json["textBytes"] = text.textBytes;
    return json;
}

Json _jsonOf(std::pair<std::string, std::string> const& header)
{
    return Json{{"name", header.first}, {"value", header.second}};
}

Json _jsonOf(Finding const& finding)
{
    Json json{{"code", finding.code}, {"path", finding.path}};
    if (finding.where.end > finding.where.begin) json["where"] = _jsonOf(finding.where);
    json["text"] = finding.text;
    return json;
}

template <class Fact> Json _list(std::vector<Fact> const& facts, Json (*one)(Fact const&))
{
    Json json = Json::array();
    for (Fact const& fact : facts) json.push_back(one(fact));
    return json;
}

Json _jsonOf(HtmlFacts const& html)
{
    return Json{{"visibleBytes", html.visibleBytes},
                {"hiddenBytes", html.hiddenBytes},
                {"runs", _list<Run>(html.runs, jsonOf)},
                {"links", _list<Link>(html.links, jsonOf)},
                {"images", _list<ShownImage>(html.images, jsonOf)}};
}

void _addPlace(Json& json, PartFacts const& part)
{
    bool const isHeaded = hasHeaders(part.kind);
    if (isHeaded) json["header"] = _jsonOf(part.header);
    json["body"] = _jsonOf(part.body);
    if (!part.bodyLengthKnown) json["bodyLengthKnown"] = false;
    if (part.ending) json["ending"] = _jsonOf(*part.ending);
    if (isHeaded) json["headers"] = _list<std::pair<std::string, std::string>>(part.headers, _jsonOf);
}

Json _jsonOf(PartFacts const& part)
{
    Json json{{"path", part.path}, {"kind", nameOf(part.kind)}, {"depth", part.depth}};
    _addPlace(json, part);
    setIfAny(json, "mediaType", part.mediaType);
    setIfAny(json, "charset", part.charset);
    setIfAny(json, "encoding", part.encoding);
    setIfAny(json, "boundary", part.boundary);
    setIfAny(json, "disposition", part.disposition);
    setIfAny(json, "name", part.name);
    setIfAny(json, "contentId", part.contentId);
    if (part.kind == PartKind::Leaf) json["decodedBytes"] = part.decodedBytes;
    setIfAny(json, "decodedBy", part.decodedBy);
    if (part.type) json["type"] = _jsonOf(*part.type);
    if (part.signature) json["signature"] = _jsonOf(*part.signature);
    if (part.text) json["text"] = _jsonOf(*part.text);
    if (part.html) json["html"] = _jsonOf(*part.html);
    return json;
}

void _addAddresses(Json& json, char const* field, std::vector<Address> const& addresses)
{
    if (!addresses.empty()) json[field] = _list<Address>(addresses, _jsonOf);
}

} // namespace

Json jsonOf(MessageFacts const& facts)
{
    Json json{{"bytes", facts.bytes}};
    setIfAny(json, "subject", facts.subject);
    setIfAny(json, "messageId", facts.messageId);
    setIfAny(json, "date", facts.date);
    if (facts.time) json["time"] = *facts.time;
    _addAddresses(json, "from", facts.from);
    _addAddresses(json, "sender", facts.sender);
    _addAddresses(json, "replyTo", facts.replyTo);
    _addAddresses(json, "to", facts.to);
    _addAddresses(json, "cc", facts.cc);
    json["route"] = _list<Hop>(facts.route, jsonOf);
    json["parts"] = _list<PartFacts>(facts.parts, _jsonOf);
    json["findings"] = _list<Finding>(facts.findings, _jsonOf);
    setIfAny(json, "capped", facts.capped);
    return json;
}

} // namespace VelmaraCommand
