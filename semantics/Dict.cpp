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
#include <string_view>
#include <unordered_map>

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

} // namespace

/// New words on their way into the map, with their numbers.
class dict::Batch {
public:
    explicit Batch(dict& list) : m_list(list) { m_words.reserve(_batchSize); } // so that no word moves before its time

    void add(std::wstring word)
    {
        // What the list holds once this record is in it, and one: a word read again takes a new number too.
        auto const present = static_cast<unsigned int>(m_list.words.size() + m_words.size());
        if (Entry* entry = m_list.entryOf(word.data(), word.size())) {
            entry->second = present + 1;
            return;
        }
        auto const found = m_places.find(word);
        if (found != m_places.end()) {
            m_words[found->second].second = present + 1;
            return;
        }
        m_words.emplace_back(std::move(word), present + 2);
        m_places.emplace(m_words.back().first, m_words.size() - 1);
        if (m_words.size() == _batchSize) finish();
    }

    void finish()
    {
        m_places.clear();
        std::sort(m_words.begin(), m_words.end());
        auto hint = m_list.words.begin();
        for (auto& [word, number] : m_words) {
            hint = m_list.words.emplace_hint(hint, std::move(word), number);
            m_list.index(*hint++);
        }
        m_words.clear();
    }

private:
    dict& m_list; // not owned
    std::vector<std::pair<std::wstring, unsigned int>> m_words;
    std::unordered_map<std::wstring_view, size_t> m_places; // of m_words
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
