// A word list. Callers see a map; texts are looked up in a hash index over its entries, because a text
// asks for hundreds of words and a large map answers from cold memory.
//
// For the same reason files are read in batches. Whether a record is a new word is told by the index,
// which fixes its number at once; the new words of a batch are then sorted and go into the map in
// order, so that neighbours share the way down. One by one, a million words in no order take three
// times as long.
#include <velmara/Config.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <cwchar>

#include "semantics/DataFile.h"

namespace Velmara {

namespace {

constexpr unsigned int _maxRecord = 2047;
constexpr size_t _batchSize = 1 << 17;

/// Whole characters up to the first zero; the missing bytes of a cut one count as zero.
std::wstring _wordOf(unsigned char const* record, size_t length)
{
    wchar_t word[_maxRecord / sizeof(wchar_t) + 2];
    size_t const cut = length / sizeof(wchar_t); // perhaps a cut character
    word[cut] = word[cut + 1] = L'\0';
    if (length != 0) std::memcpy(word, record, length);
    return std::wstring(word);
}

size_t _hash(wchar_t const* word, size_t length)
{
    std::uint64_t hash = 0x9E3779B97F4A7C15u;
    for (size_t i = 0; i < length; ++i) {
        hash = (hash ^ static_cast<std::uint32_t>(word[i])) * 0xFF51AFD7ED558CCDu;
        hash ^= hash >> 32;
    }
    return hash;
}

/// Orders most words by their first four characters in one comparison.
std::uint64_t _beginning(std::wstring const& word)
{
    std::uint64_t key = 0;
    for (size_t i = 0; i < 4; ++i)
        key = key << 16 | (i < word.size() ? static_cast<std::uint32_t>(word[i]) & 0xFFFF : 0);
    return key;
}

} // namespace

/// Records on their way into the map. Numbers follow the order of records, the map is filled in the
/// order of words.
class dict::Batch {
public:
    explicit Batch(dict& list) : m_list(list) {}

    void add(std::wstring word)
    {
        Entry* const known = m_list.entryOf(word.data(), word.size());
        if (!known) m_order.push_back({_beginning(word), static_cast<std::uint32_t>(m_records.size())});
        m_records.push_back({std::move(word), known, 0, 0});
        if (m_records.size() == _batchSize) finish();
    }

    void finish()
    {
        sortNewWords();
        number();
        insert();
        m_records.clear();
        m_order.clear();
    }

private:
    struct Record {
        std::wstring word;
        Entry* known;        // null for a word that the list does not have
        std::uint32_t first; // of new words: the first record of the same word
        unsigned int number; // valid in that one
    };
    struct Place {
        std::uint64_t beginning;
        std::uint32_t record;
    };

    void sortNewWords()
    {
        auto const isBefore = [this](Place const& a, Place const& b) {
            if (a.beginning != b.beginning) return a.beginning < b.beginning;
            int const order = m_records[a.record].word.compare(m_records[b.record].word);
            return order != 0 ? order < 0 : a.record < b.record;
        };
        std::sort(m_order.begin(), m_order.end(), isBefore);
        for (size_t i = 0; i < m_order.size(); ++i) {
            std::uint32_t const record = m_order[i].record;
            bool const isSame = i > 0 && m_records[m_order[i - 1].record].word == m_records[record].word;
            m_records[record].first = isSame ? m_records[m_order[i - 1].record].first : record;
        }
    }

    /// A number is what the list holds once the record is in it, and one: a word read again takes a new one.
    void number()
    {
        auto present = static_cast<unsigned int>(m_list.words.size());
        for (std::uint32_t i = 0; i < m_records.size(); ++i) {
            Record& record = m_records[i];
            bool const isNew = !record.known && record.first == i;
            if (isNew) ++present;
            (record.known ? record.known->second : m_records[record.first].number) = present + 1;
        }
    }

    void insert()
    {
        auto hint = m_list.words.begin();
        for (Place const& place : m_order) {
            Record& record = m_records[place.record];
            if (record.first != place.record) continue;
            hint = m_list.words.emplace_hint(hint, std::move(record.word), record.number);
            m_list.index(*hint++);
        }
    }

    dict& m_list; // not owned
    std::vector<Record> m_records;
    std::vector<Place> m_order; // of new words, in the order of words once sorted
};

dict::dict() = default;
dict::~dict() = default;
dict::dict(dict&& other) noexcept = default; // the entries of a map stay where they are when it moves

// The index of a copy would point into the original; it is made when a file is read.
dict::dict(dict const& other) : name(other.name), words(other.words)
{}

dict& dict::operator=(dict other) noexcept
{
    name.swap(other.name);
    words.swap(other.words);
    m_slots.swap(other.m_slots);
    std::swap(m_indexed, other.m_indexed);
    return *this;
}

void dict::read(std::string const& path)
{
    readIndexed(path);
    // Whoever reads a list himself may change it as he likes, and the index would point at what he removed.
    m_slots.clear();
    m_indexed = 0;
}

/// Leaves an index, which is true for as long as nobody changes `words`.
void dict::readIndexed(std::string const& path)
{
    std::optional<FileMediaIn> file = openedIfThere(path);
    if (!file) return;
    if (name.empty()) name = path;
    if (m_indexed != words.size()) reindex(words.size());
    Batch batch(*this);
    Buffer record(_maxRecord + 1, 0);
    for (file->readline(record); !record.isEmpty(); file->readline(record)) {
        bool const ended = record.at(record.length() - 1) == '\n';
        unsigned int const length = record.length() - (ended ? 1 : 0);
        if (length > _maxRecord) break;
        batch.add(_wordOf(record.data(), length));
    }
    batch.finish();
}

/// Makes the index anew, with room for `count` words.
void dict::reindex(size_t count)
{
    size_t slots = 16;
    while (slots < count + count / 3) slots *= 2;
    m_slots.assign(slots, nullptr);
    m_indexed = 0;
    for (Entry& entry : words) place(entry);
}

void dict::index(Entry& entry)
{
    size_t const needed = m_indexed + 1;
    if (m_slots.size() < needed + needed / 3)
        reindex(needed); // to the next power of two: each entry is placed anew a bounded number of times
    else
        place(entry);
}

void dict::place(Entry& entry)
{
    size_t const mask = m_slots.size() - 1;
    size_t at = _hash(entry.first.data(), entry.first.size()) & mask;
    while (m_slots[at]) at = (at + 1) & mask;
    m_slots[at] = &entry;
    ++m_indexed;
}

dict::Entry* dict::entryOf(wchar_t const* word, size_t length) const
{
    if (m_indexed == 0) return nullptr;
    size_t const mask = m_slots.size() - 1;
    for (size_t at = _hash(word, length) & mask; m_slots[at]; at = (at + 1) & mask) {
        std::wstring const& candidate = m_slots[at]->first;
        if (candidate.size() == length && std::wmemcmp(candidate.data(), word, length) == 0) return m_slots[at];
    }
    return nullptr;
}

unsigned int const* dict::find(wchar_t const* word, size_t length) const
{
    if (m_indexed == words.size()) {
        Entry const* entry = entryOf(word, length);
        return entry ? &entry->second : nullptr;
    }
    auto const found = words.find(std::wstring(word, length)); // the list was changed by hand
    return found == words.end() ? nullptr : &found->second;
}

} // namespace Velmara
