// The unit is not exported: its source is compiled into the test.
#include "../../hash/mbuf.cpp"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <string>

namespace Velmara {
namespace {

// Where the needle is found in the hay, -1 for nowhere.
long found(std::string const& hay, std::string const& needle)
{
    mbuf h, n;
    mbuf_attach(&h, hay.data(), hay.size());
    mbuf_attach(&n, needle.data(), needle.size());
    unsigned char const* hit = mbuf_find(&h, &n);
    return hit ? hit - h.data : -1;
}

TEST(Mbuf, FindsTheFirstOccurrence)
{
    EXPECT_EQ(2, found("ab-->-->", "-->"));
    EXPECT_EQ(0, found("-->", "-->"));
    EXPECT_EQ(3, found("--x-->", "-->"));
    EXPECT_EQ(3, found("----->>", "-->"));
    EXPECT_EQ(1, found(std::string("a\0b", 3), std::string("\0b", 2)));
}

TEST(Mbuf, FindsNothingThatReachesPastEitherEnd)
{
    EXPECT_EQ(-1, found("->", "-->"));
    EXPECT_EQ(-1, found("a--", "-->"));
    EXPECT_EQ(-1, found("", "-->"));
    EXPECT_EQ(-1, found(">->", "-->"));
}

TEST(Mbuf, FindsTheEmptyNeedleAtTheStart)
{
    EXPECT_EQ(0, found("ab", ""));
}

TEST(Mbuf, AttachingReleasesWhatWasAttached)
{
    static int released = 0;
    static mbuf_operations const counting = {[](mbuf* b) {
        ++released;
        b->n = 0;
    }};
    released = 0;
    mbuf b;
    mbuf_attach(&b, "abc", 3);
    b.operations = &counting;
    mbuf_attach(&b, "de", 2);
    EXPECT_EQ(1, released);
    EXPECT_EQ(2u, b.n);
    EXPECT_EQ(nullptr, b.operations);
    mbuf_clear(&b);
    EXPECT_EQ(1, released);
    EXPECT_EQ(0u, b.n);
    EXPECT_EQ(nullptr, b.data);
}

constexpr int aborted = 3;

/// Has an abort end the process in the usual way, so that what ran is counted.
void exitOnAbort()
{
    std::signal(SIGABRT, [](int) { std::exit(aborted); });
}

#define EXPECT_ABORT(statement, words)                                                                                 \
    EXPECT_EXIT((exitOnAbort(), static_cast<void>(statement)), testing::ExitedWithCode(aborted), words)

TEST(MbufDeathTest, BrokenContractsAbortWithTheirTextAndUnit)
{
    mbuf good, bad;
    bad.magic = 0;
    mbuf_attach(&good, "abc", 3);
    EXPECT_ABORT(mbuf_attach(&bad, "a", 1), "mbuf:[0-9]+: .*\\(b\\) && \\(b\\)->magic == 0xcaaaaafe");
    EXPECT_ABORT(mbuf_attach(nullptr, "a", 1), "\\(b\\) && \\(b\\)->magic == 0xcaaaaafe");
    EXPECT_ABORT(mbuf_find(&bad, &good), "mbuf:[0-9]+: .*\\(h\\) && \\(h\\)->magic == 0xcaaaaafe");
    EXPECT_ABORT(mbuf_find(&good, &bad), "mbuf:[0-9]+: .*\\(n\\) && \\(n\\)->magic == 0xcaaaaafe");
}

TEST(MbufDeathTest, ReleaseThatLeavesBytesBehindAborts)
{
    static mbuf_operations const forgetful = {[](mbuf*) {}};
    mbuf b;
    mbuf_attach(&b, "abc", 3);
    b.operations = &forgetful;
    EXPECT_ABORT(mbuf_clear(&b), "mbuf:[0-9]+: mbuf_clear: Assertion `! b->n' failed");
}

} // namespace
} // namespace Velmara
