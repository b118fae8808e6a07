#pragma once

#include <string>
#include <vector>

#include "hostile/Case.h"

namespace Velmara::Hostile {

/// What one run of a case took.
struct Run {
    size_t bytes = 0;
    double nanoseconds = 0; // of processor time, the least of some runs
    unsigned long peak = 0; // KiB resident at most, in a process that did nothing else
    unsigned long long output = 0;
};

/// The least of some runs in this process; memory is not looked at.
Run leastOf(int times, void (*work)(Input const& input, Sink& sink), Input const& input);

/// A file in memory that processes started here can open.
class SharedFile {
public:
    explicit SharedFile(std::string const& bytes);
    SharedFile(SharedFile const&) = delete;
    SharedFile& operator=(SharedFile const&) = delete;
    ~SharedFile();
    std::string path() const;

private:
    int m_descriptor;
};

/// Starts this program anew with these arguments and gives what it wrote; throws if it fails.
std::string outputOf(std::vector<std::string> const& arguments);
/// The most memory that this process ever had resident, in KiB. Not getrusage, whose figure begins with
/// that of the process it was started from.
unsigned long peakMemory();

/// `velmara_hostile measure [FILTER [MS]]`: the table, with an n that takes that many milliseconds; 1 if a case
/// is beyond its bounds.
int measure(std::string const& filter, double firstMilliseconds);
/// `velmara_hostile run NAME FILE`: one case in a process of its own.
int runOne(std::string const& name, std::string const& path);

/// `velmara_hostile memory`: what bodies and items cost; 1 if that is beyond its bounds.
int measureMemory();
/// `velmara_hostile memory-of WHAT FILE`: one measure in a process of its own.
int runMemory(std::string const& what, std::string const& path);

} // namespace Velmara::Hostile
