#include <velmara/Velmara.h>

#include <gtest/gtest.h>

#include "support/Collected.h"
#include "support/Rule.h"

namespace Velmara {
namespace {

using std::string;

struct Pass {
    char const* rule;
    string text;
    bool replaces;
    string out;
    unsigned long left;
};

class EntityPass : public testing::TestWithParam<Pass> {};

TEST_P(EntityPass, Resolves)
{
    Pass const& row = GetParam();
    // In a block of its own, so that a look behind the end is seen.
    std::vector<char> block(row.text.begin(), row.text.end());
    unsigned long length = block.size();
    Buffer out(bytes("old"));
    EXPECT_EQ(row.replaces, unicode_str_to_utf8(block.data(), &length, out));
    EXPECT_EQ(row.out, string(reinterpret_cast<char const*>(out.data()), out.length()));
    EXPECT_EQ(row.left, length);
    EXPECT_EQ(row.text, string(block.begin(), block.end())) << "the text itself stays";
}

INSTANTIATE_TEST_SUITE_P(
    Numbers, EntityPass,
    testing::Values(Pass{"Decimal", "a&#65;b", true, "aAb", 0}, Pass{"Hexadecimal", "&#x41;", true, "A", 0},
                    Pass{"HexadecimalWithACapitalX", "&#X4a;", true, "J", 0},
                    Pass{"WithoutDigits", "&#;xy", false, "", 0},
                    Pass{"WithoutHexadecimalDigits", "&#x;y", false, "", 0},
                    Pass{"WithAnotherEnd", "&#65 ;", false, "", 0}, Pass{"WithASign", "&#+65;", false, "", 0},
                    Pass{"WithABlank", "&# 65;", false, "", 0}, Pass{"WithASecondPrefix", "&#x0x41;", false, "", 0},
                    Pass{"HexadecimalDigitsInADecimalOne", "&#4a;", false, "", 0},
                    Pass{"TenDecimalDigits", "&#0000000065;", true, "A", 0},
                    Pass{"ElevenDecimalDigits", "&#00000000065;", false, "", 0},
                    Pass{"EightHexadecimalDigits", "&#x00000041;", true, "A", 0},
                    Pass{"NineHexadecimalDigits", "&#x000000041;", false, "", 0},
                    Pass{"NegativeAsASignedNumber", "&#xFFFFFFFF;", false, "", 0},
                    Pass{"TheLargest", "&#x7FFFFFFF;", true, "\xfd\xbf\xbf\xbf\xbf\xbf", 0},
                    Pass{"TheSmallestNegative", "&#2147483648;", false, "", 0},
                    Pass{"BeyondThirtyTwoBitsTheLowOnesCount", "&#4294967361;", true, "A", 0},
                    Pass{"BeyondThirtyTwoBitsAndNegative", "&#6442450944;", false, "", 0}),
    ruleName);

INSTANTIATE_TEST_SUITE_P(Lengths, EntityPass,
                         testing::Values(Pass{"Nul", "&#0;", true, string(1, '\0'), 0},
                                         Pass{"LastOfOneByte", "&#x7F;", true, "\x7f", 0},
                                         Pass{"FirstOfTwoBytes", "&#x80;", true, "\xc2\x80", 0},
                                         Pass{"LastOfTwoBytes", "&#x7FF;", true, "\xdf\xbf", 0},
                                         Pass{"FirstOfThreeBytes", "&#x800;", true, "\xe0\xa0\x80", 0},
                                         Pass{"ASurrogate", "&#xD800;", true, "\xed\xa0\x80", 0},
                                         Pass{"LastOfThreeBytes", "&#xFFFF;", true, "\xef\xbf\xbf", 0},
                                         Pass{"FirstOfFourBytes", "&#x10000;", true, "\xf0\x90\x80\x80", 0},
                                         Pass{"LastOfFourBytes", "&#x1FFFFF;", true, "\xf7\xbf\xbf\xbf", 0},
                                         Pass{"FirstOfFiveBytes", "&#x200000;", true, "\xf8\x88\x80\x80\x80", 0},
                                         Pass{"LastOfFiveBytes", "&#x3FFFFFF;", true, "\xfb\xbf\xbf\xbf\xbf", 0},
                                         Pass{"FirstOfSixBytes", "&#x4000000;", true, "\xfc\x84\x80\x80\x80\x80", 0}),
                         ruleName);

INSTANTIATE_TEST_SUITE_P(
    Names, EntityPass,
    testing::Values(Pass{"Known", "a&lt;b&gt;", true, "a<b>", 0}, Pass{"Unknown", "x&nosuchent;", false, "", 0},
                    Pass{"UnknownBehindAKnownOneIsCopied", "&lt;&nosuch;&gt;", true, "<&nosuch;>", 0},
                    Pass{"CaseMatters", "&LT;&Auml;&auml;", true, "&LT;\xc3\x84\xc3\xa4", 0},
                    Pass{"TenLetters", "&abcdefghij;", false, "", 0},
                    Pass{"EightLetters", "&thetasym;", true, "\xcf\x91", 0},
                    Pass{"WithoutAName", "&;abc", false, "", 0},
                    Pass{"AnotherAmpersandWithin", "&a&lt;", true, "&a<", 0},
                    Pass{"UpToANulByte", string("&lt\0x;", 6), true, "<", 0},
                    Pass{"ElevenBytesWithoutASemicolon", "&ltabcdefgh;", false, "", 0},
                    Pass{"OnceIsEnough", "&amp;lt;", true, "&lt;", 0}),
    ruleName);

INSTANTIATE_TEST_SUITE_P(
    Tails, EntityPass,
    testing::Values(Pass{"AnEmptyText", "", false, "", 0}, Pass{"AnAmpersand", "ab&", false, "", 1},
                    Pass{"AShortNumber", "&#;", false, "", 3}, Pass{"AShortName", "&;", false, "", 2},
                    Pass{"AShortHexadecimalNumber", "&#x", false, "", 3}, Pass{"ANumber", "&lt;x&#6512", true, "<x", 6},
                    Pass{"AHexadecimalNumber", "&lt;&#x6512", true, "<", 7},
                    Pass{"TheLongestNumber", "&#1234567890", false, "", 12},
                    Pass{"TheLongestHexadecimalNumber", "&#x12345678", false, "", 11},
                    Pass{"TheLongestName", "&lt;&abcdefghi", true, "<", 10},
                    Pass{"ANameThatCannotEndAnyMore", "&lt;&abcdefghij", true, "<&abcdefghij", 0},
                    Pass{"WhatFollowsAnUndecidedOneWaitsToo", "&lt;&a&b c", true, "<", 6}),
    ruleName);

struct Row {
    char const* rule;
    Pieces writes, arrives; // the last element of `arrives` is what `end` gives out
};

class HtmlEscape : public testing::TestWithParam<Row> {};

TEST_P(HtmlEscape, DeliversPerWrite)
{
    Row const& row = GetParam();
    Collected out;
    FilterHtmlEscapeMediaOut filter(out.media());
    for (size_t i = 0; i < row.writes.size(); ++i) {
        filter.write(bytes(row.writes[i]));
        EXPECT_EQ(row.arrives[i], out.take()) << "write " << i;
    }
    filter.end();
    EXPECT_EQ(row.arrives.back(), out.take()) << "end";
    EXPECT_EQ(1, out.ends());
}

INSTANTIATE_TEST_SUITE_P(
    Seams, HtmlEscape,
    testing::Values(
        Row{"ACutReferenceWaitsBehindAReplacedOne", {"&lt;x&am", "p;"}, {"<x", "&", ""}},
        Row{"TheFirstReferenceOfAStreamIsLostIfItIsCut", {"abc&am", "p;"}, {"abc&am", "p;", ""}},
        Row{"EndGivesOutWhatWaitsRaw", {"&lt;&amp"}, {"<", "&amp"}},
        Row{"AWaitingOneThatProvesToBeNoneIsALiteral", {"&lt;&am", " x"}, {"<", "&am x", ""}},
        Row{"WithoutAReplacementTheCarriedTailGoesToo", {"&lt;&", "nosuch;&am", "p;"}, {"<", "&nosuch;&am", "p;", ""}},
        Row{"ATailCanFollowATail", {"&lt;&", "lt;&", "gt;"}, {"<", "<", ">", ""}},
        Row{"EmptyWritesAreIgnored", {"&lt;&", "", "lt;"}, {"<", "", "<", ""}},
        Row{"ALongWriteWithoutAReference", {string(20000, 'x')}, {string(20000, 'x'), ""}},
        Row{"ALongWriteWithOne", {string(20000, 'x') + "&lt;&"}, {string(20000, 'x') + "<", "&"}}),
    ruleName);

TEST(FilterHtmlEscapeMediaOut, ReadsBytesLikeABuffer)
{
    Collected out;
    FilterHtmlEscapeMediaOut filter(out.media());
    filter.write(reinterpret_cast<uchar_t const*>("a&lt;"), 5);
    EXPECT_EQ("a<", out.take());
}

TEST(FilterHtmlEscapeMediaOut, CopiesNothingWhereNothingChanges)
{
    Collected out;
    FilterHtmlEscapeMediaOut filter(out.media());
    Buffer const text = bytes("R&D, &nosuch;");
    filter.write(text);
    EXPECT_EQ(text.data(), out.where());
}

TEST(FilterHtmlEscapeMediaOut, AttachAndDetachGiveOutWhatWaits)
{
    Collected first, second;
    FilterHtmlEscapeMediaOut filter(first.media());
    filter.write(bytes("&lt;&am"));
    filter.attach(second.media());
    EXPECT_EQ("<&am", first.take());
    filter.write(bytes("p;&lt;&am"));
    EXPECT_EQ("p;<", second.take());
    filter.detach();
    EXPECT_EQ("&am", second.take());
    EXPECT_THROW(filter.write(bytes("x")), Exception);
    EXPECT_EQ(0, first.ends() + second.ends());
}

TEST(FilterHtmlEscapeMediaOut, TakesADownstreamLater)
{
    Collected out;
    FilterHtmlEscapeMediaOut filter;
    EXPECT_FALSE(filter.isNull());
    filter.attach(out.media());
    filter.write(bytes("&lt;"));
    EXPECT_EQ("<", out.take());
}

TEST(FilterHtmlEscapeMediaOut, DestructionDropsWhatWaits)
{
    Collected out;
    {
        FilterHtmlEscapeMediaOut filter(out.media());
        filter.write(bytes("&lt;&am"));
    }
    EXPECT_EQ("<", out.take());
}

TEST(FilterHtmlEscapeMediaOut, ADownstreamThatThrowsLeavesWhatWaits)
{
    struct Once : MediaOutImpl {
        using MediaOutImpl::write;
        void write(uchar_t const* p, uint_t n) override
        {
            if (refuse) throw Exception("write", 4, "Once", 0);
            text.append(reinterpret_cast<char const*>(p), n);
        }
        bool refuse = false;
        string text;
    };
    auto* sink = new Once;
    FilterHtmlEscapeMediaOut filter(MediaOut(sink, false));
    filter.write(bytes("&lt;&am"));
    sink->refuse = true;
    EXPECT_THROW(filter.write(bytes("p;x")), Exception);
    EXPECT_THROW(filter.end(), Exception);
    sink->refuse = false;
    filter.end();
    EXPECT_EQ("<&amp;x", sink->text);
}

} // namespace
} // namespace Velmara
