// A row is a key and what is counted under it. The key is
//
//     KIND SIGNATURE-OR-HOST NUL FACET [VALUE]
//
// so that the rows of a group stand together, the one that counts its messages in front: a group that is too
// small is known before anything else of it is looked at. What is counted is a number of messages and the
// first and last of their dates; rows with equal keys are made into one by adding up.
#include "Groups.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <optional>

#include "facts/Utf8.h"

namespace VelmaraCommand {

namespace {

constexpr size_t _maxText = 256;
constexpr size_t _maxSenders = 4;
constexpr size_t _maxHosts = 16;

enum Facet : char { Message, Sender, Subject, Host };

struct FacetRow {
    Facet facet;
    char const* field;
};

constexpr FacetRow _facets[] = {{Sender, "senders"}, {Subject, "subjects"}, {Host, "hosts"}};

/// What is counted under a key, as it stands in a row.
struct Count {
    std::uint64_t messages = 0;
    std::int64_t first = std::numeric_limits<std::int64_t>::max(); // later than `last`: no date is known
    std::int64_t last = std::numeric_limits<std::int64_t>::min();

    void add(Count const& other)
    {
        messages += other.messages;
        first = std::min(first, other.first);
        last = std::max(last, other.last);
    }
    static Count from(char const* bytes)
    {
        Count count;
        std::memcpy(&count, bytes, sizeof count);
        return count;
    }
    std::string_view bytes() const { return {reinterpret_cast<char const*>(this), sizeof *this}; }
};

void _addUp(char* value, std::string_view other)
{
    Count count = Count::from(value);
    count.add(Count::from(other.data()));
    std::memcpy(value, &count, sizeof count);
}

/// The most frequent values of one facet; equally frequent ones in the order of their bytes.
class Ranking {
public:
    explicit Ranking(size_t most) : m_most(most) {}

    /// Values come in the order of their bytes, each once.
    void add(std::string_view value, std::uint64_t messages)
    {
        ++m_distinct;
        auto const place =
            std::find_if(m_best.begin(), m_best.end(), [=](auto const& one) { return one.second < messages; });
        if (place == m_best.end() && m_best.size() == m_most) return;
        m_best.emplace(place, value, messages);
        if (m_best.size() > m_most) m_best.pop_back();
    }
    Json json() const
    {
        Json json{{"distinct", m_distinct}, {"most", Json::array()}};
        for (auto const& one : m_best) json["most"].push_back({{"value", one.first}, {"messages", one.second}});
        return json;
    }

private:
    size_t m_most;
    std::uint64_t m_distinct = 0;
    std::vector<std::pair<std::string, std::uint64_t>> m_best;
};

/// Reads the sorted rows and gives the groups.
class GroupReader {
public:
    using Take = std::function<void(GroupKind kind, Json const& group)>;

    GroupReader(GroupOptions const& options, Take take) : m_options(options), m_take(std::move(take)) {}

    void row(std::string_view key, std::string_view value)
    {
        size_t const nul = key.find('\0', 1);
        auto const facet = static_cast<Facet>(key[nul + 1]);
        Count const count = Count::from(value.data());
        if (facet == Message)
            begin(key.substr(0, nul), count);
        else if (isLarge())
            m_rankings[static_cast<size_t>(facet - Sender)].add(key.substr(nul + 2), count.messages);
    }
    void end()
    {
        if (isLarge()) m_take(kind(), json());
        m_count = Count();
    }

private:
    void begin(std::string_view key, Count const& count)
    {
        end();
        m_key.assign(key);
        m_count = count;
        m_rankings.assign(std::size(_facets), Ranking(m_options.most));
    }
    bool isLarge() const { return m_count.messages > 0 && m_count.messages >= m_options.least; }
    GroupKind kind() const { return static_cast<GroupKind>(m_key[0]); }
    Json json() const
    {
        Json json{{"kind", nameOf(kind())}, {"key", m_key.substr(1)}, {"messages", m_count.messages}};
        if (m_count.first <= m_count.last) {
            json["first"] = m_count.first;
            json["last"] = m_count.last;
        }
        for (FacetRow const& row : _facets)
            json[row.field] = m_rankings[static_cast<size_t>(row.facet - Sender)].json();
        return json;
    }

    GroupOptions const& m_options;
    Take const m_take;
    std::string m_key; // of the group that is being read, its kind in front
    Count m_count;     // no messages: there is none
    std::vector<Ranking> m_rankings;
};

/// Sorts by kind, the largest first, then by key.
std::string _orderOf(GroupKind kind, Json const& group)
{
    std::string key(1, static_cast<char>(kind));
    std::uint64_t const messages = ~group["messages"].get<std::uint64_t>();
    for (int shift = 56; shift >= 0; shift -= 8) key += static_cast<char>(messages >> shift & 0xFF);
    return key + group["key"].get_ref<std::string const&>();
}

bool _canBeKey(std::string const& key)
{
    return !key.empty() && key.size() <= _maxText && key.find('\0') == std::string::npos;
}

} // namespace

char const* nameOf(GroupKind kind)
{
    constexpr char const* names[] = {"text", "tags", "image", "host"};
    static_assert(std::size(names) == groupKinds, "each kind has a name");
    return names[static_cast<size_t>(kind)];
}

Groups::Groups(GroupOptions const& options) : m_options(options), m_rows(options.sort, _addUp)
{}

void Groups::add(ScanLine const& line)
{
    ++m_messages;
    addRows(GroupKind::Text, line.texts, line);
    addRows(GroupKind::Tags, line.tags, line);
    addRows(GroupKind::Image, line.images, line);
    addRows(GroupKind::Host, line.hosts, line);
}

void Groups::addRows(GroupKind kind, std::set<std::string> const& keys, ScanLine const& line)
{
    if (!m_options.kinds[static_cast<size_t>(kind)]) return;
    Count count;
    count.messages = 1;
    if (line.time) count.first = count.last = *line.time;
    std::string row;
    for (std::string const& key : keys) {
        if (!_canBeKey(key)) continue;
        row.assign(1, static_cast<char>(kind)).append(key).append(1, '\0');
        size_t const length = row.size();
        auto const add = [&](Facet facet, std::string_view value) {
            row.resize(length);
            row.append(1, facet).append(beginningOf(value, _maxText));
            m_rows.add(row, count.bytes());
        };
        auto const addFirst = [&](Facet facet, std::set<std::string> const& values, size_t most) {
            for (std::string const& value : values) {
                if (facet == Host && kind == GroupKind::Host && value == key) continue; // is what they share
                if (most-- == 0) return;
                add(facet, value);
            }
        };
        add(Message, "");
        if (!line.subject.empty()) add(Subject, line.subject);
        addFirst(Sender, line.senders, _maxSenders);
        addFirst(Host, line.hosts, _maxHosts);
    }
}

void Groups::finish(std::function<void(GroupKind kind, std::uint64_t groups)> const& beginKind, Sink const& sink)
{
    std::array<std::uint64_t, groupKinds> numbers{};
    ExternalSort groups(m_options.sort);
    GroupReader reader(m_options, [&](GroupKind kind, Json const& group) {
        ++numbers[static_cast<size_t>(kind)];
        groups.add(_orderOf(kind, group), group.dump());
    });
    m_rows.drain([&](std::string_view key, std::string_view value) { reader.row(key, value); });
    reader.end();
    std::optional<GroupKind> begun;
    groups.drain([&](std::string_view key, std::string_view value) {
        auto const kind = static_cast<GroupKind>(key[0]);
        if (kind != begun) beginKind(kind, numbers[static_cast<size_t>(kind)]);
        begun = kind;
        sink(Json::parse(value));
    });
}

} // namespace VelmaraCommand
