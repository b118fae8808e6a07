#pragma once

#include <functional>
#include <string>
#include <vector>

#include <velmara/MediaIn.h>
#include <velmara/MediaOut.h>

namespace Velmara {

/// What a piece of work is done on. Tests put media here that fail.
struct WorkPlace {
    MediaIn message;
    /// Makes a sink that appends to a buffer, which outlives it.
    std::function<MediaOut(Buffer&)> sink;
    /// Where a copy of the message is written; empty: nowhere.
    std::string copyPath;
};

/// One thing that a daemon asks of a message, with all that comes of it in words. Two runs over the same
/// bytes give the same words, whatever happened on this or another thread in between.
struct WorkStep {
    char const* name;
    std::string (*run)(WorkPlace& place);
};

/// Every step, and so every room of the library.
std::vector<WorkStep> const& workSteps();

/// All steps over a message in memory.
std::string wholeWork(std::string const& message);

/// Reads the tables that a daemon reads before it starts its workers, word lists as well.
void loadTables();

/// The content of a file; fails loudly where there is none.
std::string contentOf(std::string const& path);

/// The messages in samples/, by name; tests run in the folder of the project.
std::vector<std::string> samplePaths();

} // namespace Velmara
