// A merge sort in three steps. Records are appended to a buffer, with their places at its far end; when
// the two meet, the places are sorted and equal keys combined. If that gave back half of the buffer, it
// goes on being filled: an archive of a few campaigns never reaches the disk. Otherwise the buffer
// becomes a run. Runs stand on levels: as soon as a level has `fanIn` of them they become one run of
// the next, so each record is written once a level, and with 32 MiB and 16 runs the third level
// is reached at 8 GiB.
//
// In a run a key is written without what it shares with the key ahead of it, which of sorted keys is most.
#include "ExternalSort.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <system_error>

namespace VelmaraCommand {

namespace {

constexpr size_t _blockSize = 64u << 10; // of a run that is written or read
constexpr size_t _maxMemory = 1u << 30;

struct Lengths {
    std::uint32_t key, value;
};

/// Ahead of each record of a run.
struct RunHead {
    std::uint32_t shared, key, value; // bytes of the key: those of the key before, and further ones
};

} // namespace

// ---- the buffer -------------------------------------------------------------------------------

class ExternalSort::Buffer {
public:
    explicit Buffer(size_t size)
        : m_size(std::min(size, _maxMemory) / sizeof(Place) * sizeof(Place)), m_bytes(new char[m_size])
    {}

    /// What a record takes, its place included.
    static size_t sizeOf(size_t key, size_t value) { return sizeof(Lengths) + key + value + sizeof(Place); }

    bool isEmpty() const { return m_count == 0; }
    size_t size() const { return m_size; }
    bool canEverHold(size_t key, size_t value) const { return fits(m_size, key, value); }
    bool hasRoomFor(size_t key, size_t value) const
    {
        return fits(m_size - m_used - m_count * sizeof(Place), key, value);
    }

    void add(std::string_view key, std::string_view value)
    {
        Lengths const lengths{static_cast<std::uint32_t>(key.size()), static_cast<std::uint32_t>(value.size())};
        ++m_count;
        places()[0] = static_cast<Place>(m_used);
        append(&lengths, sizeof lengths);
        append(key.data(), key.size());
        append(value.data(), value.size());
    }

    /// Sorted by key; equal keys as they were added, or combined.
    void sort(Combine combine)
    {
        std::sort(places(), places() + m_count, [this](Place a, Place b) {
            int const order = keyAt(a).compare(keyAt(b));
            return order < 0 || (order == 0 && a < b);
        });
        if (combine) combineEqual(combine);
    }

    /// Closes the gaps that combining left; the records are in no order then.
    void compact()
    {
        std::sort(places(), places() + m_count);
        size_t used = 0;
        for (Place* place = places(); place != places() + m_count; ++place) {
            size_t const size = sizeof(Lengths) + keyAt(*place).size() + valueAt(*place).size();
            std::memmove(m_bytes.get() + used, m_bytes.get() + *place, size);
            *place = static_cast<Place>(used);
            used += size;
        }
        m_used = used;
    }

    /// What the records take that are left after combining.
    size_t inUse() const
    {
        size_t used = 0;
        forEach([&](std::string_view key, std::string_view value) { used += sizeOf(key.size(), value.size()); });
        return used;
    }

    template <class Take> void forEach(Take const& take) const
    {
        for (Place const* place = places(); place != places() + m_count; ++place) take(keyAt(*place), valueAt(*place));
    }
    void clear() { m_used = m_count = 0; }

private:
    using Place = std::uint32_t; // of a record in the buffer

    static bool fits(size_t room, size_t key, size_t value)
    {
        return room >= sizeOf(0, 0) && key <= room - sizeOf(0, 0) && value <= room - sizeOf(0, 0) - key;
    }
    void append(void const* bytes, size_t n)
    {
        if (n > 0) std::memcpy(m_bytes.get() + m_used, bytes, n);
        m_used += n;
    }
    Lengths lengthsAt(Place place) const
    {
        Lengths lengths;
        std::memcpy(&lengths, m_bytes.get() + place, sizeof lengths);
        return lengths;
    }
    std::string_view keyAt(Place place) const
    {
        return {m_bytes.get() + place + sizeof(Lengths), lengthsAt(place).key};
    }
    std::string_view valueAt(Place place) const
    {
        Lengths const lengths = lengthsAt(place);
        return {m_bytes.get() + place + sizeof lengths + lengths.key, lengths.value};
    }
    Place* places() const { return reinterpret_cast<Place*>(m_bytes.get() + m_size) - m_count; }

    void combineEqual(Combine combine)
    {
        Place* const end = places() + m_count;
        Place* kept = end; // filled from the back, where the places begin to count
        for (Place* place = end; place-- != places();) {
            if (kept != end && keyAt(*kept) == keyAt(*place))
                combine(const_cast<char*>(valueAt(*kept).data()), valueAt(*place));
            else
                *--kept = *place;
        }
        m_count = static_cast<size_t>(end - kept);
    }

    size_t const m_size;
    std::unique_ptr<char[]> const m_bytes; // records from the front, their places from the back
    size_t m_used = 0;                     // bytes of records
    size_t m_count = 0;
};

// ---- runs on the disk -------------------------------------------------------------------------

namespace {

std::string _directoryOf(std::string const& asked)
{
    if (!asked.empty()) return asked;
    char const* const variable = std::getenv("TMPDIR");
    return variable && *variable ? variable : "/tmp";
}

/// A temporary file that no directory names.
class SpillFile {
public:
    explicit SpillFile(std::string const& directory) : m_directory(_directoryOf(directory)), m_file(opened()) {}
    SpillFile(SpillFile const&) = delete;
    SpillFile& operator=(SpillFile const&) = delete;
    ~SpillFile() { ::close(m_file); }

    void write(char const* bytes, size_t n)
    {
        while (n > 0) {
            ssize_t const written = ::write(m_file, bytes, n);
            if (written < 0 && errno == EINTR) continue;
            if (written < 0) fail();
            bytes += written;
            n -= static_cast<size_t>(written);
        }
    }
    /// Gives fewer bytes only at the end.
    size_t readAt(std::uint64_t position, char* bytes, size_t n) const
    {
        size_t got = 0;
        while (got < n) {
            ssize_t const read = ::pread(m_file, bytes + got, n - got, static_cast<off_t>(position + got));
            if (read < 0 && errno == EINTR) continue;
            if (read < 0) fail();
            if (read == 0) break;
            got += static_cast<size_t>(read);
        }
        return got;
    }

private:
    int opened() const
    {
        int file = ::open(m_directory.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600);
        if (file >= 0) return file;
        // Some file systems have none without a name: this one loses its name at once.
        std::string path = m_directory + "/velmara-XXXXXX";
        file = ::mkostemp(path.data(), O_CLOEXEC);
        if (file < 0) fail();
        ::unlink(path.c_str());
        return file;
    }
    [[noreturn]] void fail() const
    {
        throw SpillFailure("temporary files in " + m_directory + ": " + std::generic_category().message(errno));
    }

    std::string const m_directory;
    int const m_file;
};

} // namespace

/// One that was written and is read once, from its first record on.
class ExternalSort::Run {
public:
    explicit Run(std::string const& directory) : m_file(directory) {}

    SpillFile& file() { return m_file; }

    /// Goes to the first record; the block is in memory from here on.
    void begin() { m_block.resize(_blockSize); }
    /// False behind the last record.
    bool next()
    {
        RunHead head;
        if (!take(&head, sizeof head)) return false;
        m_key.resize(head.shared + size_t{head.key});
        m_value.resize(head.value);
        take(&m_key[head.shared], head.key);
        take(&m_value[0], head.value);
        return true;
    }
    std::string_view key() const { return m_key; }
    std::string_view value() const { return m_value; }

private:
    /// False at the end of the file.
    bool take(void* bytes, size_t n)
    {
        auto* to = static_cast<char*>(bytes);
        while (n > 0) {
            if (m_at == m_end && !fill()) return false;
            size_t const some = std::min(n, m_end - m_at);
            std::memcpy(to, m_block.data() + m_at, some);
            to += some;
            n -= some;
            m_at += some;
        }
        return true;
    }
    bool fill()
    {
        m_end = m_file.readAt(m_position, &m_block[0], m_block.size());
        m_position += m_end;
        m_at = 0;
        return m_end > 0;
    }

    SpillFile m_file;
    std::string m_block; // from begin() on
    size_t m_at = 0, m_end = 0;
    std::uint64_t m_position = 0; // of the bytes behind the block
    std::string m_key, m_value;   // of the record, after next()
};

class ExternalSort::RunWriter {
public:
    explicit RunWriter(SpillFile& file) : m_file(file) { m_block.reserve(_blockSize); }

    void write(std::string_view key, std::string_view value)
    {
        auto const shared = static_cast<size_t>(
            std::mismatch(key.begin(), key.begin() + static_cast<std::ptrdiff_t>(std::min(key.size(), m_key.size())),
                          m_key.begin())
                .first -
            key.begin());
        RunHead const head{static_cast<std::uint32_t>(shared), static_cast<std::uint32_t>(key.size() - shared),
                           static_cast<std::uint32_t>(value.size())};
        append(reinterpret_cast<char const*>(&head), sizeof head);
        append(key.data() + shared, key.size() - shared);
        append(value.data(), value.size());
        m_key.assign(key);
    }
    void finish()
    {
        m_file.write(m_block.data(), m_block.size());
        m_block.clear();
    }

private:
    void append(char const* bytes, size_t n)
    {
        if (n > _blockSize - m_block.size()) finish();
        if (n > _blockSize)
            m_file.write(bytes, n);
        else
            m_block.append(bytes, n);
    }

    SpillFile& m_file;
    std::string m_block;
    std::string m_key; // of the record before
};

/// Hands sorted records on, equal keys as one record.
class ExternalSort::Combiner {
public:
    Combiner(Combine combine, Sink const& sink) : m_combine(combine), m_sink(sink) {}

    void take(std::string_view key, std::string_view value)
    {
        if (m_combine && m_isPending && key == m_key) return m_combine(m_value.data(), value);
        finish();
        m_key.assign(key);
        m_value.assign(value);
        m_isPending = true;
    }
    void finish()
    {
        if (m_isPending) m_sink(m_key, m_value);
        m_isPending = false;
    }

private:
    Combine const m_combine; // null: nothing is combined
    Sink const& m_sink;
    std::string m_key, m_value; // what has not been handed on, as others may equal it
    bool m_isPending = false;
};

// ---- the sort ---------------------------------------------------------------------------------

ExternalSort::ExternalSort(Limits const& limits, Combine combine)
    : m_limits(limits), m_combine(combine), m_buffer(std::make_unique<Buffer>(limits.memory))
{
    m_limits.fanIn = std::max(m_limits.fanIn, 2u);
}

ExternalSort::~ExternalSort() = default;

void ExternalSort::add(std::string_view key, std::string_view value)
{
    if (!m_buffer->hasRoomFor(key.size(), value.size())) {
        if (!m_buffer->canEverHold(key.size(), value.size()))
            throw std::length_error("a record is too large to be sorted");
        m_buffer->sort(m_combine);
        if (m_buffer->inUse() + Buffer::sizeOf(key.size(), value.size()) <= m_buffer->size() / 2)
            m_buffer->compact();
        else
            spill();
    }
    m_buffer->add(key, value);
}

/// Writes the buffer, which is sorted, as a run.
void ExternalSort::spill()
{
    auto run = std::make_unique<Run>(m_limits.directory);
    RunWriter writer(run->file());
    m_buffer->forEach([&](std::string_view key, std::string_view value) { writer.write(key, value); });
    writer.finish();
    m_buffer->clear();
    ++m_runsWritten;
    keep(std::move(run));
}

void ExternalSort::keep(std::unique_ptr<Run> run)
{
    for (size_t level = 0;; ++level) {
        if (level == m_levels.size()) m_levels.emplace_back();
        m_levels[level].push_back(std::move(run));
        if (m_levels[level].size() < m_limits.fanIn) return;
        run = merged(m_levels[level]);
        m_levels[level].clear();
    }
}

std::unique_ptr<ExternalSort::Run> ExternalSort::merged(Runs const& runs)
{
    auto run = std::make_unique<Run>(m_limits.directory);
    RunWriter writer(run->file());
    merge(runs, [&](std::string_view key, std::string_view value) { writer.write(key, value); });
    writer.finish();
    ++m_runsWritten;
    return run;
}

/// The runs stand in the order in which their records were added.
void ExternalSort::merge(Runs const& runs, Sink const& sink) const
{
    // The heap's front is its greatest, which here is the one to be handed over first.
    auto const isLater = [&](size_t a, size_t b) {
        int const order = runs[a]->key().compare(runs[b]->key());
        return order > 0 || (order == 0 && a > b);
    };
    std::vector<size_t> heap;
    for (size_t i = 0; i < runs.size(); ++i) {
        runs[i]->begin();
        if (runs[i]->next()) heap.push_back(i);
    }
    std::make_heap(heap.begin(), heap.end(), isLater);
    Combiner combiner(m_combine, sink);
    while (!heap.empty()) {
        std::pop_heap(heap.begin(), heap.end(), isLater);
        Run& run = *runs[heap.back()];
        combiner.take(run.key(), run.value());
        if (run.next())
            std::push_heap(heap.begin(), heap.end(), isLater);
        else
            heap.pop_back();
    }
    combiner.finish();
}

void ExternalSort::drain(Sink const& sink)
{
    m_buffer->sort(m_combine);
    if (m_levels.empty()) {
        m_buffer->forEach(sink);
        return;
    }
    if (!m_buffer->isEmpty()) spill();
    m_buffer.reset(); // merging has memory of its own
    Runs runs;        // the oldest records first
    for (auto level = m_levels.rbegin(); level != m_levels.rend(); ++level)
        std::move(level->begin(), level->end(), std::back_inserter(runs));
    while (runs.size() > m_limits.fanIn) {
        // The youngest are the smallest.
        Runs youngest;
        std::move(runs.end() - m_limits.fanIn, runs.end(), std::back_inserter(youngest));
        runs.resize(runs.size() - m_limits.fanIn);
        runs.push_back(merged(youngest));
    }
    merge(runs, sink);
}

} // namespace VelmaraCommand
