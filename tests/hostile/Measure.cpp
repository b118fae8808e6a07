// Each case runs at n, 2n and 4n bytes, n being large enough for a time that can be measured. Every run
// has a process of its own, so that peaks of memory do not mix, and works in a thread with a small stack.
// Other programs disturb: the least of several times counts, and a case that seems to be beyond its bounds
// is measured again.
#include "hostile/Measure.h"

#include <fcntl.h>
#include <malloc.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#ifdef __x86_64__
#include <emmintrin.h>
#endif

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "support/SmallStack.h"

extern char** environ;

namespace Velmara::Hostile {

namespace {

double _firstTime = 20e6;                   // nanoseconds of the run at n
constexpr size_t _firstSize = 16 * 1024;    // where the search for n begins
constexpr size_t _largestSize = 64u << 20;  // n of what is never slow
constexpr double _mostGrowth = 5;           // of the time from n to 4n
constexpr double _mostPerByte = 1000;       // nanoseconds
constexpr unsigned long _mostMemory = 2048; // KiB more at 4n than at n, where memory is flat
constexpr double _enoughTime = 100e6;       // of the runs together
constexpr int _leastRuns = 2, _enoughRuns = 5;
constexpr int _attempts = 6;

double _threadTime()
{
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) * 1e9 + static_cast<double>(now.tv_nsec);
}

Case const& _caseOf(std::string const& name)
{
    for (Case const& one : cases())
        if (name == one.name) return one;
    throw std::runtime_error("no case " + name);
}

/// Takes an input out of the caches. A small one would lie in them from the run before, a large one would not, and
/// what is as fast as memory would seem to grow.
void _flush(char const* bytes, size_t n)
{
#ifdef __x86_64__
    for (size_t at = 0; at < n; at += 64) _mm_clflush(bytes + at);
#endif
}

/// The same for a file, by pieces: what is mapped counts as memory of the process.
void _flush(std::string const& path)
{
    constexpr size_t window = 1u << 20;
    int const file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    size_t const size = file < 0 ? 0 : static_cast<size_t>(::lseek(file, 0, SEEK_END));
    for (size_t at = 0; at < size; at += window) {
        size_t const n = std::min(window, size - at);
        void* const bytes = ::mmap(nullptr, n, PROT_READ, MAP_SHARED, file, static_cast<off_t>(at));
        if (bytes == MAP_FAILED) throw std::runtime_error("cannot map the input");
        _flush(static_cast<char const*>(bytes), n);
        ::munmap(bytes, n);
    }
    ::close(file);
}

/// From the second run on the kernel has no pages to clear, which would take more time than the work.
void _keepMemory()
{
    mallopt(M_ARENA_MAX, 1);
    mallopt(M_MMAP_MAX, 0);
    mallopt(M_TRIM_THRESHOLD, INT_MAX);
}

Run _run(Case const& one, SharedFile const& file, size_t bytes)
{
    std::istringstream words(outputOf({"run", one.name, file.path()}));
    Run run;
    words >> run.nanoseconds >> run.peak >> run.output;
    if (!words) throw std::runtime_error(std::string(one.name) + " gave no times");
    run.bytes = bytes;
    return run;
}

Run _run(Case const& one, size_t size)
{
    std::string text = one.make(size);
    size_t const bytes = text.size();
    SharedFile const file(text);
    text = std::string(); // not there three times while the case runs
    return _run(one, file, bytes);
}

/// The size at which a case takes the time that is asked for.
size_t _sizeFor(Case const& one)
{
    size_t size = _firstSize;
    while (size < _largestSize) {
        double const time = std::max(_run(one, size).nanoseconds, 1.0);
        if (time >= _firstTime) break;
        double const most = one.bound == Output ? 2 : 16; // what grows with the square is soon too large
        double const factor = std::min(std::max(1.15 * _firstTime / time, 1.25), most);
        size = std::min(static_cast<size_t>(static_cast<double>(size) * factor), _largestSize);
    }
    return size;
}

/// The runs of a case at n, 2n and 4n, and what they come to.
struct Row {
    Run runs[3];

    /// Of the time from n to 4n; of what is bound by its output, for four times the output.
    double growth(Case const& one) const
    {
        double const times = runs[2].nanoseconds / runs[0].nanoseconds;
        if (one.bound != Output) return times;
        return times * 4 * static_cast<double>(runs[0].output) / static_cast<double>(runs[2].output);
    }
    double perByte() const { return runs[2].nanoseconds / static_cast<double>(runs[2].bytes); }
    long memory() const { return static_cast<long>(runs[2].peak) - static_cast<long>(runs[0].peak); }

    std::string complaint(Case const& one) const
    {
        if (growth(one) > _mostGrowth) return "time grows too fast";
        if (one.bound == Nobody && perByte() > _mostPerByte) return "too much time for a byte";
        if (one.flat && memory() > static_cast<long>(_mostMemory)) return "memory grows";
        return std::string();
    }
    void improve(Row const& again)
    {
        for (int i = 0; i < 3; ++i) {
            runs[i].nanoseconds = std::min(runs[i].nanoseconds, again.runs[i].nanoseconds);
            runs[i].peak = std::min(runs[i].peak, again.runs[i].peak);
        }
    }
};

Row _measureOnce(Case const& one, size_t size)
{
    Row row;
    for (int i = 0; i < 3; ++i) row.runs[i] = _run(one, size << i);
    return row;
}

/// Once more what seems to be beyond its bounds: at the same size, and then at larger ones. Where memory
/// is what takes time, a small first run lies in a cache and the others do not.
Row _measure(Case const& one)
{
    size_t size = _sizeFor(one);
    Row row = _measureOnce(one, size);
    for (int i = 1; i < _attempts && !row.complaint(one).empty(); ++i) {
        Row const again = _measureOnce(one, size);
        row.improve(again);
        if (row.complaint(one).empty() || one.bound == Output || size * 3 > _largestSize) continue;
        size *= 3;
        row = _measureOnce(one, size);
    }
    return row;
}

char const* _marksOf(Case const& one)
{
    if (one.bound == Libxml2) return "libxml2";
    if (one.bound == Output) return "output";
    return one.flat ? "flat" : "";
}

void _print(Case const& one, Row const& row)
{
    std::printf("%-55s %9zu %8.1f %8.1f %8.1f %6.2f %8.1f %8ld  %s\n", one.name, row.runs[0].bytes,
                row.runs[0].nanoseconds / 1e6, row.runs[1].nanoseconds / 1e6, row.runs[2].nanoseconds / 1e6,
                row.growth(one), row.perByte(), row.memory(), _marksOf(one));
    std::fflush(stdout);
}

} // namespace

Run leastOf(int times, void (*work)(Input const& input, Sink& sink), Input const& input)
{
    Run least;
    least.bytes = input.text().size();
    for (int i = 0; i < times; ++i) {
        Sink sink(Sink::Nothing);
        double const start = _threadTime();
        work(input, sink);
        double const time = _threadTime() - start;
        least.nanoseconds = i == 0 ? time : std::min(least.nanoseconds, time);
        least.output = sink.length();
    }
    return least;
}

SharedFile::SharedFile(std::string const& bytes) : m_descriptor(::memfd_create("hostile", 0))
{
    size_t written = 0;
    while (written < bytes.size()) {
        ssize_t const n = ::write(m_descriptor, bytes.data() + written, bytes.size() - written);
        if (n <= 0) throw std::runtime_error("memfd_create or write failed");
        written += static_cast<size_t>(n);
    }
}

SharedFile::~SharedFile()
{
    ::close(m_descriptor);
}

std::string SharedFile::path() const
{
    return "/proc/self/fd/" + std::to_string(m_descriptor);
}

std::string outputOf(std::vector<std::string> const& arguments)
{
    int ends[2];
    if (::pipe(ends) != 0) throw std::runtime_error("pipe");
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ends[1], 1);
    posix_spawn_file_actions_addclose(&actions, ends[0]);
    posix_spawn_file_actions_addclose(&actions, ends[1]);
    std::vector<std::string> words{"velmara_hostile"};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char*> pointers;
    for (std::string& word : words) pointers.push_back(word.data());
    pointers.push_back(nullptr);
    pid_t child = 0;
    int const failure = ::posix_spawn(&child, "/proc/self/exe", &actions, nullptr, pointers.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    ::close(ends[1]);
    std::string output;
    char block[4096];
    for (ssize_t n = 0; (n = ::read(ends[0], block, sizeof block)) > 0;) output.append(block, static_cast<size_t>(n));
    ::close(ends[0]);
    int status = 0;
    if (failure == 0) ::waitpid(child, &status, 0);
    if (failure != 0 || status != 0) {
        std::string all;
        for (std::string const& word : arguments) all += " " + word;
        throw std::runtime_error("this failed, with wait status " + std::to_string(status) + ":" + all);
    }
    return output;
}

unsigned long peakMemory()
{
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.rfind("VmHWM:", 0) == 0) return std::stoul(line.substr(6));
    throw std::runtime_error("/proc/self/status has no VmHWM");
}

int runOne(std::string const& name, std::string const& path)
{
    Case const& one = _caseOf(name);
    double least = 0;
    unsigned long long output = 0;
    if (!one.flat) _keepMemory();
    onSmallStack([&] {
        Sink warm(Sink::Nothing);
        one.work(Input::ofText(one.make(1000)), warm); // tables of the process are made
        Input const input = Input::ofFile(path);
        if (!one.flat) input.text();
        double all = 0;
        for (int i = 0; i < _leastRuns || (i < _enoughRuns && all < _enoughTime); ++i) {
            one.flat ? _flush(path) : _flush(input.text().data(), input.text().size());
            Sink sink(Sink::Nothing);
            double const start = _threadTime();
            one.work(input, sink);
            double const time = _threadTime() - start;
            least = i == 0 ? time : std::min(least, time);
            all += time;
            output = sink.length();
        }
    });
    std::printf("%.0f %lu %llu\n", least, peakMemory(), output);
    return 0;
}

int measure(std::string const& filter, double firstMilliseconds)
{
    _firstTime = firstMilliseconds * 1e6;
    std::printf("%-55s %9s %8s %8s %8s %6s %8s %8s\n", "case", "bytes n", "ms n", "ms 2n", "ms 4n", "growth", "ns/byte",
                "KiB more");
    std::vector<std::string> failed;
    size_t count = 0;
    for (Case const& one : cases()) {
        if (std::string(one.name).find(filter) == std::string::npos) continue;
        ++count;
        try {
            Row const row = _measure(one);
            _print(one, row);
            std::string const complaint = row.complaint(one);
            if (!complaint.empty()) failed.push_back(std::string(one.name) + ": " + complaint);
        } catch (std::exception const& failure) {
            failed.push_back(std::string(one.name) + ": " + failure.what());
        }
    }
    for (Case const& one : cases())
        if (one.bound != Nobody && std::string(one.name).find(filter) != std::string::npos)
            std::printf("%s is bound by %s: %s\n", one.name, _marksOf(one), one.reason);
    std::printf("%zu cases, %zu beyond their bounds\n", count, failed.size());
    for (std::string const& text : failed) std::printf("FAILED %s\n", text.c_str());
    return failed.empty() && count > 0 ? 0 : 1;
}

} // namespace Velmara::Hostile
