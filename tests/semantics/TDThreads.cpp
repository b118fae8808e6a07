#include <velmara/Config.h>
#include <velmara/TD.h>

#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "semantics/DictionaryFiles.h"

namespace Velmara {
namespace {

TEST(TDThreads, DescriptorsAreMadeWhileTagsGrow)
{
    DictionaryFiles const files;
    files.writeWords("e2i.idx", {L"garden", L"chair"});
    Config config;
    config.readDict(files.dir());
    pconfig = &config;
    std::vector<std::thread> threads;
    std::vector<std::wstring> texts(8), again(8);
    for (size_t i = 0; i < 8; ++i)
        threads.emplace_back([&, i] {
            for (int n = 0; n < 400; ++n) {
                TD tags("utf-8");
                tags.add("tag" + std::to_string(n));
                again[i] += tags.tokens();
                texts[i] = TD("a garden chair", "us-ascii").tokens();
            }
        });
    for (std::thread& thread : threads) thread.join();
    for (size_t i = 0; i < 8; ++i) {
        EXPECT_EQ((std::wstring{2, 3}), texts[i]);
        EXPECT_EQ(again[0], again[i]);
    }
    pconfig = nullptr;
}

TEST(TDThreads, DescriptorsCanBeMadeWhileListsAreRead)
{
    DictionaryFiles const files;
    files.writeWords("e2i.idx", {L"garden", L"chair"});
    Config config;
    pconfig = &config;
    std::thread reader([&] {
        for (int i = 0; i < 20; ++i) config.readDict(files.dir());
    });
    for (int i = 0; i < 200; ++i) {
        size_t const found = TD("a garden chair", "us-ascii").tokens().size();
        EXPECT_TRUE(found == 0 || found == 2) << found;
    }
    reader.join();
    pconfig = nullptr;
}

TEST(TDThreads, ManyThreadsStartOneConfiguration)
{
    pconfig = nullptr;
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i)
        threads.emplace_back([] {
            while (!TD::s_initConfig()) std::this_thread::yield();
        });
    for (std::thread& thread : threads) thread.join();
    ASSERT_NE(nullptr, pconfig);
    EXPECT_TRUE(pconfig->ready());
    EXPECT_TRUE(TD::s_initConfig());
}

} // namespace
} // namespace Velmara
