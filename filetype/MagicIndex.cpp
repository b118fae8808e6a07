// The winner is the first test of the highest priority that holds. So the tests are ranked once by
// priority and, within one, by their order in the file; a question looks for the lowest rank that
// holds, and a test of a higher rank than the best so far need not be tried at all.
//
// Few tests need a try. One at a fixed place is filed under that place and each byte that can stand
// there, so a PDF signature is tried only on contents that begin with "%". One that may begin at any
// of the first places, as "<html" within 256 bytes, is filed under its first two bytes, and one sweep
// over these places looks for all of them. The rest (masked or nested tests in a range, far ranges,
// values of less than two bytes) is tried by rank.
//
// A nested test has places of its own, counted from the start of the content and not from where its
// parent was found. So it is enough that the parent's value is found somewhere and that one of the
// nested tests holds: the price of a content is at most each test once at each of its places, and
// hostile contents cannot multiply depth by length.
#include "filetype/MagicIndex.h"

#include <algorithm>
#include <cstring>
#include <tuple>

#include "filetype/MagicMask.h"

namespace Velmara {

namespace {

using Match = SharedMimeType::Magic::Match;

/// A range that ends farther out is searched for its own value alone.
constexpr std::int64_t _sweptPlaces = 512;

std::uint16_t _pair(uchar_t first, uchar_t second)
{
    return static_cast<std::uint16_t>(first << 8 | second);
}

bool _isNumber(int type)
{
    return type != Match::String && type != Match::Byte;
}

} // namespace

MagicIndex::MagicIndex(std::vector<SharedMimeType> const& types)
{
    for (SharedMimeType const& type : types)
        for (SharedMimeType::Magic const& magic : type.magics)
            for (Match const& match : magic.matches) m_entries.push_back({&type, &magic, &match});
    std::stable_sort(m_entries.begin(), m_entries.end(),
                     [](Entry const& a, Entry const& b) { return a.magic->priority > b.magic->priority; });
    for (Entry const& entry : m_entries) m_nodes.push_back(compiled(*entry.match));
    for (size_t rank = 0; rank < m_entries.size(); ++rank) {
        std::uint32_t const first = addNodes(m_entries[rank].match->matches);
        m_nodes[rank].firstChild = first;
        m_nodes[rank].endChild = first + static_cast<std::uint32_t>(m_entries[rank].match->matches.size());
        file(static_cast<std::uint32_t>(rank));
    }
    std::sort(m_places.begin(), m_places.end(), [](Place const& a, Place const& b) { return a.first < b.first; });
}

/// Adds nested tests and gives the index of the first. Depth is that of the XML, at most 256.
std::uint32_t MagicIndex::addNodes(std::vector<Match> const& matches)
{
    auto const first = static_cast<std::uint32_t>(m_nodes.size());
    for (Match const& match : matches) m_nodes.push_back(compiled(match));
    for (size_t i = 0; i < matches.size(); ++i) {
        std::uint32_t const child = addNodes(matches[i].matches);
        m_nodes[first + i].firstChild = child;
        m_nodes[first + i].endChild = child + static_cast<std::uint32_t>(matches[i].matches.size());
    }
    return first;
}

MagicIndex::Node MagicIndex::compiled(Match const& match)
{
    Node node{};
    node.value = static_cast<std::uint32_t>(m_bytes.size());
    node.length = static_cast<std::uint32_t>(match.value.size());
    node.start = match.offsetStart;
    node.end = match.offsetEnd;
    m_bytes += match.value;
    if (match.hasMask) {
        // The masked content is as long as the mask, so a longer value is never equal to it.
        node.compare = match.value.size() > match.mask.size() / 2 ? Never : UnderMask;
        for (size_t i = 0; node.compare == UnderMask && i < match.value.size(); ++i)
            m_bytes += static_cast<char>(maskByte(match.mask, i));
    } else if (_isNumber(match.type) && match.value.find_first_of(std::string("X\0", 2)) != std::string::npos)
        node.compare = ZeroAsX;
    return node;
}

void MagicIndex::file(std::uint32_t rank)
{
    Node const& node = m_nodes[rank];
    bool const nested = node.firstChild != node.endChild;
    if (node.start == node.end && node.length > 0)
        fileAtPlace(rank);
    else if (node.compare == AsItStands && node.length > 1 && node.end < _sweptPlaces && !nested) {
        std::uint16_t const pair =
            _pair(static_cast<uchar_t>(m_bytes[node.value]), static_cast<uchar_t>(m_bytes[node.value + 1]));
        m_pairs.set(pair);
        m_sweep[pair].push_back(rank);
        m_sweepEnd = std::max(m_sweepEnd, static_cast<size_t>(node.end) + 1);
    } else
        m_others.push_back(rank);
}

void MagicIndex::fileAtPlace(std::uint32_t rank)
{
    Node const& node = m_nodes[rank];
    auto const offset = static_cast<size_t>(node.start);
    auto place = std::find_if(m_places.begin(), m_places.end(), [&](Place const& p) { return p.offset == offset; });
    if (place == m_places.end()) place = m_places.insert(m_places.end(), {offset, rank, {}, {Ranks()}});
    for (unsigned byte = 0; byte < place->byByte.size(); ++byte) {
        if (!couldBegin(node, byte)) continue;
        if (place->byByte[byte] == 0) {
            place->byByte[byte] = static_cast<std::uint16_t>(place->lists.size());
            place->lists.emplace_back();
        }
        place->lists[place->byByte[byte]].push_back(rank);
    }
}

bool MagicIndex::couldBegin(Node const& node, unsigned byte) const
{
    Node first = node;
    first.length = 1;
    if (node.compare != UnderMask) {
        auto const content = static_cast<uchar_t>(byte);
        return same(first, &content);
    }
    auto const mask = static_cast<uchar_t>(m_bytes[node.value + node.length]);
    return withoutZero(static_cast<uchar_t>(byte & mask)) == static_cast<uchar_t>(m_bytes[node.value]);
}

/// The value stands at `at`, where there are enough bytes.
bool MagicIndex::same(Node const& node, uchar_t const* at) const
{
    auto const* const value = reinterpret_cast<uchar_t const*>(m_bytes.data()) + node.value;
    switch (node.compare) {
    case AsItStands:
        return std::memcmp(value, at, node.length) == 0;
    case ZeroAsX:
        return std::equal(value, value + node.length, at, [](uchar_t v, uchar_t c) { return v == withoutZero(c); });
    case UnderMask:
        for (size_t i = 0; i < node.length; ++i)
            if (withoutZero(at[i] & value[node.length + i]) != value[i]) return false;
        return true;
    default:
        return false;
    }
}

/// The value stands at one of its places.
bool MagicIndex::found(Node const& node, Content content) const
{
    std::int64_t const last = std::min(node.end, static_cast<std::int64_t>(content.length) - node.length);
    if (last < node.start) return false;
    uchar_t const* const first = content.data + node.start;
    if (last == node.start) return same(node, first);
    if (node.compare == AsItStands)
        return ::memmem(first, static_cast<size_t>(last - node.start) + node.length, m_bytes.data() + node.value,
                        node.length);
    for (std::int64_t at = 0; at <= last - node.start; ++at)
        if (same(node, first + at)) return true;
    return false;
}

bool MagicIndex::holds(Node const& node, Content content) const
{
    if (!found(node, content)) return false;
    if (node.firstChild == node.endChild) return true;
    return std::any_of(m_nodes.begin() + node.firstChild, m_nodes.begin() + node.endChild,
                       [&](Node const& child) { return holds(child, content); });
}

std::uint32_t MagicIndex::bestAtPlaces(Content content, std::uint32_t best) const
{
    for (Place const& place : m_places) {
        if (place.first >= best) break;
        if (place.offset >= content.length) continue;
        for (std::uint32_t rank : place.lists[place.byByte[content.data[place.offset]]]) {
            if (rank >= best) break;
            if (holds(m_nodes[rank], content)) best = rank;
        }
    }
    return best;
}

std::uint32_t MagicIndex::bestInSweep(Content content, std::uint32_t best) const
{
    if (content.length < 2) return best;
    size_t const end = std::min(m_sweepEnd, content.length - 1);
    for (size_t at = 0; at < end; ++at)
        if (m_pairs[_pair(content.data[at], content.data[at + 1])]) best = bestInPair(content, at, best);
    return best;
}

std::uint32_t MagicIndex::bestInPair(Content content, size_t at, std::uint32_t best) const
{
    auto const place = static_cast<std::int64_t>(at);
    for (std::uint32_t rank : m_sweep.find(_pair(content.data[at], content.data[at + 1]))->second) {
        if (rank >= best) break;
        Node const& node = m_nodes[rank];
        if (place < node.start || place > node.end || content.length - at < node.length) continue;
        if (same(node, content.data + at)) return rank;
    }
    return best;
}

std::uint32_t MagicIndex::bestOfOthers(Content content, std::uint32_t best) const
{
    for (std::uint32_t rank : m_others) {
        if (rank >= best) break;
        if (holds(m_nodes[rank], content)) return rank;
    }
    return best;
}

MagicIndex::Entry const* MagicIndex::best(uchar_t const* data, size_t length) const
{
    Content const content{data, length};
    auto const none = static_cast<std::uint32_t>(m_entries.size());
    std::uint32_t const rank = bestOfOthers(content, bestInSweep(content, bestAtPlaces(content, none)));
    return rank == none ? nullptr : &m_entries[rank];
}

std::vector<MagicIndex::Entry> MagicIndex::holding(uchar_t const* data, size_t length) const
{
    std::vector<Entry> entries;
    for (size_t rank = 0; rank < m_entries.size(); ++rank)
        if (holds(m_nodes[rank], {data, length})) entries.push_back(m_entries[rank]);
    // The records stand in the order of the file, and their addresses with them.
    std::sort(entries.begin(), entries.end(), [](Entry const& a, Entry const& b) {
        return std::make_tuple(a.type, a.magic, a.match) < std::make_tuple(b.type, b.magic, b.match);
    });
    return entries;
}

} // namespace Velmara
