#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <velmara/HeaderContainer.h>
#include <velmara/Received.h>

#include "Shown.h"

namespace VelmaraCommand {

/// One "Received" header: a host that took the message over from another.
struct Hop {
    Velmara::IPAddress address; // null if none was found
    std::string from, reverseName, by, with, date;
    std::optional<std::int64_t> time; // seconds since 1970, where the date can be read
};

Hop hopOf(Velmara::Received const& received);

/// In the order in which the message went: the last header is the first hop.
std::vector<Hop> routeOf(Velmara::HeaderContainer const& headers);

/// Seconds between two hops, where both times are known.
std::optional<std::int64_t> delayBetween(Hop const& earlier, Hop const& later);

/// Only what there is: "from", "reverseName", "address", "by", "with", "date", "time".
Json jsonOf(Hop const& hop);

} // namespace VelmaraCommand
