#include <velmara/FontSize.h>

#include <gtest/gtest.h>
#include <libxml/tree.h>

namespace Velmara {
namespace {

unsigned int read(std::string text, unsigned int current)
{
    xmlNode node{};
    node.type = XML_TEXT_NODE;
    node.content = reinterpret_cast<xmlChar*>(text.data());
    FontSize size;
    size.parse(&node, current);
    return size.size();
}

unsigned int readCss(std::string const& text, unsigned int current)
{
    CssFontSize size;
    size.parse(text, current);
    return size.size();
}

struct Row {
    char const* rule;
    char const* text;
    unsigned int current, expected;
};
std::string ruleOf(testing::TestParamInfo<Row> const& row)
{
    return row.param.rule;
}

class SizeOfAnAttribute : public testing::TestWithParam<Row> {};

TEST_P(SizeOfAnAttribute, Reads)
{
    EXPECT_EQ(GetParam().expected, read(GetParam().text, GetParam().current));
}

INSTANTIATE_TEST_SUITE_P(
    Rules, SizeOfAnAttribute,
    testing::Values(Row{"PlusIsRelative", "+2", 3, 5}, Row{"PlusStopsAtSeven", "+2", 6, 7},
                    Row{"PlusAHugeNumberIsSeven", "+9223372036854775807", 3, 7},
                    Row{"PlusAWordIsTheCurrentSize", "+x", 4, 4}, Row{"PlusFromNothing", "+0", 0, 0},
                    Row{"PlusANegativeNumberIsTheDifference", "+-1", 3, 2},
                    Row{"PlusMinusTheCurrentSizeIsNothing", "+-3", 3, 0},
                    Row{"PlusAnythingBelowNothingReadsAsHuge", "+-4", 3, 7}, Row{"MinusIsRelative", "-2", 5, 3},
                    Row{"MinusStopsAtOne", "-5", 3, 1}, Row{"MinusTheCurrentSizeIsOne", "-3", 3, 1},
                    Row{"MinusFromZeroIsOne", "-0", 0, 1}, Row{"MinusNothing", "-", 4, 4}, Row{"Number", "4", 3, 4},
                    Row{"NumberAboveSevenIsSeven", "8", 3, 7}, Row{"ZeroIsOne", "0", 3, 1},
                    Row{"AWordIsOne", "abc", 3, 1}, Row{"EmptyIsOne", "", 3, 1},
                    Row{"NumberEndsAtAForeignByte", "2em", 3, 2}, Row{"ABlankAheadIsSkipped", " 2", 3, 2},
                    Row{"ABlankAheadHidesTheSign", " +2", 3, 2}, Row{"AHiddenMinusReadsAsHuge", " -2", 3, 7}),
    ruleOf);

TEST(FontSize, IsZeroUntilParsed)
{
    EXPECT_EQ(0u, FontSize().size());
    EXPECT_EQ(0u, CssFontSize().size());
}

TEST(FontSize, OfAnyOtherNodeNothingIsRead)
{
    FontSize size;
    xmlNode element{};
    element.type = XML_ELEMENT_NODE;
    size.parse(&element, 3);
    size.parse(nullptr, 3);
    element.type = XML_TEXT_NODE;
    size.parse(&element, 3);
    EXPECT_EQ(0u, size.size());
}

class SizeOfAStyle : public testing::TestWithParam<Row> {};

TEST_P(SizeOfAStyle, Reads)
{
    EXPECT_EQ(GetParam().expected, readCss(GetParam().text, GetParam().current));
}

INSTANTIATE_TEST_SUITE_P(Words, SizeOfAStyle,
                         testing::Values(Row{"Smaller", "smaller", 3, 2}, Row{"SmallerThanOneIsZero", "smaller", 1, 0},
                                         Row{"SmallerThanZeroIsZero", "smaller", 0, 0}, Row{"Larger", "larger", 3, 4},
                                         Row{"LargerStopsAtSeven", "larger", 7, 7}, Row{"XxSmall", "xx-small", 3, 1},
                                         Row{"Small", "small", 3, 2}, Row{"Medium", "medium", 3, 3},
                                         Row{"Large", "large", 3, 4}, Row{"XLarge", "x-large", 3, 5},
                                         Row{"XxLarge", "xx-large", 3, 6}, Row{"XSmallIsNoWord", "x-small", 3, 0},
                                         Row{"InheritIsNoWord", "inherit", 3, 0}, Row{"EmptyIsNoWord", "", 3, 0},
                                         Row{"CapitalsAreNoWord", "Small", 3, 0},
                                         Row{"AWordMustBeWhole", "small ", 3, 0}),
                         ruleOf);

INSTANTIATE_TEST_SUITE_P(
    Numbers, SizeOfAStyle,
    testing::Values(Row{"Five", "5px", 3, 0}, Row{"Six", "6px", 3, 1}, Row{"Ten", "10pt", 3, 1},
                    Row{"Eleven", "11px", 3, 2}, Row{"TwelvePixels", "12px", 3, 2}, Row{"TwelvePoints", "12pt", 3, 2},
                    Row{"Thirteen", "13px", 3, 3}, Row{"Fourteen", "14px", 3, 3}, Row{"Fifteen", "15px", 3, 4},
                    Row{"Sixteen", "16px", 3, 4}, Row{"Seventeen", "17px", 3, 5}, Row{"Eighteen", "18px", 3, 5},
                    Row{"Nineteen", "19px", 3, 6}, Row{"Twenty", "20px", 3, 6}, Row{"TwentyOne", "21px", 3, 7},
                    Row{"TwentyTwo", "22px", 3, 7}, Row{"AboveTheTable", "23px", 3, 7}, Row{"OneEm", "1em", 3, 0},
                    Row{"HundredPercent", "100%", 3, 7}, Row{"NegativeIsHuge", "-1px", 3, 7}, Row{"Zero", "0", 3, 0},
                    Row{"ADotAhead", ".9em", 3, 0}, Row{"ALetterAhead", "x12", 3, 0},
                    Row{"ADigitAnywhereMakesItANumber", "small2", 3, 0}),
    ruleOf);

TEST(CssFontSize, AnUnknownWordLeavesTheSizeAlone)
{
    CssFontSize size;
    size.parse("large", 3);
    size.parse("inherit", 3);
    EXPECT_EQ(4u, size.size());
}

TEST(CssFontSize, SixWordsHaveASize)
{
    std::string all;
    for (CssFontSize::TextSize const& row : CssFontSize().sizes())
        all += row.name + "=" + std::to_string(row.size) + " ";
    EXPECT_EQ("large=4 medium=3 small=2 x-large=5 xx-large=6 xx-small=1 ", all);
}

TEST(CssFontSize, WordsAreOrderedByBytesTheShorterFirst)
{
    using TextSize = CssFontSize::TextSize;
    EXPECT_TRUE((TextSize{"a", 2} < TextSize{"ab", 1}));
    EXPECT_TRUE((TextSize{"Z", 2} < TextSize{"a", 1}));
    TextSize row("a", 9), named;
    EXPECT_EQ(0u, named.size);
    named.name = "b";
    EXPECT_TRUE(row < named);
    EXPECT_FALSE(named < row);
    EXPECT_EQ(1u, CssFontSize().sizes().count({"x-large"}));
    EXPECT_FALSE((TextSize{"a", 1} < TextSize{"a", 2}));
}

} // namespace
} // namespace Velmara
