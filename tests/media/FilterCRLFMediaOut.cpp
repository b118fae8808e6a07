#include <velmara/Velmara.h>

#include <gtest/gtest.h>

#include "support/Collected.h"
#include "support/Rule.h"

namespace Velmara {
namespace {

using std::string;

struct Row {
    char const* rule;
    Pieces writes, arrives; // write by write
};

template <class Filter> Pieces _arriving(Pieces const& writes)
{
    Collected out;
    Filter filter(out.media());
    for (string const& piece : writes) filter.write(bytes(piece));
    return out.takePieces();
}

class CarriageReturns : public testing::TestWithParam<Row> {};

TEST_P(CarriageReturns, AreRemoved)
{
    EXPECT_EQ(GetParam().arrives, _arriving<FilterCRLFMediaOut>(GetParam().writes));
}

INSTANTIATE_TEST_SUITE_P(Rules, CarriageReturns,
                         testing::Values(Row{"BetweenTwoThereIsAnEmptyRun", {"a\r\r\nb"}, {"a", "", "\nb"}},
                                         Row{"LoneOnesToo", {"a\rb"}, {"a", "b"}},
                                         Row{"AloneTheyLeaveAnEmptyRun", {"\r"}, {""}},
                                         Row{"AtTheEndTheyLeaveNoTail", {"ab\r"}, {"ab"}},
                                         Row{"AtTheFrontTheyLeaveAnEmptyRun", {"\r\nab"}, {"", "\nab"}},
                                         Row{"WithoutOneTheWriteIsPassedOn", {"ab\n\ncd"}, {"ab\n\ncd"}},
                                         Row{"EmptyWritesAreIgnored", {"", "a", ""}, {"a"}},
                                         Row{"NulIsAByteLikeOthers", {string("a\0\rb", 4)}, {string("a\0", 2), "b"}}),
                         ruleName);

TEST(FilterCRLFMediaOut, CutsDoNotMatter)
{
    for (Pieces const& writes : everyCut("a\r\r\nb\r\n\r\nc\rd\r"))
        EXPECT_EQ("a\nb\n\ncd", through<FilterCRLFMediaOut>(writes));
}

class LineFeeds : public testing::TestWithParam<Row> {};

TEST_P(LineFeeds, AreExpanded)
{
    EXPECT_EQ(GetParam().arrives, _arriving<FilterLFCRLFMediaOut>(GetParam().writes));
}

INSTANTIATE_TEST_SUITE_P(Rules, LineFeeds,
                         testing::Values(Row{"Alone", {"\n"}, {"\r\n"}},
                                         Row{"BehindACrTheyAreDropped", {"\r\n"}, {"\r"}},
                                         Row{"BetweenText", {"a\nb"}, {"a", "\r\n", "b"}},
                                         Row{"AnEmptyLineAheadOfACrLf", {"\n\r\n"}, {"\r\n", "\r"}},
                                         Row{"TwoInARow", {"a\n\nb\n"}, {"a", "\r\n", "\r\n", "b", "\r\n"}},
                                         Row{"TextThatEndsInACr", {"a\r\nb\r\n"}, {"a\r", "b\r"}},
                                         Row{"ACrOfTheWriteBeforeIsNotSeen", {"a\r", "\nb"}, {"a\r", "\r\n", "b"}},
                                         Row{"WithoutOneTheWriteIsPassedOn", {"a\rb"}, {"a\rb"}},
                                         Row{"EmptyWritesAreIgnored", {"", "\n", ""}, {"\r\n"}}),
                         ruleName);

template <class Filter> class LineEndFilter : public testing::Test {};
using LineEndFilters = testing::Types<FilterCRLFMediaOut, FilterLFCRLFMediaOut>;
TYPED_TEST_SUITE(LineEndFilter, LineEndFilters);

TYPED_TEST(LineEndFilter, ReadsBytesLikeABuffer)
{
    Collected out;
    TypeParam filter(out.media());
    filter.write(reinterpret_cast<uchar_t const*>("a\r\rb\nc"), 6);
    string const fromBytes = out.take();
    filter.write(bytes("a\r\rb\nc"));
    EXPECT_EQ(out.take(), fromBytes);
    filter.write(nullptr, 0);
    EXPECT_EQ(Pieces(), out.takePieces());
}

TYPED_TEST(LineEndFilter, CopiesNothingWhereNothingChanges)
{
    Collected out;
    TypeParam filter(out.media());
    Buffer const text = bytes("plain");
    filter.write(text);
    EXPECT_EQ(text.data(), out.where());
}

TYPED_TEST(LineEndFilter, PassesEndAndCharacterSetOn)
{
    Collected out;
    TypeParam filter(out.media());
    filter.characterSet("koi8-r");
    filter.end();
    EXPECT_EQ(Pieces{"koi8-r"}, out.characterSets());
    EXPECT_EQ(1, out.ends());
}

TYPED_TEST(LineEndFilter, TakesADownstreamLater)
{
    TypeParam filter;
    filter.write(Buffer()); // ignored, so nobody misses the sink
    EXPECT_THROW(filter.write(bytes("a")), Exception);
    Collected out;
    filter.attach(out.media());
    TypeParam copy(filter); // shares the implementation
    copy.write(bytes("a"));
    EXPECT_EQ("a", out.take());
    copy.detach();
    EXPECT_THROW(filter.write(bytes("a")), Exception);
}

} // namespace
} // namespace Velmara
