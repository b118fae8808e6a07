#include <velmara/Velmara.h>

#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace Velmara {
namespace {

TEST(SharedFallbacks, AreReadAndReplacedFromManyThreads)
{
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([t] {
            for (int i = 0; i < 300; ++i) {
                RefVMRStaticCharSetFallbacks::instance(new VMRStaticCharSetFallbacksImpl<int>(t % 2 ? 1 : 99), false);
                auto const list = RefVMRStaticCharSetFallbacks::instance();
                Buffer out;
                std::string used;
                EXPECT_TRUE(VmaraConv::m_conv(out, used, "abc", 3, *list.get(), "UTF-8"));
            }
        });
    for (std::thread& thread : threads) thread.join();
    RefVMRStaticCharSetFallbacks::instance(nullptr, false);
}

TEST(Converters, OfEachThreadAreItsOwn)
{
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([] {
            for (char const* name : {"EUC-KR", "Big5", "GBK", "KOI8-R", "ISO-2022-JP", "EUC-JP", "ISO-8859-5",
                                     "windows-1251", "Shift_JIS", "GB18030", "UTF-7", "EUC-KR"})
                EXPECT_EQ(3u, VmaraConv::toUtf8(name, "abc", 3, 0, true, true).length()) << name;
        });
    for (std::thread& thread : threads) thread.join();
}

} // namespace
} // namespace Velmara
