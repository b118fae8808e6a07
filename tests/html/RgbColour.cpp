#include <velmara/RgbColour.h>

#include <gtest/gtest.h>
#include <libxml/tree.h>

namespace Velmara {

static void PrintTo(RgbColour const& colour, std::ostream* out)
{
    *out << colour.red << ',' << colour.green << ',' << colour.blue;
}

namespace {

RgbColour const start(1, 2, 3);

RgbColour read(char const* text, bool useWhiteIfUnknown)
{
    RgbColour colour(start);
    colour.parse(text, useWhiteIfUnknown);
    return colour;
}

RgbColour readCss(std::string const& text, bool useWhiteIfUnknown)
{
    CssRgbColour colour("", false);
    static_cast<RgbColour&>(colour) = start;
    colour.parse(text, useWhiteIfUnknown);
    return colour;
}

xmlNode nodeOf(xmlElementType type, std::string& content)
{
    xmlNode node{};
    node.type = type;
    node.content = reinterpret_cast<xmlChar*>(content.data());
    return node;
}

struct Row {
    char const* rule;
    char const* text;
    RgbColour expected; // with unknown words read as white
};
std::string ruleOf(testing::TestParamInfo<Row> const& row)
{
    return row.param.rule;
}

class ColourOfAnAttribute : public testing::TestWithParam<Row> {};

TEST_P(ColourOfAnAttribute, Reads)
{
    EXPECT_EQ(GetParam().expected, read(GetParam().text, true));
}

RgbColour const white(255, 255, 255);

INSTANTIATE_TEST_SUITE_P(
    Names, ColourOfAnAttribute,
    testing::Values(Row{"Aqua", "aqua", {0, 255, 255}}, Row{"Black", "black", {0, 0, 0}},
                    Row{"Blue", "blue", {0, 0, 255}}, Row{"Fuchshia", "fuchshia", {255, 0, 255}},
                    Row{"Gray", "gray", {128, 128, 128}}, Row{"Green", "green", {0, 128, 0}},
                    Row{"Lime", "lime", {0, 255, 0}}, Row{"Maroon", "maroon", {128, 0, 0}},
                    Row{"Navy", "navy", {0, 0, 128}}, Row{"Olive", "olive", {128, 128, 0}},
                    Row{"Purple", "purple", {128, 0, 128}}, Row{"Red", "red", {255, 0, 0}},
                    Row{"Silver", "silver", {192, 192, 192}}, Row{"Teal", "teal", {0, 128, 128}},
                    Row{"White", "white", {255, 255, 255}}, Row{"Yellow", "yellow", {255, 255, 0}},
                    Row{"AliceBlue", "aliceblue", {240, 248, 255}}, Row{"Cyan", "cyan", {0, 255, 255}},
                    Row{"DarkBlue", "darkblue", {0, 0, 139}}, Row{"DarkCyan", "darkcyan", {0, 139, 139}},
                    Row{"DarkGreen", "darkgreen", {0, 100, 0}}, Row{"DarkRed", "darkred", {139, 0, 0}},
                    Row{"FireBrick", "firebrick", {178, 34, 34}}, Row{"Gold", "gold", {255, 215, 0}},
                    Row{"LightSlateGray", "lightslategray", {119, 136, 153}}, Row{"Magenta", "magenta", {255, 0, 255}},
                    Row{"Orange", "orange", {255, 165, 0}}, Row{"Pink", "pink", {255, 192, 203}}),
    ruleOf);

INSTANTIATE_TEST_SUITE_P(
    OddNames, ColourOfAnAttribute,
    testing::Values(Row{"CapitalsMatch", "NAVY", {0, 0, 128}}, Row{"MixedCaseMatches", "DarkRed", {139, 0, 0}},
                    Row{"AWordThatMerelyBeginsWithANameIsThatColour", "bluebell", {0, 0, 255}},
                    Row{"WhiteSmokeIsWhiteSinceThatRowStandsAhead", "whitesmoke", white},
                    Row{"LightGrayIsUnknown", "lightgray", white},
                    Row{"DarkGrayMustEndThere", "darkgray", {169, 169, 169}},
                    Row{"DarkGrayWithMoreIsUnknown", "darkgrays", white},
                    Row{"DarkGreenMayGoOn", "darkgreenish", {0, 100, 0}},
                    Row{"FuchsiaInItsProperSpellingIsUnknown", "fuchsia", white},
                    Row{"TheHeadOfANameIsUnknown", "blu", white}, Row{"ALeadingBlankIsUnknown", " blue", white},
                    Row{"EmptyIsUnknown", "", white}, Row{"RgbIsUnknownOutsideAStyle", "rgb(1,2,3)", white}),
    ruleOf);

INSTANTIATE_TEST_SUITE_P(
    Digits, ColourOfAnAttribute,
    testing::Values(Row{"SixDigits", "#0aFf80", {10, 255, 128}}, Row{"ThreeDigitsAreNoColour", "#fff", white},
                    Row{"ThreeDigitsAreNoColourEvenIfBlack", "#000", white},
                    Row{"EightBytesAreNoColour", "#0000000", white}, Row{"DigitsWithoutTheSign", "000000", white},
                    Row{"PairsThatAreNotHexadecimalAreZero", "#zz10xy", {0, 16, 0}},
                    Row{"APairEndsAtTheFirstForeignByte", "#1z2 3-", {1, 2, 3}},
                    Row{"ASignIsPartOfTheNumber", "#-1+f 7", {-1, 15, 7}}, Row{"AnX", "#0x0x0x", {0, 0, 0}}),
    ruleOf);

TEST(RgbColour, AnUnknownWordChangesNothingUnlessItIsToBeWhite)
{
    EXPECT_EQ(start, read("plaid", false));
    EXPECT_EQ(start, read("#123", false));
    EXPECT_EQ(white, read("plaid", true));
}

TEST(RgbColour, ANullTextChangesNothing)
{
    EXPECT_EQ(start, read(nullptr, true));
}

TEST(RgbColour, OfATextNodeItsContentIsRead)
{
    std::string red = "red";
    xmlNode const text = nodeOf(XML_TEXT_NODE, red);
    EXPECT_EQ(RgbColour(255, 0, 0), RgbColour(&text, true));
}

TEST(RgbColour, OfAnyOtherNodeNothingIsRead)
{
    std::string red = "red";
    xmlNode const comment = nodeOf(XML_COMMENT_NODE, red);
    EXPECT_EQ(RgbColour(0, 0, 0), RgbColour(&comment, true));
    EXPECT_EQ(RgbColour(0, 0, 0), RgbColour(static_cast<xmlNode const*>(nullptr), true));
    xmlNode empty{};
    empty.type = XML_TEXT_NODE;
    EXPECT_EQ(RgbColour(0, 0, 0), RgbColour(&empty, true));
}

TEST(RgbColour, TheDistanceWeighsGreenMost)
{
    RgbColour const black(0, 0, 0);
    EXPECT_EQ(0.0, black.distance(black));
    EXPECT_NEAR(21.26, RgbColour(100, 0, 0).distance(black), 1e-9);
    EXPECT_NEAR(71.52, RgbColour(0, 100, 0).distance(black), 1e-9);
    EXPECT_NEAR(7.22, RgbColour(0, 0, 100).distance(black), 1e-9);
}

TEST(RgbColour, IsEqualInAllThreeParts)
{
    EXPECT_TRUE(RgbColour(1, 2, 3) == RgbColour(1, 2, 3));
    for (RgbColour const& other : {RgbColour(0, 2, 3), RgbColour(1, 0, 3), RgbColour(1, 2, 0)}) {
        EXPECT_FALSE(start == other);
        EXPECT_TRUE(start != other);
    }
}

class ColourOfAStyle : public testing::TestWithParam<Row> {};

TEST_P(ColourOfAStyle, Reads)
{
    EXPECT_EQ(GetParam().expected, readCss(GetParam().text, true));
}

INSTANTIATE_TEST_SUITE_P(
    Rules, ColourOfAStyle,
    testing::Values(Row{"ThreeNumbers", "rgb(10,20,30)", {10, 20, 30}},
                    Row{"BlanksAheadOfNumbers", "rgb( 10, 20, 30 )", {10, 20, 30}},
                    Row{"NoClamping", "rgb(300,-5,1000)", {300, -5, 1000}},
                    Row{"PercentReadsAsItsDigits", "rgb(50%,100%,0%)", {50, 100, 0}},
                    Row{"WordsAreZero", "rgb(a,b,c)", {0, 0, 0}},
                    Row{"WithoutTheSecondCommaRedAlone", "rgb(9,8)", {9, 2, 3}},
                    Row{"WithoutTheClosingBracketRedAndGreen", "rgb(9,8,7", {9, 8, 3}},
                    Row{"AClosingBracketAheadOfTheSecondCommaIsMissing", "rgb(9,8),7", {9, 8, 3}},
                    Row{"TheLastBracketEndsBlue", "rgb(9,8,7) )", {9, 8, 7}},
                    Row{"BlueEndsAtAForeignByte", "rgb(9,8,7,6)", {9, 8, 7}},
                    Row{"WithoutACommaNothing", "rgb(9)", {1, 2, 3}}, Row{"WithoutABracketNothing", "rgb", {1, 2, 3}},
                    Row{"ACommaAheadOfTheBracketDoesNotCount", "rgb,(9)", {1, 2, 3}},
                    Row{"AnythingAheadOfTheBracket", "rgba (9,8,7)", {9, 8, 7}},
                    Row{"RgbInCapitalsIsAnUnknownWord", "RGB(9,8,7)", white}, Row{"NamesAreRead", "navy", {0, 0, 128}},
                    Row{"DigitsAreRead", "#010203", {1, 2, 3}}, Row{"UnknownIsWhite", "inherit", white}),
    ruleOf);

TEST(CssRgbColour, StartsBlack)
{
    EXPECT_EQ(RgbColour(0, 0, 0), CssRgbColour("inherit", false));
    EXPECT_EQ(RgbColour(9, 0, 0), CssRgbColour("rgb(9,8)", true));
}

TEST(CssRgbColour, ALiteralReadsLikeAString)
{
    CssRgbColour colour("black", false);
    colour.parse("rgb(1,2,3)", false);
    EXPECT_EQ(RgbColour(1, 2, 3), colour);
    colour.parse(static_cast<char const*>(nullptr), true);
    EXPECT_EQ(RgbColour(1, 2, 3), colour);
}

TEST(CssRgbColour, AsTheColourOfAnAttributeKnowsNoNumbersInBrackets)
{
    CssRgbColour colour("black", false);
    RgbColour& attribute = colour;
    attribute.parse("rgb(1,2,3)", false);
    EXPECT_EQ(RgbColour(0, 0, 0), colour);
    attribute.parse("rgb(1,2,3)", true);
    EXPECT_EQ(white, colour);
    std::string red("red"), numbers("rgb(1,2,3)");
    xmlNode const word = nodeOf(XML_TEXT_NODE, red), brackets = nodeOf(XML_TEXT_NODE, numbers);
    colour.parse(&word, true);
    EXPECT_EQ(RgbColour(255, 0, 0), colour);
    colour.parse(&brackets, true);
    EXPECT_EQ(white, colour);
}

struct Contrast {
    char const* rule;
    RgbColour text, background;
    bool visible;
};
class ContrastOfColours : public testing::TestWithParam<Contrast> {};

TEST_P(ContrastOfColours, IsTheSameFromBothSides)
{
    Contrast const& row = GetParam();
    EXPECT_EQ(row.visible, row.text.isVisible(row.background));
    EXPECT_EQ(row.visible, row.background.isVisible(row.text));
}

INSTANTIATE_TEST_SUITE_P(
    Rules, ContrastOfColours,
    testing::Values(Contrast{"BlackOnWhite", {0, 0, 0}, white, true}, Contrast{"EqualColours", start, start, false},
                    Contrast{"WhiteOnWhite", white, white, false},
                    // 169 x 0.56192264 is about 95, its root about 9.7.
                    Contrast{"NearlyBlackOnBlack", {0, 0, 0}, {13, 13, 13}, false},
                    // 18 x 0.7496 is 13.49, 19 x 0.7496 is 14.24.
                    Contrast{"GreyAtADistanceOf18", {0, 0, 0}, {18, 18, 18}, false},
                    Contrast{"GreyAtADistanceOf19", {0, 0, 0}, {19, 19, 19}, true},
                    // 255 x 0.0722 is about 18.4.
                    Contrast{"WhiteOnYellow", white, {255, 255, 0}, true},
                    // 193 x 0.0722 is 13.93, 194 x 0.0722 is 14.007.
                    Contrast{"BlueAloneAt193", {0, 0, 0}, {0, 0, 193}, false},
                    Contrast{"BlueAloneAt194", {0, 0, 0}, {0, 0, 194}, true},
                    // 19 x 0.7152 is 13.59, 20 x 0.7152 is 14.3.
                    Contrast{"GreenAloneAt19", {0, 0, 0}, {0, 19, 0}, false},
                    Contrast{"GreenAloneAt20", {0, 0, 0}, {0, 20, 0}, true},
                    // 65 x 0.2126 is 13.82, 66 x 0.2126 is 14.03.
                    Contrast{"RedAloneAt65", {0, 0, 0}, {65, 0, 0}, false},
                    Contrast{"RedAloneAt66", {0, 0, 0}, {66, 0, 0}, true},
                    Contrast{"NumbersOutsideTheRange", {-2147483647, 0, 0}, {2147483647, 0, 0}, true}),
    [](auto const& row) { return std::string(row.param.rule); });

} // namespace
} // namespace Velmara
