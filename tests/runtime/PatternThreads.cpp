// What any number of threads may use at once: compiled patterns, and the first reading of a host.
#include <velmara/Regex.h>
#include <velmara/StringPattern.h>
#include <velmara/Uri.h>

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace Velmara {
namespace {

template <class Work> void inThreads(Work work)
{
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&work] {
            for (int k = 0; k < 200; ++k) work(k);
        });
    for (std::thread& thread : threads) thread.join();
}

TEST(PatternThreads, CompiledPatternsAreShared)
{
    StringPattern const glob("*.d?c", true, false), regex("^h.$", true, true);
    Regex::Expression const expression("([a-z]+)([0-9]*)", 0, true);
    std::atomic<int> found{0};
    inThreads([&](int k) {
        StringPattern const copy(glob);
        std::vector<std::string> groups;
        bool const all = copy.matches("A.DOC") && regex.matches("hr") && expression("a" + std::to_string(k), groups);
        if (all && groups[2] == std::to_string(k)) ++found;
    });
    EXPECT_EQ(800, found);
}

TEST(PatternThreads, HostsAreReadAtOnceFromTheFirstOn)
{
    std::atomic<int> found{0};
    inThreads([&](int) {
        if (Uri("http://b\xc3\xbc"
                "cher.example/")
                .hostname()
                .asString() == "xn--bcher-kva.example")
            ++found;
    });
    EXPECT_EQ(800, found);
}

} // namespace
} // namespace Velmara
