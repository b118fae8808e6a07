// `velmara route`: the way of a message, from its "Received" headers. Each was written by the host that
// took the message over, so all below the first host that is not trusted may be made up.
#include <iostream>
#include <string>
#include <vector>

#include <velmara/Velmara.h>

#include "MessageVerb.h"
#include "facts/Hop.h"
#include "facts/MailDate.h"
#include "facts/Shown.h"

namespace VelmaraCommand {

namespace {

using namespace Velmara;

struct Options : MessageOptions {
    std::vector<std::string> networks;
};

/// False, with a complaint, where one cannot be read.
bool _readNetworks(std::vector<std::string> const& texts, TrustedMTASet& trusted)
{
    for (std::string const& text : texts) {
        IPAddressMask const network(text);
        if (network.isNull()) {
            complain("--trusted", text + " is no network; write 192.0.2.0/24 or 2001:db8::/32");
            return false;
        }
        trusted.trustedMTAs.insert(network);
    }
    return true;
}

std::string _fromLine(Hop const& hop, bool trusted)
{
    std::string line = hop.from.empty() ? std::string() : ' ' + shown(hop.from);
    if (!hop.reverseName.empty()) line += " (" + shown(hop.reverseName) + ')';
    if (!hop.address.isNull()) line += " [" + hop.address.asString(true) + ']';
    return "from" + (line.empty() ? " ?" : line) + (trusted ? " trusted" : "");
}

std::string _byLine(Hop const& hop)
{
    std::string const by = hop.by.empty() ? "?" : shown(hop.by);
    return "by   " + by + (hop.with.empty() ? "" : " with " + shown(hop.with));
}

std::string _dateLine(Hop const& hop)
{
    if (hop.time) return "at   " + shownTime(*hop.time);
    return hop.date.empty() ? std::string() : "at   \"" + shown(hop.date) + "\", which is no date";
}

void _drawHop(size_t number, Hop const& hop, bool last, bool trusted)
{
    std::string const label = std::to_string(number);
    std::string const below = (last ? " " : "│") + std::string(label.size() + 1, ' ');
    std::cout << label << "  " << _fromLine(hop, trusted) << '\n' << below << _byLine(hop) << '\n';
    std::string const date = _dateLine(hop);
    if (!date.empty()) std::cout << below << date << '\n';
}

void _draw(std::vector<Hop> const& route, TrustedMTASet const& trusted)
{
    if (route.empty()) std::cout << "no \"Received\" headers\n";
    for (size_t i = 0; i < route.size(); ++i) {
        if (i > 0) {
            auto const delay = delayBetween(route[i - 1], route[i]);
            std::cout << (delay ? "│  " + shownDelay(*delay) : "│") << '\n';
        }
        _drawHop(i + 1, route[i], i + 1 == route.size(), trusted.isTrusted(route[i].address));
    }
}

Json _jsonOf(std::vector<Hop> const& route, TrustedMTASet const& trusted)
{
    Json hops = Json::array();
    for (size_t i = 0; i < route.size(); ++i) {
        Json json = jsonOf(route[i]);
        auto const delay = i > 0 ? delayBetween(route[i - 1], route[i]) : std::nullopt;
        if (delay) json["delay"] = *delay;
        json["trusted"] = trusted.isTrusted(route[i].address);
        hops.push_back(std::move(json));
    }
    return hops;
}

int _showRoute(Input& input, Options const& options, TrustedMTASet const& trusted)
{
    Ref<Rfc822Msg> message = Rfc822Msg::parse(input.media());
    std::vector<Hop> const route = routeOf(message->root()->headers());
    if (options.json) {
        writeJson(input, {{"hops", _jsonOf(route, trusted)}});
        return Done;
    }
    printName(input, options);
    _draw(route, trusted);
    return Done;
}

int _showRoutes(Options const& options)
{
    TrustedMTASetRef trusted;
    if (!_readNetworks(options.networks, *trusted.get())) return WrongUseOrUnreadable;
    return forEachInput(options.files, [&](Input& in) { return _showRoute(in, options, *trusted.get()); });
}

} // namespace

void addRoute(CLI::App& commandLine, Action& action)
{
    MessageVerb<Options> verb(commandLine, "route", "Draw the way of a message from its \"Received\" headers");
    verb->add_option("--trusted", verb.options().networks, "Mark hops from this network; may be given several times")
        ->type_name("NETWORK")
        ->delimiter(',')
        ->allow_extra_args(false);
    verb->footer("Example: velmara route --trusted 192.0.2.0/24 mail.eml");
    verb.run(_showRoutes, action);
}

} // namespace VelmaraCommand
