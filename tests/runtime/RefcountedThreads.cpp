#include <velmara/Singleton.h>
#include <velmara/VmaraRefcounted.h>

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

namespace Velmara {
namespace {

/// Runs `work` on several threads that all begin at the same moment.
template <class Work> void _together(int threads, Work work)
{
    std::atomic<int> waiting{threads};
    std::vector<std::thread> running;
    for (int i = 0; i < threads; ++i)
        running.emplace_back([&, i] {
            --waiting;
            while (waiting > 0) std::this_thread::yield();
            work(i);
        });
    for (std::thread& thread : running) thread.join();
}

struct Counted : virtual RefImpl {
    explicit Counted(std::atomic<int>& destroyed) : m_destroyed(destroyed) {}
    ~Counted() override { ++m_destroyed; }
    std::atomic<int>& m_destroyed;
};

TEST(RefcountedThreads, TwoThreadsThatReleaseTogetherDestroyOnce)
{
    for (int round = 0; round < 1000; ++round) {
        std::atomic<int> destroyed{0};
        Ref<Counted> handles[2];
        handles[0] = Ref<Counted>(new Counted(destroyed), false);
        handles[1] = handles[0];
        _together(2, [&](int i) { handles[i].release(); });
        ASSERT_EQ(1, destroyed);
    }
}

TEST(RefcountedThreads, CopiesOnManyThreadsKeepTheCount)
{
    std::atomic<int> destroyed{0};
    Ref<Counted> shared(new Counted(destroyed), false);
    std::vector<Ref<Counted>> own(4, shared);
    _together(4, [&](int i) {
        for (int n = 0; n < 10000; ++n) Ref<Counted> copy(own[static_cast<size_t>(i)]);
    });
    EXPECT_EQ(5, shared->count);
    EXPECT_EQ(0, destroyed);
}

struct Table : Singleton<Table> {
    Table() { ++built; }
    int value = 42;
    static std::atomic<int> built;
};
std::atomic<int> Table::built{0};

TEST(RefcountedThreads, ThreadsThatAskTogetherGetOneSingleton)
{
    std::atomic<int> wrong{0};
    _together(8, [&](int) {
        if (Table::instance().value != 42) ++wrong;
    });
    EXPECT_EQ(0, wrong);
    EXPECT_EQ(1, Table::built);
}

} // namespace
} // namespace Velmara
