#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

#include <velmara/SharedMimeInfo.h>
#include <velmara/StringPattern.h>

/// The type of a content and a name by a plain walk over all records of a database: no index, no
/// ranking, no early end. It is what the library's quick answer must be equal to, and shares no code
/// with it but the reader of the records and the pattern of one glob.
namespace Velmara {

class PlainMimeType {
public:
    explicit PlainMimeType(SharedMimeInfoImpl const& database) : m_types(database.types())
    {
        for (SharedMimeType const& type : m_types)
            for (SharedMimeType::GlobPattern const& glob : type.globs) m_patterns.push_back(compiled(glob));
    }

    std::string operator()(std::string const& data, std::string const& fileName) const
    {
        if (fileName.empty() && data.size() < 2) return "ErrorEmptyInput";
        std::vector<SharedMimeType const*> const names = byName(fileName);
        std::vector<SharedMimeType const*> const contents = byContent(data);
        if (!contents.empty() && !names.empty()) return refined(contents.front()->mimeType, names);
        if (!contents.empty()) return contents.front()->mimeType;
        if (!names.empty()) return names.front()->mimeType;
        return data.size() < 2 ? "ErrorNoMatched" : sniffed(data);
    }

    /// `below` holds the names on the way to this one: parents may form rings.
    bool isKindOf(std::string const& type, std::string const& parent, std::set<std::string> below = {}) const
    {
        if (!below.insert(type).second) return false;
        for (SharedMimeType const& record : m_types) {
            if (record.mimeType.empty() || record.mimeType != type) continue;
            if (type == parent) return true;
            if (type.substr(0, 5) == "text/" && parent == "text/plain") return true;
            if (type.substr(0, 6) != "inode/" && parent == "application/octet-stream") return true;
            for (std::string const& above : record.subClassOf)
                if (!above.empty() && isKindOf(above, parent, below)) return true;
        }
        return false;
    }

private:
    using Match = SharedMimeType::Magic::Match;

    static StringPattern compiled(SharedMimeType::GlobPattern const& glob)
    {
        if (glob.pattern.empty()) return StringPattern();
        bool const regex = glob.pattern[0] != '*' && glob.pattern.find('[') != std::string::npos;
        return StringPattern(glob.pattern, glob.ignoreCase, regex);
    }

    std::vector<SharedMimeType const*> byName(std::string const& fileName) const
    {
        struct Candidate {
            std::string pattern;
            int weight;
        };
        std::map<size_t, Candidate> candidates; // by the place of the type
        int highest = -0x7fffffff - 1;
        size_t next = 0;
        for (size_t t = 0; t < m_types.size() && !fileName.empty(); ++t)
            for (SharedMimeType::GlobPattern const& glob : m_types[t].globs) {
                StringPattern const& pattern = m_patterns[next++];
                if (m_types[t].mimeType.empty() || glob.pattern.empty() || !pattern.matches(fileName)) continue;
                if (glob.weight > highest) highest = glob.weight;
                candidates.insert({t, {glob.pattern, glob.weight}});
            }
        size_t longest = 0;
        for (auto const& [place, candidate] : candidates)
            if (candidate.weight == highest && candidate.pattern.size() > longest) longest = candidate.pattern.size();
        std::vector<SharedMimeType const*> kept;
        for (auto const& [place, candidate] : candidates)
            if (candidate.weight == highest && candidate.pattern.size() == longest) kept.push_back(&m_types[place]);
        return kept;
    }

    /// Those of the highest priority.
    std::vector<SharedMimeType const*> byContent(std::string const& data) const
    {
        std::vector<std::pair<SharedMimeType const*, int>> candidates;
        int highest = -0x7fffffff - 1;
        for (SharedMimeType const& type : m_types)
            for (SharedMimeType::Magic const& magic : type.magics)
                for (Match const& match : magic.matches) {
                    if (data.size() < 2 || type.mimeType.empty() || !holds(match, data)) continue;
                    candidates.push_back({&type, magic.priority});
                    if (magic.priority > highest) highest = magic.priority;
                }
        std::vector<SharedMimeType const*> best;
        for (auto const& [type, priority] : candidates)
            if (priority == highest) best.push_back(type);
        return best;
    }

    static int nibble(char digit)
    {
        static std::string const digits = "0123456789abcdef", capitals = "0123456789ABCDEF";
        if (digits.find(digit) != std::string::npos) return static_cast<int>(digits.find(digit));
        return capitals.find(digit) != std::string::npos ? static_cast<int>(capitals.find(digit)) : 0;
    }

    static std::string underMask(std::string const& data, std::string const& mask, size_t position)
    {
        std::string result;
        for (size_t pair = 0; pair + 1 < mask.size() && position < data.size(); pair += 2, ++position) {
            int const byte = static_cast<unsigned char>(data[position]);
            int const rest = byte & (nibble(mask[pair]) * 16 + nibble(mask[pair + 1]));
            result += rest == 0 ? 'X' : static_cast<char>(rest);
        }
        return result;
    }

    static bool standsAt(Match const& match, std::string const& data, size_t position)
    {
        if (match.hasMask) return underMask(data, match.mask, position).substr(0, match.value.size()) == match.value;
        if (match.type < Match::Big16 || match.type > Match::Little32)
            return data.compare(position, match.value.size(), match.value) == 0;
        std::string copy = data.substr(position, match.value.size());
        for (char& c : copy)
            if (c == 0) c = 'X';
        return copy == match.value;
    }

    static bool holds(Match const& match, std::string const& data)
    {
        if (match.offsetStart > match.offsetEnd) return false;
        for (long position = match.offsetStart; position <= match.offsetEnd; ++position) {
            if (static_cast<long>(data.size()) - static_cast<long>(match.value.size()) < position) return false;
            if (!standsAt(match, data, static_cast<size_t>(position))) continue;
            if (match.matches.empty()) return true;
            for (Match const& nested : match.matches)
                if (holds(nested, data)) return true;
        }
        return false;
    }

    std::string refined(std::string const& content, std::vector<SharedMimeType const*> const& names) const
    {
        if (content != "application/zip" && content != "application/gzip" && content != "application/x-bzip")
            return content;
        for (SharedMimeType const* type : names)
            if (isKindOf(type->mimeType, content)) return type->mimeType;
        return content;
    }

    static std::string sniffed(std::string const& data)
    {
        bool binary = false;
        for (size_t at = 0; at < data.size(); ++at) {
            auto const byte = static_cast<unsigned char>(data[at]);
            if (byte > 127) return "text/plain";
            if (at >= 32) continue;
            if (byte == 0) return "application/octet-stream";
            if ((byte < 32 && !(byte >= 9 && byte <= 13)) || byte == 127) binary = true;
        }
        return binary ? "application/octet-stream" : "text/plain";
    }

    std::vector<SharedMimeType> const& m_types;
    std::vector<StringPattern> m_patterns; // of all globs
};

} // namespace Velmara
