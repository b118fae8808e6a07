#pragma once

#include <cstdint>
#include <string>

#include "FoundMessage.h"
#include "Pipeline.h"
#include "facts/MessageFacts.h"

namespace VelmaraCommand {

/// Reads a message and writes what is known of it as one line of JSON: "source", then the facts. The
/// number stands first in "source", so that `sort` can merge the lines of several shards.
Analysed lineOf(FoundMessage const& message, std::uint64_t number, Limits const& limits, Wanted const& wanted);

/// The last message that an interrupted scan wrote a line of.
struct LastMessage {
    std::uint64_t number = 0;
    std::string file, entry;
    std::uint64_t offset = 0;
};

/// From a line of such a scan. Throws ScanFailure if it is none.
LastMessage lastMessageOf(std::string const& line);

/// Throws ScanFailure if the input has another message in this place by now.
void requireSame(LastMessage const& last, FoundMessage const& now);

} // namespace VelmaraCommand
