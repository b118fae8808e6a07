// Of some thousand patterns all but a dozen are "*" and an ending, or a plain name. Those are found by
// hashing: the name is read backwards once, and the hash of each of its endings falls out on the way.
// It is looked up only where a known ending could begin, which is mostly at the dots. "a.tar.gz" asks
// for "gz" no more than for "r.gz", but for ".gz" and ".tar.gz", and in the end for itself among the
// plain names. What is left is tried one after the other.
#include "filetype/GlobIndex.h"

#include <algorithm>

#include <velmara/StringOperations.h>

#include "runtime/Ascii.h"

namespace Velmara {

namespace {

constexpr char _special[] = "*?[";

/// Takes one more byte, in front of those that are in the hash.
constexpr std::uint64_t _extended(std::uint64_t hash, char byte)
{
    return (hash ^ static_cast<unsigned char>(byte)) * 0x100000001B3u;
}

constexpr std::uint64_t _emptyHash = 0xCBF29CE484222325u;

std::uint64_t _hash(std::string_view text)
{
    std::uint64_t hash = _emptyHash;
    for (size_t at = text.size(); at-- > 0;) hash = _extended(hash, text[at]);
    return hash;
}

/// "*" begins no regular expression, so a set behind it is one of a glob.
bool _isRegex(std::string const& pattern)
{
    return pattern[0] != '*' && pattern.find('[') != std::string::npos;
}

/// What a name that fits can begin with.
std::bitset<256> _firstBytes(SharedMimeType::GlobPattern const& glob)
{
    std::bitset<256> bytes;
    auto const first = static_cast<unsigned char>(glob.pattern[0]);
    if (_isRegex(glob.pattern) || std::string_view(_special).find(glob.pattern[0]) != std::string_view::npos)
        return bytes.set();
    for (unsigned c = 0; c < bytes.size(); ++c)
        bytes[c] = c == first || (glob.ignoreCase && toLower(static_cast<unsigned char>(c)) == toLower(first));
    return bytes;
}

template <class Texts, class Numbers>
void _lookUp(Texts const& texts, std::uint64_t hash, std::string_view text, Numbers& found)
{
    auto const [from, to] = texts.equal_range(hash);
    for (auto at = from; at != to; ++at)
        if (at->second.text == text) found.insert(found.end(), at->second.entries.begin(), at->second.entries.end());
}

template <class Texts> auto& _entriesOf(Texts& texts, std::string const& text)
{
    std::uint64_t const hash = _hash(text);
    auto const [from, to] = texts.equal_range(hash);
    for (auto at = from; at != to; ++at)
        if (at->second.text == text) return at->second.entries;
    return texts.insert({hash, {text, {}}})->second.entries;
}

} // namespace

GlobIndex::GlobIndex(std::vector<SharedMimeType> const& types)
{
    for (SharedMimeType const& type : types)
        for (SharedMimeType::GlobPattern const& glob : type.globs) {
            if (glob.pattern.empty()) continue;
            add(glob, static_cast<std::uint32_t>(m_entries.size()));
            m_entries.push_back({&type, &glob});
        }
}

void GlobIndex::add(SharedMimeType::GlobPattern const& glob, std::uint32_t entry)
{
    bool const ending = glob.pattern[0] == '*' && glob.pattern.size() > 1;
    std::string text = glob.pattern.substr(ending ? 1 : 0);
    if (text.find_first_of(_special) != std::string::npos) {
        m_others.push_back(
            {StringPattern(glob.pattern, glob.ignoreCase, _isRegex(glob.pattern)), _firstBytes(glob), entry});
        return;
    }
    if (glob.ignoreCase) stringToLowerNoCopy(text);
    Endings& endings = glob.ignoreCase ? m_folded : m_exact;
    endings.longest = std::max(endings.longest, text.size());
    if (ending) endings.firstBytes.set(static_cast<unsigned char>(text[0]));
    _entriesOf(ending ? endings.endings : endings.names, text).push_back(entry);
}

void GlobIndex::find(Endings const& among, std::string_view name, Numbers& found)
{
    std::uint64_t hash = _emptyHash;
    size_t const stop = name.size() > among.longest ? name.size() - among.longest : 0;
    for (size_t at = name.size(); at-- > stop;) {
        hash = _extended(hash, name[at]);
        if (among.firstBytes[static_cast<unsigned char>(name[at])])
            _lookUp(among.endings, hash, name.substr(at), found);
    }
    if (stop == 0) _lookUp(among.names, hash, name, found);
}

std::vector<GlobIndex::Entry const*> GlobIndex::fitting(std::string const& name) const
{
    Numbers numbers;
    find(m_exact, name, numbers);
    find(m_folded, stringToLower(name), numbers);
    for (Other const& other : m_others)
        if ((name.empty() || other.firstBytes[static_cast<unsigned char>(name[0])]) && other.pattern.matches(name))
            numbers.push_back(other.entry);
    std::sort(numbers.begin(), numbers.end());
    std::vector<Entry const*> entries(numbers.size());
    std::transform(numbers.begin(), numbers.end(), entries.begin(),
                   [&](std::uint32_t number) { return &m_entries[number]; });
    return entries;
}

} // namespace Velmara
