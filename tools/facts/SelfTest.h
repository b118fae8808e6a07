#pragma once

#include <string>
#include <vector>

/// A few small messages and bodies that ship with the tool, and what they give here. Where two sites
/// do not agree on a signature, this tells whether the library reads alike at both.
namespace VelmaraCommand {

/// One input of fixed bytes, with the result that was worked out by hand and the one of this process.
struct VectorOutcome {
    std::string name;
    std::string expected;
    std::string given; // "threw REASON" if it ended by an exception

    bool holds() const { return given == expected; }
};

/// Runs all vectors, always in the same order. None needs a data file, and none changes what the process
/// reads later. Takes a few milliseconds; safe from any thread.
std::vector<VectorOutcome> runVectors();

} // namespace VelmaraCommand
