#include <velmara/Logger.h>

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

namespace Velmara {
namespace {

TEST(LoggerThreads, MessagesArriveWhileTheSinkIsReplaced)
{
    std::atomic<int> arrived{0};
    auto const sink = [&arrived](unsigned int, std::string const&) { ++arrived; };
    Logger::setSink(sink);
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([] {
            for (int n = 0; n < 500; ++n) Logger::instance(false).log(0x3000000, 0, "message %d", n);
        });
    for (int n = 0; n < 500; ++n) Logger::setSink(sink);
    for (std::thread& thread : threads) thread.join();
    Logger::setSink(nullptr);
    EXPECT_EQ(2000, arrived);
}

} // namespace
} // namespace Velmara
