#pragma once

#include <array>
#include <bitset>
#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include <velmara/Export.h>
#include <velmara/SharedMimeType.h>

namespace Velmara {

/// Finds the tests of a type database that hold for a content. It holds what it was built from by
/// pointer and never changes, so any number of threads may use it.
class MagicIndex {
public:
    /// An outermost test.
    struct Entry {
        SharedMimeType const* type;
        SharedMimeType::Magic const* magic;
        SharedMimeType::Magic::Match const* match;
    };

    explicit MagicIndex(std::vector<SharedMimeType> const& types);

    /// The first of the highest priority among those that hold; null if none does.
    Entry const* best(uchar_t const* data, size_t length) const;
    /// All that hold, in the order of the database.
    std::vector<Entry> holding(uchar_t const* data, size_t length) const;

private:
    /// How a byte of the content is compared with one of the value.
    enum Compare : std::uint8_t { AsItStands, ZeroAsX, UnderMask, Never };

    struct Node {
        std::uint32_t value; // the bytes of the value in m_bytes, followed by those of the mask
        std::uint32_t length;
        std::int64_t start, end; // places tried
        std::uint32_t firstChild, endChild;
        Compare compare;
    };

    using Ranks = std::vector<std::uint32_t>; // ascending: the earlier, the higher the priority

    /// The tests at one place, by the byte that stands there.
    struct Place {
        size_t offset;
        std::uint32_t first;                   // the lowest rank among them
        std::array<std::uint16_t, 256> byByte; // index into lists; 0 is the empty list
        std::vector<Ranks> lists;
    };

    struct Content {
        uchar_t const* data;
        size_t length;
    };

    // set up
    std::uint32_t addNodes(std::vector<SharedMimeType::Magic::Match> const& matches);
    Node compiled(SharedMimeType::Magic::Match const& match);
    void file(std::uint32_t rank);
    void fileAtPlace(std::uint32_t rank);
    bool couldBegin(Node const& node, unsigned byte) const;

    // questions
    bool same(Node const& node, uchar_t const* at) const;
    bool found(Node const& node, Content content) const;
    bool holds(Node const& node, Content content) const;
    std::uint32_t bestAtPlaces(Content content, std::uint32_t best) const;
    std::uint32_t bestInSweep(Content content, std::uint32_t best) const;
    std::uint32_t bestInPair(Content content, size_t at, std::uint32_t best) const;
    std::uint32_t bestOfOthers(Content content, std::uint32_t best) const;

    std::string m_bytes;          // values and masks of all nodes
    std::vector<Node> m_nodes;    // the outermost by rank, then the nested ones, siblings together
    std::vector<Entry> m_entries; // by rank

    std::vector<Place> m_places;                      // tests of one place, by the lowest rank of each
    size_t m_sweepEnd = 0;                            // behind the last place that a test of the sweep begins at
    std::bitset<65536> m_pairs;                       // the pairs of bytes that a test of the sweep begins with
    std::unordered_map<std::uint16_t, Ranks> m_sweep; // by that pair
    Ranks m_others;
};

} // namespace Velmara
