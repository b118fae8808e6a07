#include <velmara/ContentType.h>

#include <gtest/gtest.h>

#include <set>

#include <velmara/Exception.h>

#include "support/HeaderText.h"
#include "support/Refusals.h"
#include "support/Rule.h"

namespace Velmara {
namespace {

struct Row {
    char const* rule;
    std::string value;
    std::string mediatype;
    std::string subtype;
    std::string parameters;
};

class ContentTypeValue : public testing::TestWithParam<Row> {};

TEST_P(ContentTypeValue, IsReadAs)
{
    Row const& row = GetParam();
    ContentType type(row.value);
    EXPECT_EQ(row.mediatype, type.mediatypeAsString());
    EXPECT_EQ(row.subtype, type.subtypeAsString());
    EXPECT_EQ(row.parameters, parametersOf(type));
}

INSTANTIATE_TEST_SUITE_P(
    Types, ContentTypeValue,
    testing::Values(
        Row{"TypeAndSubtypeAreLowerCased", "TEXT/Html; a=b", "text", "html", "a=b"},
        Row{"OneCharacterIsNoType", "x", "", "", ""}, Row{"BlanksAndTabsAloneAreNoType", " \t \t", "", "", ""},
        Row{"TwoCharactersWithoutSlashAreTextPlain", "xy", "text", "plain", ""},
        Row{"ASlashAloneHasEmptyTexts", "/;", "", "", ""},
        Row{"BlanksAndTabsAheadAreSkipped", " \ttext/html;", "text", "html", ""},
        Row{"ALineEndAheadIsNotSkipped", "\ntext/html;", "\ntext", "html", ""},
        Row{"NothingIsTrimmedAroundTheSlash", "text / html;", "text ", " html", ""},
        Row{"ABlankAheadOfTheSemicolonStaysInTheSubtype", "text/plain ; charset=x", "text", "plain ", "charset=x"},
        Row{"TheFirstSlashCountsWhereverItStands", "foo; name=\"a/b\"", "foo; name=\"a", "b\"", ""},
        Row{"WithoutSlashTheWholeValueIsTheParameterList", "attachment; name=foo", "text", "plain",
            "attachment; name=foo"},
        Row{"WithoutSlashBlanksAheadAreNoPartOfTheFirstName", " \tname=foo", "text", "plain", "name=foo"},
        Row{"CommentsAreOrdinaryText", "text/plain(x); a=(y)", "text", "plain(x)", "a=(y)"},
        Row{"LineFeedEndsTheSubtype", "text/html\n a=b", "text", "html", "a=b"},
        Row{"CarriageReturnEndsTheSubtypeAndTakesTheNextByteWithIt", "text/html\rXa=b", "text", "html", "a=b"}),
    ruleName);

INSTANTIATE_TEST_SUITE_P(
    Parameters, ContentTypeValue,
    testing::Values(
        Row{"NamesAreLowerCasedValuesAreNot", "a/b; Charset=UTF-8", "a", "b", "charset=UTF-8"},
        Row{"WhiteSpaceAroundNameAndValueIsTrimmed", "a/b; \r\n\tn \t=\r\n v \t; m= w", "a", "b", "n=v|m=w"},
        Row{"ANameWithoutValueIsNoParameter", "text/html; charset", "text", "html", ""},
        Row{"ANameWithNothingButSpaceBehindTheSignIsNoParameter", "text/html; charset= \r\n", "text", "html", ""},
        Row{"ASemicolonEndsNoName", "a/b; c; d=e", "a", "b", "c; d=e"},
        Row{"ALineFeedEndsAName", "a/b; c\n d; e=f", "a", "b", "c=d|e=f"},
        Row{"ACarriageReturnEndsANameAndTakesTheNextByteWithIt", "a/b; c\rXd; e=f", "a", "b", "c=d|e=f"},
        Row{"AnEmptyNameIsKept", "a/b; =v", "a", "b", "=v"}, Row{"AnEmptyValueIsKept", "a/b; n=; m=", "a", "b", "n="},
        Row{"AnEmptyQuotedValueIsKept", "a/b; n=\"\"", "a", "b", "n="},
        Row{"AQuoteAloneIsAnEmptyValue", "a/b; n=\"", "a", "b", "n="},
        Row{"ASemicolonEndsAValueAtOnce", "a/b; n=v;m=w", "a", "b", "n=v|m=w"},
        Row{"ALineFeedEndsAValue", "a/b; n=v\n m=w", "a", "b", "n=v|m=w"},
        Row{"ACarriageReturnEndsAValueAndTakesTheNextByteWithIt", "a/b; n=v\rXm=w", "a", "b", "n=v|m=w"},
        Row{"QuotesKeepSemicolonsAndLineEnds", "a/b; n=\"x;\r\ny\"", "a", "b", "n=x;\r\ny"},
        Row{"TextAheadOfAQuoteIsDropped", "a/b; n=text\"quoted\"", "a", "b", "n=quoted"},
        Row{"ASemicolonAheadOfAQuoteEndsTheValueFirst", "a/b; n=v; \"m\"=w", "a", "b", "n=v|\"m\"=w"},
        Row{"ABackslashDoesNotProtectAQuote", "a/b; n=\"x\\\"y\"; m=w", "a", "b", "n=x\\|\"; m=w"},
        Row{"TheByteBehindAClosingQuoteIsSkippedUnseen", "a/b; n=\"x\" ; m=w", "a", "b", "n=x|; m=w"},
        Row{"ACarriageReturnBehindAClosingQuoteTakesTheNextByteWithIt", "a/b; n=\"x\"\rXm=w", "a", "b", "n=x|m=w"},
        Row{"QuotedValuesAreTrimmedOnBothSides", "a/b; n=\" \t\r\nx\r\n \"", "a", "b", "n=x"},
        Row{"AnUnclosedQuoteCostsTheLastCharacter", "a/b; charset=\"utf-8", "a", "b", "charset=utf-"},
        Row{"AnUnclosedQuoteIsTrimmedAheadOfTheLoss", "a/b; n=\"xy \r\n", "a", "b", "n=x"},
        Row{"ExtendedNamesStayAsTheyAre", "a/b; name*0*=us-ascii''a%20b; name*1=c", "a", "b",
            "name*0*=us-ascii''a%20b|name*1=c"},
        Row{"TheSameParameterTwiceStaysTwice", "a/b; n=1; n=2", "a", "b", "n=1|n=2"}),
    ruleName);

TEST(ContentType, ValueWithoutAnythingBehindTheTypeGainsASemicolon)
{
    ContentType type("text/plain");
    EXPECT_EQ("text/plain", type.value());
    type.mediatype();
    EXPECT_EQ("text/plain;", type.value());
    EXPECT_EQ("Content-Type: text/plain;", type.asString());
}

TEST(ContentType, TextMadeAheadOfReadingStaysWithoutTheSemicolon)
{
    ContentType type("text/plain");
    EXPECT_EQ("Content-Type: text/plain", type.asString());
    type.mediatype();
    EXPECT_EQ("Content-Type: text/plain", type.asString());
}

TEST(ContentType, ValueThatEndsItsSubtypeStaysAsItIs)
{
    for (std::string value : {"text/plain;", "text/plain\n", "text/plain\r\n", "name", "x"}) {
        ContentType type(value);
        type.mediatype();
        EXPECT_EQ(value, type.value());
    }
}

TEST(ContentType, CharsetIsTheLastParameterThatBeginsSo)
{
    EXPECT_EQ("b", ContentType("a/b; charset=a; charset=b; name=c").charset());
    EXPECT_EQ("b", ContentType("a/b; charset=a; charset*=b").charset());
    EXPECT_EQ("b", ContentType("a/b; charsetx=b").charset());
    EXPECT_EQ("", ContentType("a/b; charse=b").charset());
    EXPECT_EQ("", ContentType("a/b").charset());
}

TEST(ContentType, BoundaryIsTheFirstParameterOfExactlyThatName)
{
    EXPECT_EQ("1", ContentType("a/b; boundaryx=0; Boundary=1; boundary=2").boundary());
    EXPECT_EQ("a;b", ContentType("multipart/mixed; boundary=\"a;b\"").boundary());
    EXPECT_EQ("", ContentType("multipart/mixed").boundary());
}

TEST(ContentType, CopiesShareOneReading)
{
    ContentType type("text/plain");
    ContentType copy(type);
    copy.mediatype();
    EXPECT_EQ("text/plain;", type.value());
    EXPECT_EQ(&copy.parameters(), &type.parameters());
}

TEST(ContentType, FurtherQuestionsReadNothingAnew)
{
    ContentType type("multipart/mixed; boundary=b; charset=c");
    EXPECT_EQ(&type.boundary(), &type.boundary());
    EXPECT_EQ(&type.charset(), &type.charset());
    EXPECT_EQ(2u, type.parameters().size());
}

TEST(ContentType, ImplementationsAreNeverEqualHandlesAreComparedByText)
{
    ContentType a("Text/HTML;"), b("text/html;");
    EXPECT_TRUE(static_cast<Header const&>(a) == b);
    ContentTypeImpl impl;
    EXPECT_FALSE(impl == impl);
    EXPECT_FALSE(static_cast<TypeAndValue const&>(a) == static_cast<TypeAndValue const&>(a));
}

TEST(ContentType, EmptyValueLeavesANullHandle)
{
    EXPECT_TRUE(ContentType().isNull());
    EXPECT_TRUE(ContentType(std::string()).isNull());
    EXPECT_FALSE(ContentType("x").isNull());
    EXPECT_EQ("Content-Type", ContentType().type());
}

TEST(ContentType, CodesComeFromTheTexts)
{
    ContentType html("TEXT/HTML; Charset=UTF-8");
    EXPECT_EQ(1, html.mediatype());
    EXPECT_EQ(3, html.subtype());
    ContentType unknown("chemical/x-pdb");
    EXPECT_EQ(0, unknown.mediatype());
    EXPECT_EQ(0, unknown.subtype());
    ContentType blank("text/plain ; charset=x");
    EXPECT_EQ(1, blank.mediatype());
    EXPECT_EQ(0, blank.subtype());
    EXPECT_EQ(0, ContentType("x").mediatype());
    EXPECT_EQ(0, ContentType("x").subtype());
    EXPECT_EQ(1, ContentType("xy").mediatype());
    EXPECT_EQ(4, ContentType("xy").subtype());
}

TEST(ContentType, SubtypeIsKnownUnderAnyMediaType)
{
    EXPECT_EQ(4, ContentType("image/plain").subtype());
    EXPECT_EQ(12, ContentType("foo/pjpeg").subtype());
}

TEST(ContentType, AnyValueOfManyMegabytesIsReadInOnePass)
{
    size_t const size = 4 << 20;
    for (char const* piece : {"\"", ";", "\r", "\n", " ", "/", "=\"", "x"}) {
        std::string value = "a/b;";
        for (size_t i = 0; value.size() < size; ++i) value += piece;
        EXPECT_LE(ContentType(value).parameters().size(), size) << piece;
    }
}

TEST(ContentType, EveryAccessorOfANullHandleThrowsWithALineOfItsOwn)
{
    ContentType const null;
    std::set<unsigned int> lines;
    lines.insert(lineOfRefusal([&] { null.mediatype(); }));
    lines.insert(lineOfRefusal([&] { null.subtype(); }));
    lines.insert(lineOfRefusal([&] { null.mediatypeAsString(); }));
    lines.insert(lineOfRefusal([&] { null.subtypeAsString(); }));
    lines.insert(lineOfRefusal([&] { null.parameters(); }));
    lines.insert(lineOfRefusal([&] { null.charset(); }));
    lines.insert(lineOfRefusal([&] { null.boundary(); }));
    EXPECT_EQ(7u, lines.size());
}

} // namespace
} // namespace Velmara
