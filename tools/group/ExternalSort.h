#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace VelmaraCommand {

/// Temporary files cannot be made, written or read: names the directory and the reason of the system.
struct SpillFailure : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// Sorts more records than memory holds: keys in the order of their bytes, equal ones in the order in
/// which they were added, or made into one.
///
/// Records gather in one buffer, which is made at the start and never grows. A full one is sorted and
/// becomes a run in a temporary file; runs are merged a few at a time, so that neither the files that
/// are open nor the memory grow with the input but by its logarithm. The files have no name: whatever
/// ends the process, nothing is left behind.
class ExternalSort {
public:
    struct Limits {
        size_t memory = 32u << 20;  // of the buffer; at most 1 GiB
        unsigned int fanIn = 16;    // runs that are merged at a time; at least 2
        std::string directory = ""; // of the temporary files; "" is TMPDIR, or /tmp
    };
    /// Makes one value of those of two records with equal keys, whichever comes first: changes the
    /// bytes of the one, whose length stays. All values of a key are of one length then.
    using Combine = void (*)(char* value, std::string_view other);
    using Sink = std::function<void(std::string_view key, std::string_view value)>;

    /// Without `combine`, records with equal keys all stay.
    explicit ExternalSort(Limits const& limits, Combine combine = nullptr);
    ~ExternalSort();
    ExternalSort(ExternalSort const&) = delete;
    ExternalSort& operator=(ExternalSort const&) = delete;

    /// Throws SpillFailure, and std::length_error for a record that is larger than the buffer.
    void add(std::string_view key, std::string_view value);
    /// Hands all records over in order; what they refer to lives as long as the call. Ends the life of
    /// the sort. Throws SpillFailure, and what the sink throws.
    void drain(Sink const& sink);

    /// Runs that were written, those of merges included.
    std::uint64_t runsWritten() const { return m_runsWritten; }

private:
    class Buffer;
    class Combiner;
    class Run;
    class RunWriter;
    using Runs = std::vector<std::unique_ptr<Run>>;

    void spill();
    void keep(std::unique_ptr<Run> run);
    std::unique_ptr<Run> merged(Runs const& runs);
    void merge(Runs const& runs, Sink const& sink) const;

    Limits m_limits;
    Combine m_combine;
    std::unique_ptr<Buffer> m_buffer;
    std::vector<Runs> m_levels; // a run of level n is made of fanIn runs of level n - 1
    std::uint64_t m_runsWritten = 0;
};

} // namespace VelmaraCommand
