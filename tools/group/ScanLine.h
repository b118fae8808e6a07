#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <string>

namespace VelmaraCommand {

/// What grouping needs of one message, as a line of `velmara scan` tells it.
struct ScanLine {
    std::string schema, fingerprint; // "" where the line has none
    std::string subject;
    std::optional<std::int64_t> time;    // seconds since 1970
    std::set<std::string> senders;       // addresses
    std::set<std::string> texts, images; // signatures of the parts, by kind
    std::set<std::string> tags;          // tag tokens of the parts
    std::set<std::string> hosts;         // that links reach
};

/// Reads the lines of a file, one after the other.
///
/// A line is never held: it is read as it comes, and what grouping does not need is passed over. So memory
/// follows the longest text within a line and not the line. A line that cannot be read costs itself.
class ScanLineReader {
public:
    /// The longest line that is read, if nothing else is said.
    static constexpr std::uint64_t defaultLimit = 64u << 20;

    enum Outcome {
        Read,   // `line` is what it tells
        Broken, // `reason` tells why
        AtEnd   // there is no further line
    };

    /// The descriptor is the caller's. A line of more than `limit` bytes is not read.
    explicit ScanLineReader(int descriptor, std::uint64_t limit = defaultLimit);
    ~ScanLineReader();

    /// The next line that is not blank. Throws std::system_error if the file cannot be read.
    Outcome next(ScanLine& line, std::string& reason);
    /// Of the line that was read last; the first is 1.
    std::uint64_t number() const;

private:
    class Bytes;
    std::unique_ptr<Bytes> m_bytes;
};

} // namespace VelmaraCommand
