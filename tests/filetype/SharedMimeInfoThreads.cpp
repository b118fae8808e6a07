#include <velmara/SharedMimeInfo.h>

#include <gtest/gtest.h>

#include <thread>

#include "support/Collected.h"
#include "support/TypeDatabase.h"

namespace Velmara {
namespace {

template <class Work> void _inThreads(Work work)
{
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) threads.emplace_back(work);
    for (std::thread& thread : threads) thread.join();
}

// A digit that is none counts as 0 without being remembered anywhere.
TEST(SharedMimeInfoThreads, ShareADatabaseWithForeignDigitsInItsMasks)
{
    auto const database = databaseWith(R"(<mime-type type="x/a"><glob pattern="*.[ab]"/><glob pattern="[ab].c"/>
        <magic><match type="big32" value="0x61006300" mask="0xffzzff?!" offset="0:8"/></magic></mime-type>)");
    _inThreads([&] {
        for (int i = 0; i < 200; ++i) {
            EXPECT_EQ("x/a", database->mimeType(bytes("..abcd"), ""));
            EXPECT_EQ("x/a", database->mimeType(Buffer(), "a.b"));
            EXPECT_EQ("text/plain", database->mimeType(bytes("..xbcd"), "c"));
            EXPECT_TRUE(database->isMimeTypeEqualOrSubclassOf("x/a", "application/octet-stream"));
            EXPECT_EQ(4u, database->type("application/pdf"));
        }
    });
}

TEST(SharedMimeInfoThreads, ReadDatabasesAtTheSameTime)
{
    _inThreads([] {
        for (int i = 0; i < 20; ++i) {
            EXPECT_EQ(1u, databaseWith("<mime-type type=\"x/a\"/>")->types().size());
            EXPECT_THROW(databaseOf("<a>"), Exception);
        }
    });
}

TEST(SharedMimeInfoThreads, MeetAtTheObjectOfTheProcess)
{
    _inThreads([] {
        try {
            SharedMimeInfo::init();
            EXPECT_EQ("application/pdf", SharedMimeInfo::mimeType(bytes("%PDF-1.7\n"), "a.jpg"));
        } catch (Exception const& failure) {
            EXPECT_EQ("SharedMimeInfoImpl", failure.message()); // no database is installed
        }
    });
}

} // namespace
} // namespace Velmara
