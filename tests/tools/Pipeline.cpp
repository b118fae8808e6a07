#include "scan/Pipeline.h"

#include <atomic>
#include <chrono>
#include <stdexcept>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include "support/TemporaryFolder.h"

namespace VelmaraCommand {
namespace {

/// Messages named by their numbers; those in `broken` cannot be read.
class Numbered : public MessageSource {
public:
    explicit Numbered(unsigned int count, unsigned int broken = ~0u) : m_count(count), m_broken(broken) {}
    bool next(FoundMessage& message, bool keep) override
    {
        if (m_next == m_count) return false;
        message.file = std::to_string(m_next);
        if (keep) message.bytes = MessageBytes::inMemory(message.file);
        if (m_next == m_broken) message.failure = "broken";
        ++m_next;
        kept += keep;
        return true;
    }
    unsigned int kept = 0;

private:
    unsigned int const m_count, m_broken;
    unsigned int m_next = 0;
};

struct Scanning {
    TemporaryFolder folder;
    ScanContext context;
    std::string complaints;
    Progress progress{nullptr};
    ScanResult result;

    Scanning()
    {
        context.complain = [this](Severity, std::string const& place, std::string const& reason) {
            complaints += place + ": " + reason + "\n";
        };
    }
    std::string lines(MessageSource& source, ScanOptions const& options, Analyse const& analyse)
    {
        LineOutput output(folder.at("o"), "{}", false);
        result = scanAll(source, context, options, analyse, output, progress);
        output.finish();
        return folder.read("o");
    }
};

/// Takes longest for every fifth message, so that others overtake it.
Analysed nameOfMessage(FoundMessage const& message, std::uint64_t number)
{
    std::this_thread::sleep_for(std::chrono::microseconds(number % 5 == 0 ? 900 : 10));
    return {message.file + "\n", number % 10 == 3};
}

std::string numbers(unsigned int first, unsigned int end, unsigned int step)
{
    std::string all;
    for (; first < end; first += step) all += std::to_string(first) + "\n";
    return all;
}

TEST(Pipeline, WritesInTheOrderOfTheSourceWhateverTheThreads)
{
    for (unsigned int threads : {1u, 2u, 8u}) {
        Scanning run;
        Numbered source(300);
        ScanOptions options;
        options.threads = threads;
        EXPECT_EQ(numbers(0, 300, 1), run.lines(source, options, nameOfMessage)) << threads;
        EXPECT_EQ(30u, run.result.capped);
    }
}

TEST(Pipeline, KeepsOnlyTheMessagesOfAShard)
{
    Scanning run;
    Numbered source(100);
    ScanOptions options;
    options.threads = 2;
    options.shard = 2;
    options.shards = 7;
    EXPECT_EQ(numbers(2, 100, 7), run.lines(source, options, nameOfMessage));
    EXPECT_EQ(14u, source.kept);
}

TEST(Pipeline, PassesOverWhatHasBeenDone)
{
    Scanning run;
    Numbered source(50);
    ScanOptions options;
    options.first = 20;
    std::string last;
    options.checkLast = [&](FoundMessage const& message) { last = message.file; };
    EXPECT_EQ(numbers(20, 50, 1), run.lines(source, options, nameOfMessage));
    EXPECT_EQ("19", last);
}

TEST(Pipeline, TellsOfAFailureInItsPlaceAndGoesOn)
{
    Scanning run;
    Numbered source(9, 4);
    auto const analyse = [](FoundMessage const& message, std::uint64_t number) -> Analysed {
        if (number == 6) throw std::runtime_error("no idea");
        return {message.file + "\n", false};
    };
    EXPECT_EQ("0\n1\n2\n3\n5\n7\n8\n", run.lines(source, ScanOptions(), analyse));
    EXPECT_EQ("4: broken\n6: no idea\n", run.complaints);
    EXPECT_EQ(2u, run.result.failed);
}

TEST(Pipeline, TakesNoMoreMessagesThanItsThreadsNeedWhileOneIsSlow)
{
    Scanning run;
    Numbered source(1000);
    ScanOptions options;
    options.threads = 2;
    std::atomic<unsigned int> begun{0}, begunMeanwhile{0};
    auto const analyse = [&](FoundMessage const&, std::uint64_t number) -> Analysed {
        ++begun;
        if (number == 0) {
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
            begunMeanwhile = begun.load();
        }
        return {"x\n", false};
    };
    run.lines(source, options, analyse);
    EXPECT_EQ(1000u, begun);
    EXPECT_LE(begunMeanwhile, 16u);
}

} // namespace
} // namespace VelmaraCommand
