// `threads [SECONDS]`: eight threads over generated messages and everything that they share, for 10 seconds or as
// long as is asked for. Built with ThreadSanitizer it finds races; whatever it is built with, each result must be
// the one that a single thread gave.
//
// Process-wide objects can be touched for the first time only once a process. So ahead of the rest, processes that
// have touched nothing are forked, and in each of them eight threads begin at once.
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <functional>
#include <iostream>
#include <string>
#include <thread>
#include <vector>

#include <velmara/Velmara.h>

#include "support/RandomMail.h"
#include "support/WholeWork.h"

// glibc's iconv loads its converters when libxml2 asks for a character set, and unloads those long unused. The
// loader does that under a lock of its own that ThreadSanitizer cannot see; only what it allocates there is left out.
extern "C" char const* __tsan_default_suppressions();
extern "C" char const* __tsan_default_suppressions()
{
    return "race:ld-linux-x86-64.so\n";
}

namespace {

using namespace Velmara;

constexpr unsigned int _threads = 8;
constexpr unsigned int _messages = 40;

std::atomic<unsigned long> _runs{0}, _differences{0};

void _onThreads(std::function<void(unsigned int)> const& work)
{
    std::atomic<unsigned int> ready{0};
    std::vector<std::thread> threads;
    for (unsigned int t = 0; t < _threads; ++t)
        threads.emplace_back([&, t] {
            ++ready;
            while (ready < _threads) { // all begin at once
            }
            work(t);
        });
    for (std::thread& thread : threads) thread.join();
}

std::string _run(WorkStep const& step, std::string const& message)
{
    WorkPlace place{BufferMediaIn(message.data(), message.size()), [](Buffer& out) { return BufferMediaOut(out); }, ""};
    return step.run(place);
}

void _expect(bool same, char const* what, unsigned int seed)
{
    ++_runs;
    if (same || ++_differences > 20) return;
    std::cerr << "threads: " << what << " of message " << seed << " gives another result than on one thread\n";
}

// ---- first touch ------------------------------------------------------------------------------

/// Each thread begins with another step, so that two build a table and six others.
void _inFork(unsigned int seed)
{
    pid_t const child = ::fork();
    if (child != 0) {
        int status = 0;
        ::waitpid(child, &status, 0);
        ++_runs;
        if (status != 0) ++_differences;
        return;
    }
    // What is expected is worked out behind, when nothing is new any more.
    std::string const message = randomMail(seed);
    std::vector<std::string> none(workSteps().size()), found[_threads];
    _onThreads([&](unsigned int t) {
        if (t % 4 == 0) TD::s_initConfig();
        std::vector<WorkStep> const& steps = workSteps();
        found[t] = none;
        for (size_t i = 0; i < steps.size(); ++i) {
            size_t const at = (i + t / 2 * 3) % steps.size();
            found[t][at] = _run(steps[at], message);
        }
    });
    for (size_t at = 0; at < none.size(); ++at) {
        WorkStep const& step = workSteps()[at];
        // Until the word lists are loaded, tokens have other numbers.
        if (step.name == std::string("tokens") || step.name == std::string("html")) continue;
        std::string const expected = _run(step, message);
        for (auto const& results : found) _expect(results[at] == expected, step.name, seed);
    }
    ::exit(_differences == 0 ? 0 : 1); // not _exit: ThreadSanitizer reports at exit
}

// ---- soak -------------------------------------------------------------------------------------

/// What threads share and some replace while others use it.
void _useShared(unsigned int t, unsigned int round)
{
    if (t == 0) RefVMRStaticCharSetFallbacks::instance(new VMRStaticCharSetFallbacksImpl<int>(1 + round % 11), false);
    if (t == 1)
        Logger::setSink([round](unsigned int id, std::string const& text) {
            if (text.empty()) std::cerr << "threads: an empty line, " << id << ", " << round << '\n';
        });
    Logger::instance(false).log(round, 0, "%u of %u", t, round);
    auto const list = RefVMRStaticCharSetFallbacks::instance();
    Buffer out;
    std::string used;
    if (!list.isNull())
        _expect(VmaraConv::m_conv(out, used, "abc", 3, *list.get(), "UTF-8") && out.length() == 3, "fallbacks", round);
    if (t == 2 && round % 50 == 0) TrustedMTASetRef(TrustedMTASetRef::instance(false));
}

void _soak(std::chrono::milliseconds length)
{
    std::vector<std::string> messages;
    std::vector<std::vector<std::string>> expected;
    for (unsigned int seed = 0; seed < _messages; ++seed) {
        messages.push_back(randomMail(seed));
        expected.emplace_back();
        for (WorkStep const& step : workSteps()) expected.back().push_back(_run(step, messages.back()));
    }
    auto const end = std::chrono::steady_clock::now() + length;
    _onThreads([&](unsigned int t) {
        for (unsigned int round = 0; std::chrono::steady_clock::now() < end; ++round) {
            unsigned int const seed = (round * 7 + t * 5) % _messages;
            size_t const at = (round + t) % workSteps().size();
            _expect(_run(workSteps()[at], messages[seed]) == expected[seed][at], workSteps()[at].name, seed);
            _useShared(t, round);
        }
    });
    Logger::setSink({});
    RefVMRStaticCharSetFallbacks::instance(nullptr, false);
}

} // namespace

int main(int argc, char** argv)
{
    double const seconds = argc > 1 ? std::atof(argv[1]) : 10;
    unsigned int const processes = seconds < 60 ? 3 : 20;
    for (unsigned int seed = 0; seed < processes; ++seed) _inFork(1000 + seed);
    loadTables();
    _soak(std::chrono::milliseconds(static_cast<long>(seconds * 1000)));
    std::cout << _runs << " results on " << _threads << " threads, " << processes << " processes of first touch, "
              << _differences << " differences\n";
    return _differences == 0 ? 0 : 1;
}
