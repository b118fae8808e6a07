// The names of attachments: "name" of a content type and "filename" of a disposition.
#include <gtest/gtest.h>

#include <velmara/ContentDisposition.h>
#include <velmara/ContentType.h>
#include <velmara/Exception.h>

#include "support/Refusals.h"
#include "support/Rule.h"

namespace Velmara {
namespace {

std::string const replacement = "\xEF\xBF\xBD";

struct Row {
    char const* rule;
    std::string parameters; // "@" stands for "name" or "filename"
    std::string name;
};

std::string named(std::string text, std::string const& name)
{
    for (size_t at = 0; (at = text.find('@', at)) != std::string::npos; at += name.size()) text.replace(at, 1, name);
    return text;
}

/// Both headers put the parts of a name together in the same way.
class AttachmentNames : public testing::TestWithParam<Row> {};

TEST_P(AttachmentNames, IsThatOfContentType)
{
    EXPECT_EQ(GetParam().name, ContentType("a/b; " + named(GetParam().parameters, "name")).utf8name());
}

TEST_P(AttachmentNames, IsThatOfContentDisposition)
{
    std::string const value = "attachment; " + named(GetParam().parameters, "filename");
    EXPECT_EQ(GetParam().name, ContentDisposition(value).utf8fileName());
}

INSTANTIATE_TEST_SUITE_P(
    Choice, AttachmentNames,
    testing::Values(Row{"APlainName", "@=a.txt", "a.txt"}, Row{"NoName", "other=a.txt", ""},
                    Row{"AnEmptyName", "@=\"\"", ""}, Row{"TheFirstPlainNameCounts", "@=a; @=b", "a"},
                    Row{"AnExtendedName", "@*=utf-8''a%20b", "a b"},
                    Row{"AnExtendedAndAPlainSegment", "@*0*=us-ascii''a%20b; @*1=c", "a bc"},
                    Row{"APlainAndAnExtendedSegment", "@*0=us-ascii''a%20; @*1*=b", "a b"},
                    Row{"ExtendedStaysSetBehindAPlainSegment", "@*0*=us-ascii''; @*1=%41; @*2=b", "Ab"},
                    Row{"PlainSegmentsAreNoExtendedText", "@*0=a%20; @*1=b''c", "a%20b''c"},
                    Row{"APlainNameBeatsSegmentsAheadOfIt", "@*0*=utf-8''a%20b; @=c%20", "c%20"},
                    Row{"APlainNameBeatsSegmentsBehindIt", "@=c; @*0*=utf-8''a", "c"},
                    Row{"AnEmptyPlainNameBeatsSegmentsToo", "@*0*=utf-8''a; @=\"\"; @*1*=b", ""},
                    Row{"SegmentsAreJoinedInTheirOrder", "@*1=a; @*0=b; @*10=c; @*2=d", "abcd"},
                    Row{"TheSameSegmentTwiceCountsTwice", "@*0=a; @*0=b", "ab"},
                    Row{"NoNumberIsNeeded", "@*=utf-8''a; @*x=b; @**=c", "abc"},
                    Row{"AStarAloneBehindTheNameIsExtended", "@*=us-ascii''%41", "A"},
                    Row{"OnlyAStarContinuesAName", "@x=a; @-1=b; @*0=c", "c"},
                    Row{"AStarThatEndsAnotherNameIsNotAsked", "@x*=a%20; @*0=c%20", "c%20"},
                    Row{"ANameOnlyInsideAnotherIsNone", "x@=a; @*0=b", "b"}),
    ruleName);

INSTANTIATE_TEST_SUITE_P(CharacterSets, AttachmentNames,
                         testing::Values(Row{"TheSetIsNamedAheadOfTheFirstQuote", "@*=iso-8859-1''%E9", "\xC3\xA9"},
                                         Row{"TheSetIsReadInAnyCase", "@*=Iso-8859-1''%e9", "\xC3\xA9"},
                                         Row{"TheLanguageIsIgnored", "@*=iso-8859-1'fr'%E9", "\xC3\xA9"},
                                         Row{"AThirdQuoteIsText", "@*=utf-8''a'b", "a'b"},
                                         Row{"TheQuotesMayComeLater", "@*0=utf-; @*1*=8'; @*2='%C3%A9", "\xC3\xA9"},
                                         Row{"AnEmptySetIsAscii", "@*=''a%E9b", "a" + replacement + "b"},
                                         Row{"AnEmptySetWithALanguageIsAscii", "@*='en'a", "a"},
                                         Row{"WithoutQuotesAllIsText", "@*=a%20b", "a b"},
                                         Row{"WithOneQuoteAllIsText", "@*=utf-8'a%20b", "utf-8'a b"},
                                         Row{"WithOneQuoteInFrontAllIsText", "@*='a%20b", "'a b"},
                                         Row{"WithOneQuoteTheSetIsAscii", "@*=iso-8859-1'%E9",
                                             "iso-8859-1'" + replacement},
                                         Row{"WithoutQuotesTheSetIsAscii", "@*=%C3%A9", replacement + replacement},
                                         Row{"AnUnknownSetGivesNoName", "@*=no-such-set''abc", ""},
                                         Row{"BadBytesAreReplaced", "@*=shift_jis''a%82", "a" + replacement},
                                         // Names in the set that names are shown in are copied, as everywhere.
                                         Row{"Utf8IsNotValidated", "@*=utf-8''%FF", "\xFF"},
                                         Row{"ACharacterMayBeCutBySegments", "@*0*=utf-8''%C3; @*1*=%A9", "\xC3\xA9"},
                                         Row{"AnEscapeMayBeCutBySegments", "@*0*=utf-8''%4; @*1*=1", "A"},
                                         Row{"NothingBehindTheQuotes", "@*=utf-8''", ""}),
                         ruleName);

INSTANTIATE_TEST_SUITE_P(
    Escapes, AttachmentNames,
    testing::Values(Row{"DigitsInEitherCase", "@*=us-ascii''%4a%4A%6F", "JJo"},
                    Row{"APercentSignLosesTheByteThatIsNoDigit", "@*=us-ascii''a%zb", "ab"},
                    Row{"APercentSignLosesAPercentSign", "@*=us-ascii''%%41", "41"},
                    Row{"ABadSecondDigitStaysAloneBehind", "@*=us-ascii''a%4zb", "azb"},
                    Row{"APercentSignAsSecondDigitIsText", "@*=us-ascii''%4%41", "%41"},
                    Row{"APercentSignAtTheEndIsDropped", "@*=us-ascii''a%", "a"},
                    Row{"AnEscapeCutAtTheEndIsDropped", "@*=us-ascii''a%4", "a"},
                    Row{"TheCharsetIsNotUnescaped", "@*=us%2Dascii''a", ""}, // no set has that name
                    Row{"OtherCharactersAreCopied", "@*=us-ascii''a+b_c(d)", "a+b_c(d)"},
                    Row{"EncodedWordsInExtendedTextStay", "@*=us-ascii''=?utf-8?Q?a?=", "=?utf-8?Q?a?="}),
    ruleName);

INSTANTIATE_TEST_SUITE_P(
    PlainText, AttachmentNames,
    testing::Values(Row{"AnEncodedWordIsDecoded", "@=\"=?utf-8?B?QUJD?=.txt\"", "ABC.txt"},
                    Row{"AnEncodedWordIsConverted", "@=\"=?iso-8859-1?Q?=E9?=\"", "\xC3\xA9"},
                    Row{"AnEncodedWordMayBeCutBySegments", "@*0=\"=?utf-8?B?QU\"; @*1=\"JD?=\"", "ABC"},
                    Row{"AWordThatCannotBeDecodedStays", "@=\"=?utf-8?Q?=4?=\"", "=?utf-8?Q?=4?="},
                    Row{"EightBitTextStays", "@=\xE9", "\xE9"}, Row{"EscapesInPlainTextStay", "@=a%20b", "a%20b"}),
    ruleName);

TEST(AttachmentNames, NamesOfContentTypeHaveNoCaseThoseOfContentDispositionHave)
{
    EXPECT_EQ("a", ContentType("a/b; NAME=a").utf8name());
    EXPECT_EQ("ab", ContentType("a/b; Name*0=a; nAme*1=b").utf8name());
    EXPECT_EQ("", ContentDisposition("attachment; FILENAME=a").utf8fileName());
    EXPECT_EQ("", ContentDisposition("attachment; FileName=a").utf8fileName());
    EXPECT_EQ("b", ContentDisposition("attachment; FileName*0=a; filename*1=b").utf8fileName());
}

TEST(AttachmentNames, ATypeHasNoNameOnceItsBoundaryWasFound)
{
    ContentType const type("multipart/mixed; name=a; boundary=b");
    EXPECT_EQ("b", type.boundary());
    EXPECT_EQ("", type.utf8name());
}

TEST(AttachmentNames, ANameFoundAheadOfTheBoundaryStays)
{
    ContentType const type("multipart/mixed; name=a; boundary=b");
    EXPECT_EQ("a", type.utf8name());
    EXPECT_EQ("b", type.boundary());
    EXPECT_EQ("a", type.utf8name());
}

TEST(AttachmentNames, ABoundaryThatWasLookedForInVainChangesNothing)
{
    ContentType const type("text/plain; name=a");
    EXPECT_EQ("", type.boundary());
    EXPECT_EQ("a", type.utf8name());
}

TEST(AttachmentNames, AreFoundOnceAndKept)
{
    ContentType const type("text/plain; name=a");
    EXPECT_EQ(&type.utf8name(), &ContentType(type).utf8name()) << "copies share the name";
    ContentDisposition const disposition("inline; filename=a");
    EXPECT_EQ(&disposition.utf8fileName(), &ContentDisposition(disposition).utf8fileName());
}

TEST(AttachmentNames, AValueWithoutSlashMayHoldASecondParameterOnly)
{
    EXPECT_EQ("", ContentType("attachment; name=foo").utf8name()) << "its parameter is \"attachment; name\"";
    EXPECT_EQ("foo", ContentType("name=foo").utf8name());
}

TEST(AttachmentNames, AnEmptyDispositionHasNone)
{
    EXPECT_EQ("", ContentDisposition(Header("Content-Disposition", "")).utf8fileName());
}

TEST(AttachmentNames, OfNullHandlesThrow)
{
    EXPECT_NE(0u, lineOfRefusal([] { ContentType().utf8name(); }));
    EXPECT_NE(0u, lineOfRefusal([] { ContentDisposition().utf8fileName(); }));
    EXPECT_NE(lineOfRefusal([] { ContentType().utf8name(); }), lineOfRefusal([] { ContentType().boundary(); }));
}

TEST(AttachmentNames, AHundredThousandSegmentsAreJoined)
{
    std::string value = "attachment";
    for (int i = 0; i < 100000; ++i) value += "; filename*" + std::to_string(i) + "*=%41";
    EXPECT_EQ(std::string(100000, 'A'), ContentDisposition(value).utf8fileName());
}

} // namespace
} // namespace Velmara
