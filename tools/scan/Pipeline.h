#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "LineOutput.h"
#include "MessageSource.h"
#include "Progress.h"

namespace VelmaraCommand {

/// What becomes of one message.
struct Analysed {
    std::string line; // with its LF; "" if there is none
    bool capped = false;
};

/// From a message and its number, on any thread. What it throws is told as the message's failure.
using Analyse = std::function<Analysed(FoundMessage const& message, std::uint64_t number)>;

struct ScanOptions {
    unsigned int threads = 1;
    std::uint64_t shard = 0, shards = 1; // the messages with number % shards == shard
    std::uint64_t first = 0;             // those with smaller numbers are passed over
    /// Called with the message in front of `first`, to see whether the input is still the same one.
    std::function<void(FoundMessage const&)> checkLast;
};

struct ScanResult {
    std::uint64_t capped = 0;
    std::uint64_t failed = 0; // messages without a line
};

/// Takes messages from the source, analyses them on several threads and writes the lines in the order of
/// the source. Only a few messages for each thread are under way at a time. Ends early, with the lines of all
/// messages before some number written, when the scan is interrupted. Throws FileFailure, and what
/// `checkLast` throws.
ScanResult scanAll(MessageSource& source, ScanContext const& context, ScanOptions const& options,
                   Analyse const& analyse, LineOutput& output, Progress& progress);

} // namespace VelmaraCommand
