// The limit is right if libxml2 itself agrees on what is a tag and what an attribute: of any document,
// the tree with a limit of two must be the tree without, less the attributes beyond two a tag.
#include <velmara/HtmlParser.h>

#include <gtest/gtest.h>

#include <random>

#include "../../html/AttributeLimit.cpp" // it is no part of what the library exports
#include "html/Events.h"

namespace Velmara {
namespace HTML {
namespace {

constexpr size_t limit = 2;

/// Events with the names of attributes, at most so many of an element.
class EventsWithAttributes : public Events {
public:
    explicit EventsWithAttributes(size_t most) : m_most(most) {}
    void foundTag(xmlNode const* node) override
    {
        Events::foundTag(node);
        size_t n = 0;
        for (xmlAttr const* attribute = node->properties; attribute && n < m_most; attribute = attribute->next, ++n)
            seen.append(" ").append(reinterpret_cast<char const*>(attribute->name));
    }

private:
    size_t m_most;
};

std::string events(std::string const& html, size_t most)
{
    EventsWithAttributes builder(most);
    Parser parser(builder, true);
    parser.parse(html.data(), static_cast<unsigned>(html.size()), "utf-8");
    return builder.seen;
}

std::string limited(std::string const& html)
{
    AttributeLimit const result(html, limit);
    return result.blanked.empty() ? html : result.blanked;
}

TEST(AttributeLimit, PutsBlanksForWhatIsTooMuch)
{
    EXPECT_EQ("<p a b        >c", limited("<p a b c=' ' d>c"));
    EXPECT_EQ("<p a  b >c d e f", limited("<p a  b >c d e f"));
    EXPECT_EQ("<br a b      />x", limited("<br a b c=1 d/>x"));
}

TEST(AttributeLimit, LeavesADocumentAloneThatNeedsNothing)
{
    EXPECT_EQ("", AttributeLimit("<p a b><p a b>", limit).blanked);
}

struct Row {
    char const* rule;
    std::string html;
};
class AttributeLimitRules : public testing::TestWithParam<Row> {};

TEST_P(AttributeLimitRules, CutsAsLibxmlCuts)
{
    std::string const html = GetParam().html + "<i z1 z2 z3 z4>end";
    EXPECT_EQ(events(html, limit), events(limited(html), 99));
}

/// A name ends at 100 bytes.
std::string const longNames =
    std::string(100, 'q') + std::string(100, 'r') + std::string(100, 's') + std::string(50, 't');

INSTANTIATE_TEST_SUITE_P(
    Rules, AttributeLimitRules,
    testing::Values(
        Row{"QuotedValues", "<p a='>' b=\"'>\" c='\"' d e>x"}, Row{"BareValues", "<p a=b'c d=\"e f=g/ h>x"},
        Row{"NoBlankBehindAValue", "<p a='1'b='2'c='3'd>x"}, Row{"BlanksAroundTheSign", "<p a = 1 b\n=\t2 c= 3>x"},
        Row{"SlashesAreNoAttributes", "<p / a / b / c / d>x"}, Row{"EmptyElement", "<br a b c d/>x"},
        Row{"DigitsAreNoAttributes", "<p 1 2 3 a b c>x"}, Row{"NamesMayBeginWithSomeSigns", "<p _a :b .c d>x"},
        Row{"SignsAreNoAttributes", "<p ='x' == a b c>x"}, Row{"AnUnclosedQuoteTakesTheRest", "<p a b c='"},
        Row{"ALongNameIsSeveral", "<p" + std::string(99, 'q') + longNames + " a>x"},
        Row{"ALongAttributeIsSeveral", "<p " + longNames + ">x"},
        Row{"ANulEndsATag", std::string("<p a b \0 c d>x", 14)},
        Row{"ANulEndsAValue", std::string("<p a='\0' b c d>x", 16)}, Row{"Comment", "<!-- <p a b c --><p a b c>x"},
        Row{"CommentWithTwoDashesAlone", "<!--><p a b c>--><b a b c>x"},
        Row{"CommentOfThreeDashes", "<!---><p a b c>--><b a b c>x"}, Row{"CommentOfFourDashes", "<!----><p a b c>x"},
        Row{"CommentClosedWrongly", "<!-- --!><p a b c>x"}, Row{"UnclosedComment", "<!-- <p a b c>x"},
        Row{"DocumentType", "<!DOCTYPE html PUBLIC \"> <p a b c\" '> <p a b c'><p a b c>x"},
        Row{"SystemDocumentType", "<!doctype html system '<p a b c>'><p a b c>x"},
        Row{"OddDocumentType", "<!doctype <p a b c>x"}, Row{"OtherDeclaration", "<!element <p a b c>x"},
        Row{"Instruction", "<?php <p a b c ?><p a b c>x"}, Row{"InstructionWithoutATarget", "<? <p a b c>x"},
        Row{"InstructionOfAnUnderscore", "<?_ <p a b c ?><p a b c>x"},
        Row{"InstructionOfAColon", "<?: <p a b c ?><p a b c>x"},
        Row{"InstructionOfALetterBeyondAscii", "<?\xc3\xa4 <p a b c ?><p a b c>x"},
        Row{"DocumentTypeOfALetterBeyondAscii", "<!doctype \xc3\xa4 public '> <p a b c'><p a b c>x"},
        Row{"DocumentTypeOfADigit", "<!doctype 3 public '> <p a b c'><p a b c>x"},
        Row{"DocumentTypeOfAHyphen", "<!doctype - public '> <p a b c'><p a b c>x"},
        Row{"DocumentTypeOfAnUnderscore", "<!doctype _3 public '> <p a b c'><p a b c>x"},
        Row{"EndTag", "<p></p a b c='>x"}, Row{"EndTagWithoutAName", "<p></ <p a b c>x"},
        Row{"Script", "<script><p a b c></p></script><p a b c>x"},
        Row{"ScriptWithALongerEndTag", "<script></scripting><p a b c></script><p a b c>x"},
        Row{"ScriptInCapitals", "<SCRIPT a b c><p a b c></Script><p a b c>x"},
        Row{"EmptyScript", "<script/><p a b c>x"}, Row{"Style", "<style><p a b c></style ><p a b c>x"},
        Row{"UnclosedScript", "<script><p a b c></p>"}, Row{"LessThanInText", "1 < 2 <3 <p a b c>x"}),
    [](auto const& row) { return std::string(row.param.rule); });

TEST(AttributeLimit, AgreesWithLibxmlOnAnyMixOfMarkup)
{
    std::vector<std::string> const pieces = {"<p",
                                             "<b",
                                             "<script",
                                             "<style",
                                             "</script",
                                             "</style>",
                                             "</p>",
                                             "</",
                                             "<!--",
                                             "-->",
                                             "--!>",
                                             "--",
                                             "<!doctype html",
                                             "<!doctype ",
                                             "<?x",
                                             "<? ",
                                             ">",
                                             "/>",
                                             "/",
                                             "'",
                                             "\"",
                                             "=",
                                             " ",
                                             "\n",
                                             "text",
                                             "&amp;",
                                             "public ",
                                             "<",
                                             "</b ",
                                             " system",
                                             "<br",
                                             ">",
                                             ">",
                                             "-",
                                             "!>",
                                             " ",
                                             "\xc3\xa4",
                                             "3",
                                             std::string(1, '\0')};
    std::mt19937 random(1);
    for (int round = 0; round < 3000; ++round) {
        std::string html = "<div>";
        int name = 0;
        for (size_t n = random() % 40; n > 0; --n) {
            html += pieces[random() % pieces.size()];
            for (size_t attributes = random() % 5; attributes > 0; --attributes) html += " n" + std::to_string(++name);
        }
        ASSERT_EQ(events(html, limit), events(limited(html), 99)) << html;
    }
}

TEST(AttributeLimit, IsUncertainOfADocumentThatMayLeaveAscii)
{
    std::string const text(harmlessSize, 'x');
    auto const certain = [&](std::string const& html) { return AttributeLimit(html + text).certain; };
    EXPECT_TRUE(certain(""));
    EXPECT_TRUE(certain("<meta CharSet='UTF-8'>"));
    EXPECT_TRUE(certain("charset = windows-1252, charset=koi8-r"));
    EXPECT_FALSE(certain("charset=utf-8 <meta content='x; charset=IBM037'>"));
    EXPECT_FALSE(certain("<meta content='char&#115;et=x'>"));
    EXPECT_TRUE(certain("<!doctype html><?xml version='1.0'?>\xc3\xa4"));
    EXPECT_FALSE(certain("<?\xc2\xa0 <p a b c ?>"));                   // whether it is a letter decides
    EXPECT_FALSE(certain("<!doctype a\xc2\xa0 public '> <p a b c'>")); // here too
    EXPECT_TRUE(AttributeLimit(text + "charset=").certain);            // names none
    EXPECT_TRUE(AttributeLimit("charset=IBM037").certain);             // too small to do harm
}

} // namespace
} // namespace HTML
} // namespace Velmara
