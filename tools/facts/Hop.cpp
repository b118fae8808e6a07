#include "Hop.h"

#include <velmara/StringOperations.h>

#include "MailDate.h"

namespace VelmaraCommand {

using namespace Velmara;

namespace {

/// The clause ahead of the date keeps its ";" where no blank parts them.
std::string _withoutSemicolon(std::string text)
{
    if (!text.empty() && text.back() == ';') text.pop_back();
    return text;
}

} // namespace

Hop hopOf(Received const& received)
{
    Hop hop;
    hop.from = received.from(); // ahead of the reverse name, which is found along with it
    hop.reverseName = received.reverseName();
    hop.address = received.address();
    hop.by = _withoutSemicolon(received.by());
    hop.with = _withoutSemicolon(received.find("with"));
    hop.date = received.date();
    hop.time = readMailDate(hop.date);
    return hop;
}

std::vector<Hop> routeOf(HeaderContainer const& headers)
{
    std::vector<Hop> route;
    for (Header const& header : headers.headers())
        if (stringCompareNoCase(header.type(), Received::htype)) route.push_back(hopOf(Received(header)));
    return std::vector<Hop>(route.rbegin(), route.rend());
}

std::optional<std::int64_t> delayBetween(Hop const& earlier, Hop const& later)
{
    if (!earlier.time || !later.time) return std::nullopt;
    return *later.time - *earlier.time;
}

Json jsonOf(Hop const& hop)
{
    Json json = Json::object();
    setIfAny(json, "from", hop.from);
    setIfAny(json, "reverseName", hop.reverseName);
    setIfAny(json, "address", hop.address.asString(true));
    setIfAny(json, "by", hop.by);
    setIfAny(json, "with", hop.with);
    setIfAny(json, "date", hop.date);
    if (hop.time) json["time"] = *hop.time;
    return json;
}

} // namespace VelmaraCommand
