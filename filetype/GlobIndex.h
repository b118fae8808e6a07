#pragma once

#include <bitset>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include <velmara/SharedMimeType.h>
#include <velmara/StringPattern.h>

namespace Velmara {

/// Finds the patterns of a type database that fit a name. It holds what it was built from by pointer
/// and never changes, so any number of threads may use it.
class GlobIndex {
public:
    struct Entry {
        SharedMimeType const* type;
        SharedMimeType::GlobPattern const* glob;
    };

    explicit GlobIndex(std::vector<SharedMimeType> const& types);

    /// The patterns that fit, in the order of the database.
    std::vector<Entry const*> fitting(std::string const& name) const;

private:
    using Numbers = std::vector<std::uint32_t>; // of entries
    struct Text {
        std::string text; // what a name must end with, or be
        Numbers entries;
    };
    using Texts = std::unordered_multimap<std::uint64_t, Text>; // by the hash of the text read backwards

    /// All patterns that are plain endings or plain names, for one way to look at letter case.
    struct Endings {
        Texts endings, names;
        std::bitset<256> firstBytes; // of the endings
        size_t longest = 0;          // of both
    };

    /// A pattern that has to be tried, unless the name's first byte already speaks against it.
    struct Other {
        StringPattern pattern;
        std::bitset<256> firstBytes;
        std::uint32_t entry;
    };

    void add(SharedMimeType::GlobPattern const& glob, std::uint32_t entry);
    static void find(Endings const& among, std::string_view name, Numbers& found);

    std::vector<Entry> m_entries; // in the order of the database
    Endings m_exact, m_folded;    // the names looked up in m_folded are in lower case
    std::vector<Other> m_others;
};

} // namespace Velmara
