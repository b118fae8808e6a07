#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "ExternalSort.h"
#include "ScanLine.h"
#include "facts/JsonLine.h"

namespace VelmaraCommand {

/// What the messages of a group have in common, in the order in which groups are shown.
enum class GroupKind : unsigned char { Text, Tags, Image, Host };
constexpr size_t groupKinds = 4;

/// "text", "tags", "image", "host".
char const* nameOf(GroupKind kind);

struct GroupOptions {
    std::array<bool, groupKinds> kinds = {true, true, true, true};
    std::uint64_t least = 2;   // messages of a group that is shown
    size_t most = 5;           // senders, subjects and hosts that are named of it
    ExternalSort::Limits sort; // of each of the two sorts
};

/// Finds the messages that have a signature or a host of a link in common.
///
/// Each message adds, for each of its keys, a few rows: one that counts it, and one for each sender, its
/// subject and each host. Sorted, the rows of a group stand together with equal ones made into one, so
/// the most frequent senders are exact though memory does not grow; then the groups are sorted by
/// size. The result does not depend on the order of the messages.
///
/// Limits: of one message, 4 senders and the first 16 hosts in the order of their bytes count as facts of
/// its groups, though it belongs to the groups of all its hosts. Subjects, senders and hosts are cut
/// at 256 bytes, keys longer than that are left out.
class Groups {
public:
    explicit Groups(GroupOptions const& options);

    /// A key that stands twice in a message counts once. Throws SpillFailure.
    void add(ScanLine const& line);
    std::uint64_t messages() const { return m_messages; }

    /// Each group as a JSON object: "kind", "key", "messages", "first" and "last" (of the messages' own
    /// dates, in seconds since 1970; none where no date can be read), "senders", "subjects" and
    /// "hosts", each with "distinct" and "most", the most frequent ones first as "value" and "messages".
    using Sink = std::function<void(Json const& group)>;
    /// By kind, the largest first, equal ones by key. How many there are is told ahead of each kind that has
    /// any. To be called once. Throws SpillFailure, and what the sinks throw.
    void finish(std::function<void(GroupKind kind, std::uint64_t groups)> const& beginKind, Sink const& sink);

private:
    void addRows(GroupKind kind, std::set<std::string> const& keys, ScanLine const& line);

    GroupOptions const m_options;
    ExternalSort m_rows;
    std::uint64_t m_messages = 0;
};

} // namespace VelmaraCommand
