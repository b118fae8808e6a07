#include <velmara/SharedMimeInfo.h>

#include <gtest/gtest.h>
#include <libxml/parser.h>
#include <libxml/xmlerror.h>

#include "support/Collected.h"
#include "support/Rule.h"
#include "support/TypeDatabase.h"

namespace Velmara {
namespace {

using namespace std::string_literals;

// ---- one type and its tests ---------------------------------------------------------------------

struct TestRow {
    char const* rule;
    char const* test; // within <magic>
    std::string data;
    bool holds;
};

class ContentTest : public testing::TestWithParam<TestRow> {};

TEST_P(ContentTest, IsHeldAgainstTheContent)
{
    TestRow const& row = GetParam();
    auto const database = databaseWith("<mime-type type=\"a/b\"><magic>"s + row.test + "</magic></mime-type>");
    EXPECT_EQ(row.holds, database->mimeType(bytes(row.data), "") == "a/b");
    EXPECT_EQ(row.holds ? 1u : 0u, database->explain(bytes(row.data), "").magics.size());
}

INSTANTIATE_TEST_SUITE_P(
    Places, ContentTest,
    testing::Values(
        TestRow{"OnlyTheOnePlaceIsTried", R"(<match type="string" value="ab" offset="1"/>)", "xxab", false},
        TestRow{"AtTheOnePlace", R"(<match type="string" value="ab" offset="1"/>)", "xab", true},
        TestRow{"TheFirstPlaceOfARange", R"(<match type="string" value="ab" offset="1:3"/>)", "xab", true},
        TestRow{"TheLastPlaceOfARange", R"(<match type="string" value="ab" offset="1:3"/>)", "xxxab", true},
        TestRow{"BehindTheRange", R"(<match type="string" value="ab" offset="1:3"/>)", "xxxxab", false},
        TestRow{"BeforeTheRange", R"(<match type="string" value="ab" offset="1:3"/>)", "abxx", false},
        TestRow{"ARangeBeyondTheContent", R"(<match type="string" value="ab" offset="0:2000000000"/>)", "xxab", true},
        TestRow{"AFarRangeSkipsOverAFalseStart", R"(<match type="string" value="ab" offset="2:2000"/>)", "abxaxab",
                true},
        TestRow{"AFarRangeEndsAtItsLastPlace", R"(<match type="string" value="ab" offset="0:600"/>)",
                std::string(601, 'x') + "ab", false},
        TestRow{"AValueThatIsCutOffByTheEnd", R"(<match type="string" value="abc" offset="1"/>)", "xab", false},
        TestRow{"AValueLongerThanTheContent", R"(<match type="string" value="abcdef" offset="0:5"/>)", "abcd", false},
        TestRow{"AnEmptyValueAtTheEnd", R"(<match type="string" value="\" offset="2"/>)", "xy", true},
        TestRow{"AnEmptyValueBehindTheEnd", R"(<match type="string" value="\" offset="3"/>)", "xy", false},
        TestRow{"AnEmptyMaskedValue", R"(<match type="string" value="ab" mask="0xf" offset="1"/>)", "xy", true},
        TestRow{"AnOffsetFarBehindTheEnd", R"(<match type="string" value="a" offset="2147483647"/>)", "xy", false}),
    ruleName);

INSTANTIATE_TEST_SUITE_P(
    Zeros, ContentTest,
    testing::Values(
        TestRow{"AZeroOfANumberMatchesAZero", R"(<match type="big16" value="0x0012" offset="0"/>)", "\0\x12"s, true},
        TestRow{"AZeroOfANumberMatchesTheLetterXToo", R"(<match type="big16" value="0x0012" offset="0"/>)", "X\x12",
                true},
        TestRow{"TheLetterXOfANumberMatchesAZero", R"(<match type="big16" value="0x5812" offset="0"/>)", "\0\x12"s,
                true},
        TestRow{"AZeroOfANumberInARange", R"(<match type="little16" value="0x0012" offset="0:4"/>)", "abc\x12\0"s,
                true},
        TestRow{"AZeroByteNeedsTheLetterX", R"(<match type="byte" value="0x0" offset="0"/>)", "X?", true},
        TestRow{"AZeroByteDoesNotMatchAZero", R"(<match type="byte" value="0x0" offset="0"/>)", "\0?"s, false},
        TestRow{"AZeroOfATextMatchesAZero", R"(<match type="string" value="a\0b" offset="0"/>)", "a\0b"s, true},
        TestRow{"AZeroOfATextDoesNotMatchTheLetterX", R"(<match type="string" value="a\0b" offset="0"/>)", "aXb",
                false}),
    ruleName);

INSTANTIATE_TEST_SUITE_P(
    Masks, ContentTest,
    testing::Values(
        TestRow{"CoverANumber", R"(<match type="big16" value="0x1200" mask="0xff00" offset="0"/>)", "\x12\x34", true},
        TestRow{"StillCompareTheRest", R"(<match type="big16" value="0x1200" mask="0xff00" offset="0"/>)", "\x13\x34",
                false},
        TestRow{"OfLittleNumbersAreReversedWithThem",
                R"(<match type="little32" value="0x0000081a" mask="0x8080ffff" offset="0"/>)", "\x1a\x08\x7f\x7f",
                true},
        TestRow{"OfLittleNumbersThatDoNotFit",
                R"(<match type="little32" value="0x0000081a" mask="0x8080ffff" offset="0"/>)", "\x1a\x08\x7f\x80",
                false},
        TestRow{"MakeAZeroByteFindable", R"(<match type="byte" value="0x0" mask="0x80" offset="0"/>)", "\x7f?", true},
        TestRow{"TellAZeroByteFromOthers", R"(<match type="byte" value="0x0" mask="0x80" offset="0"/>)", "\xff?",
                false},
        TestRow{"ApplyToATextAndTheContent", R"(<match type="string" value="BM??" mask="0xffff0000" offset="0"/>)",
                "BM\x01\x02", true},
        TestRow{"ApplyInARange", R"(<match type="string" value="BM?Z" mask="0xffff00ff" offset="0:3"/>)", "..BM\x01Z",
                true},
        TestRow{"ShorterThanANumberNeverHold", R"(<match type="big32" value="0x12345678" mask="0xffff" offset="0"/>)",
                "\x12\x34\x56\x78", false},
        TestRow{"LongerThanTheValueNeedNoFurtherContent",
                R"(<match type="big16" value="0x1234" mask="0xffffffff" offset="0"/>)", "\x12\x34", true},
        TestRow{"OtherCharactersCountAsZero", R"(<match type="big16" value="0x1200" mask="0xffg0" offset="0"/>)",
                "\x12\x34", true},
        TestRow{"OfOneDigitNeverHoldForANumber", R"(<match type="big16" value="0x1234" mask="0xf" offset="0"/>)",
                "\x12\x34", false}),
    ruleName);

INSTANTIATE_TEST_SUITE_P(
    Nesting, ContentTest,
    testing::Values(
        TestRow{"ParentAndChild",
                R"(<match type="byte" value="61" offset="0"><match type="byte" value="62" offset="1"/></match>)", "ab",
                true},
        TestRow{"AParentWithoutAnyOfItsChildren",
                R"(<match type="byte" value="61" offset="0"><match type="byte" value="62" offset="1"/></match>)", "ac",
                false},
        TestRow{"AChildWithoutItsParent",
                R"(<match type="byte" value="61" offset="0"><match type="byte" value="62" offset="1"/></match>)", "xb",
                false},
        TestRow{"AnyChildWillDo",
                R"(<match type="byte" value="61" offset="0"><match type="byte" value="62" offset="1"/>
                   <match type="byte" value="63" offset="1"/></match>)",
                "ac", true},
        TestRow{"ChildrenCountFromTheStartOfTheContent",
                R"(<match type="byte" value="61" offset="0:4"><match type="byte" value="62" offset="1"/></match>)",
                "xbxa", true},
        TestRow{"AllGenerationsMustHold",
                R"(<match type="byte" value="61" offset="0"><match type="byte" value="62" offset="1">
                   <match type="byte" value="63" offset="2"/></match></match>)",
                "abx", false},
        TestRow{
            "ARangeWithAChild",
            R"(<match type="string" value="ab" offset="0:9"><match type="string" value="cd" offset="0:9"/></match>)",
            "xcdxabx", true}),
    ruleName);

TEST(ContentCost, DepthDoesNotMultiplyLength)
{
    std::string open, close;
    for (int depth = 0; depth < 50; ++depth) {
        open += R"(<match type="string" value="a" mask="0xdf" offset="0:4000">)";
        close += "</match>";
    }
    auto const database =
        databaseWith("<mime-type type=\"a/b\"><magic>" + open + R"(<match type="byte" value="62" offset="0:4000"/>)" +
                     close + "</magic></mime-type>");
    EXPECT_EQ("text/plain", database->mimeType(bytes(std::string(5000, 'a')), "")); // at once, not in 4000^50 steps
    EXPECT_EQ("a/b", database->mimeType(bytes(std::string(3000, 'a') + "b"), ""));
}

// ---- which test and which pattern win ---------------------------------------------------------

char const* const _documents = R"(
    <mime-type type="application/zip">
      <magic priority="40"><match type="string" value="PK\003\004" offset="0"/></magic><glob pattern="*.zip"/>
    </mime-type>
    <mime-type type="application/pdf">
      <magic><match type="string" value="%PDF-" offset="0:1024"/></magic><glob pattern="*.pdf"/>
    </mime-type>
    <mime-type type="image/jpeg"><glob pattern="*.jpg"/></mime-type>
    <mime-type type="x/document"><sub-class-of type="application/zip"/><glob pattern="*.docx"/></mime-type>
    <mime-type type="x/letter"><sub-class-of type="x/document"/><glob pattern="*.letter"/></mime-type>
    <mime-type type="x/tool"><glob pattern="*.letter"/></mime-type>
    <mime-type type="application/gzip">
      <magic><match type="big16" value="0x1f8b" offset="0"/></magic><glob pattern="*.gz"/>
    </mime-type>
    <mime-type type="x/tarball"><sub-class-of type="application/gzip"/><glob pattern="*.tar.gz"/></mime-type>
    <mime-type type="application/x-bzip">
      <magic><match type="string" value="BZh" offset="0"/></magic><glob pattern="*.bz2"/>
    </mime-type>
    <mime-type type="x/bzip-tarball"><sub-class-of type="application/x-bzip"/><glob pattern="*.tbz"/></mime-type>
    <mime-type type="x/rar"><magic><match type="string" value="Rar!" offset="0"/></magic></mime-type>
    <mime-type type="x/rar-comic"><sub-class-of type="x/rar"/><glob pattern="*.cbr"/></mime-type>)";

struct AnswerRow {
    char const* rule;
    char const* elements;
    std::string data;
    char const* name;
    char const* type;
    MimeTypeExplanation::Reason reason;
};

class Answer : public testing::TestWithParam<AnswerRow> {};

TEST_P(Answer, FollowsTheRule)
{
    AnswerRow const& row = GetParam();
    auto const database = databaseWith(row.elements);
    EXPECT_EQ(row.type, database->mimeType(bytes(row.data), row.name));
    MimeTypeExplanation const why = database->explain(bytes(row.data), row.name);
    EXPECT_EQ(row.reason, why.reason);
    EXPECT_EQ(row.type, *why.mimeType);
}

using Why = MimeTypeExplanation;

INSTANTIATE_TEST_SUITE_P(
    Documents, Answer,
    testing::Values(
        AnswerRow{"ANameRefinesAZip", _documents, "PK\3\4....", "report.docx", "x/document", Why::NameWithinContainer},
        AnswerRow{"AZipUnderAForeignNameStaysAZip", _documents, "PK\3\4....", "x.zzz", "application/zip",
                  Why::ContentAlone},
        AnswerRow{"AZipUnderTheNameOfNoKindOfItStaysAZip", _documents, "PK\3\4....", "x.jpg", "application/zip",
                  Why::ContainerWithoutName},
        AnswerRow{"AZipUnderItsOwnName", _documents, "PK\3\4....", "x.zip", "application/zip",
                  Why::NameWithinContainer},
        AnswerRow{"AKindOfAKindRefinesToo", _documents, "PK\3\4....", "x.letter", "x/letter", Why::NameWithinContainer},
        AnswerRow{"ANameRefinesAGzip", _documents, "\x1f\x8b\x08", "a.tar.gz", "x/tarball", Why::NameWithinContainer},
        AnswerRow{"ANameRefinesABzip", _documents, "BZh9", "a.tbz", "x/bzip-tarball", Why::NameWithinContainer},
        AnswerRow{"ANameRefinesNoOtherArchive", _documents, "Rar!", "a.cbr", "x/rar", Why::ContentOverName},
        AnswerRow{"TheContentBeatsTheName", _documents, "%PDF-1.4", "photo.jpg", "application/pdf",
                  Why::ContentOverName},
        AnswerRow{"WithoutATestTheNameDecides", _documents, "abc", "photo.jpg", "image/jpeg", Why::NameAlone},
        AnswerRow{"WithoutContentTheNameDecides", _documents, "", "photo.jpg", "image/jpeg", Why::NameAlone},
        AnswerRow{"OneByteIsNoContent", _documents, "B", "photo.jpg", "image/jpeg", Why::NameAlone},
        AnswerRow{"TheEarlierOfEqualTypesByName", _documents, "abc", "x.letter", "x/letter", Why::NameAlone},
        AnswerRow{"WithoutANameTheContentDecides", _documents, "%PDF-1.4", "", "application/pdf", Why::ContentAlone}),
    ruleName);

INSTANTIATE_TEST_SUITE_P(
    Nothing, Answer,
    testing::Values(
        AnswerRow{"NeitherNameNorContent", _documents, "", "", "ErrorEmptyInput", Why::EmptyInput},
        AnswerRow{"NoNameAndOneByte", _documents, "a", "", "ErrorEmptyInput", Why::EmptyInput},
        AnswerRow{"AForeignNameAndOneByte", _documents, "a", "x.zzz", "ErrorNoMatched", Why::NothingMatched},
        AnswerRow{"AForeignNameAndTwoBytes", _documents, "ab", "x.zzz", "text/plain", Why::LooksLikeText},
        AnswerRow{"Letters", _documents, "plain letters", "", "text/plain", Why::LooksLikeText},
        AnswerRow{"AnEmptyDatabase", "", "PK\3\4", "x.zip", "application/octet-stream", Why::LooksBinary},
        AnswerRow{"AZeroWithinThe32", _documents, std::string(31, 'a') + "\0"s, "", "application/octet-stream",
                  Why::LooksBinary},
        AnswerRow{"AZeroBehindThe32", _documents, std::string(32, 'a') + "\0"s, "", "text/plain", Why::LooksLikeText},
        AnswerRow{"AZeroAtFortyFollowsText", _documents, std::string(40, 'a') + "\0bc"s, "", "text/plain",
                  Why::LooksLikeText},
        AnswerRow{"AControlCharacter", _documents, "ab\1cd", "", "application/octet-stream", Why::LooksBinary},
        AnswerRow{"DeleteIsAControlCharacter", _documents, "ab\x7f", "", "application/octet-stream", Why::LooksBinary},
        AnswerRow{"WhiteSpaceIsNone", _documents, "a\t\n\v\f\r ", "", "text/plain", Why::LooksLikeText},
        AnswerRow{"AControlCharacterBehindThe32", _documents, std::string(32, 'a') + "\1", "", "text/plain",
                  Why::LooksLikeText},
        AnswerRow{"AHighByteIsText", _documents, "gr\xfc\xdf", "", "text/plain", Why::LooksLikeText},
        AnswerRow{"AHighByteBehindAControlCharacterIsText", _documents, "\1\2\xfc", "", "text/plain",
                  Why::LooksLikeText},
        AnswerRow{"AHighByteFarBehindAControlCharacterIsText", _documents, "\1" + std::string(5000, 'a') + "\xfc", "",
                  "text/plain", Why::LooksLikeText},
        AnswerRow{"AHighByteBeforeAZeroIsText", _documents, "a\xfc\0"s, "", "text/plain", Why::LooksLikeText},
        AnswerRow{"AZeroBeforeAHighByteIsNot", _documents, "a\0\xfc"s, "", "application/octet-stream",
                  Why::LooksBinary}),
    ruleName);

INSTANTIATE_TEST_SUITE_P(Priorities, Answer,
                         testing::Values(AnswerRow{"TheHighestPriorityWins", R"(
            <mime-type type="x/a"><magic priority="50"><match type="byte" value="61" offset="0"/></magic></mime-type>
            <mime-type type="x/b"><magic priority="60"><match type="byte" value="61" offset="0"/></magic></mime-type>)",
                                                   "ab", "", "x/b", Why::ContentAlone},
                                         AnswerRow{"TheEarlierOfEqualPrioritiesWins", R"(
            <mime-type type="x/a"><magic><match type="string" value="b" offset="0:9"/></magic></mime-type>
            <mime-type type="x/b"><magic><match type="byte" value="61" offset="0"/></magic></mime-type>)",
                                                   "ab", "", "x/a", Why::ContentAlone},
                                         AnswerRow{"AHigherPriorityOfALaterMagicCounts", R"(
            <mime-type type="x/b"><magic priority="60"><match type="byte" value="61" offset="0"/></magic></mime-type>
            <mime-type type="x/a"><magic><match type="byte" value="61" offset="0"/></magic>
                <magic priority="80"><match type="byte" value="62" offset="1"/></magic></mime-type>)",
                                                   "ab", "", "x/a", Why::ContentAlone},
                                         AnswerRow{"NegativePrioritiesCompareToo", R"(
            <mime-type type="x/a"><magic priority="-9"><match type="byte" value="61" offset="0"/></magic></mime-type>
            <mime-type type="x/b"><magic priority="-2"><match type="byte" value="61" offset="0"/></magic></mime-type>)",
                                                   "ab", "", "x/b", Why::ContentAlone}),
                         ruleName);

INSTANTIATE_TEST_SUITE_P(Patterns, Answer,
                         testing::Values(AnswerRow{"TheLongerPatternOfEqualWeightWins", R"(
            <mime-type type="x/gz"><glob pattern="*.gz"/></mime-type>
            <mime-type type="x/tar"><glob pattern="*.tar.gz"/></mime-type>)",
                                                   "", "a.tar.gz", "x/tar", Why::NameAlone},
                                         AnswerRow{"TheHigherWeightBeatsTheLongerPattern", R"(
            <mime-type type="x/gz"><glob pattern="*.gz" weight="60"/></mime-type>
            <mime-type type="x/tar"><glob pattern="*.tar.gz"/></mime-type>)",
                                                   "", "a.tar.gz", "x/gz", Why::NameAlone},
                                         AnswerRow{"TheEarlierOfEqualPatternsWins", R"(
            <mime-type type="x/a"><glob pattern="*.b"/></mime-type>
            <mime-type type="x/b"><glob pattern="*.b"/></mime-type>)",
                                                   "", "a.b", "x/a", Why::NameAlone},
                                         AnswerRow{"NegativeWeightsCompareToo", R"(
            <mime-type type="x/a"><glob pattern="*.b" weight="-9"/></mime-type>
            <mime-type type="x/b"><glob pattern="*.b" weight="-2"/></mime-type>)",
                                                   "", "a.b", "x/b", Why::NameAlone},
                                         AnswerRow{"OnlyTheFirstFittingPatternOfATypeIsEntered", R"(
            <mime-type type="x/a"><glob pattern="*.c"/><glob pattern="*.b.c"/></mime-type>
            <mime-type type="x/b"><glob pattern="*b.c"/></mime-type>)",
                                                   "", "a.b.c", "x/b", Why::NameAlone},
                                         AnswerRow{"ALaterHeavierPatternOfTheSameTypeRaisesTheBarForAll", R"(
            <mime-type type="x/a"><glob pattern="*.c"/><glob pattern="*.b.c" weight="70"/></mime-type>)",
                                                   "", "a.b.c", "ErrorNoMatched", Why::NothingMatched},
                                         AnswerRow{"AnEmptyPatternFitsNothing",
                                                   R"(<mime-type type="x/a"><glob/><glob pattern=""/></mime-type>)", "",
                                                   "a", "ErrorNoMatched", Why::NothingMatched},
                                         AnswerRow{"TheLengthIsThatOfThePatternNotOfWhatItFits", R"(
            <mime-type type="x/a"><glob pattern="*"/></mime-type>
            <mime-type type="x/b"><glob pattern="a?c"/></mime-type>)",
                                                   "", "abc", "x/b", Why::NameAlone}),
                         ruleName);

// ---- patterns -----------------------------------------------------------------------------------

struct NameRow {
    char const* rule;
    char const* glob;
    std::string name;
    bool fits;
};

class NamePattern : public testing::TestWithParam<NameRow> {};

TEST_P(NamePattern, FitsOrNot)
{
    NameRow const& row = GetParam();
    auto const database = databaseWith("<mime-type type=\"x/a\"><glob "s + row.glob + "/></mime-type>");
    EXPECT_EQ(row.fits ? "x/a" : "ErrorNoMatched", database->mimeType(Buffer(), row.name));
}

INSTANTIATE_TEST_SUITE_P(
    Globs, NamePattern,
    testing::Values(NameRow{"AnEnding", R"(pattern="*.txt")", "a.txt", true},
                    NameRow{"AnEndingInTheMiddle", R"(pattern="*.txt")", "a.txt.b", false},
                    NameRow{"AnEndingAlone", R"(pattern="*.txt")", ".txt", true},
                    NameRow{"HalfAnEnding", R"(pattern="*.txt")", "txt", false},
                    NameRow{"CaseDoesNotCount", R"(pattern="*.TxT")", "a.tXt", true},
                    NameRow{"CaseCountsWhereAskedFor", R"(pattern="*.C" case-sensitive="true")", "a.C", true},
                    NameRow{"OtherCaseWhereCaseCounts", R"(pattern="*.C" case-sensitive="true")", "a.c", false},
                    NameRow{"AWholeName", R"(pattern="Makefile")", "makefile", true},
                    NameRow{"AWholeNameIsNoEnding", R"(pattern="Makefile")", "a.makefile", false},
                    NameRow{"AWholeNameWhereCaseCounts", R"(pattern="core" case-sensitive="true")", "Core", false},
                    NameRow{"AStarInTheMiddle", R"(pattern="a*c")", "abbc", true},
                    NameRow{"AStarAtTheEnd", R"(pattern="README*")", "readme.first", true},
                    NameRow{"AStarAlone", R"(pattern="*")", "anything", true},
                    NameRow{"TwoStars", R"(pattern="**.b")", "a.b", true},
                    NameRow{"AQuestionMark", R"(pattern="*.?b")", "a.xb", true},
                    NameRow{"ASetBehindAStarIsAGlob", R"(pattern="*.[1-9]")", "a.b.3", true},
                    NameRow{"ASetBehindAStarCoversTheWholeName", R"(pattern="*.[1-9]")", "a.3b", false},
                    NameRow{"ASetWithoutAStarAheadIsFoundAnywhere", R"(pattern="[0-9][0-9][0-9].vdr")", "x123.vdr.old",
                            true},
                    NameRow{"ASetWithoutAStarAheadIsAnExpression", R"(pattern="[0-9][0-9][0-9].vdr")", "123?vdr", true},
                    NameRow{"ASetWithoutAStarAheadAndCase", R"(pattern="[a]b")", "xAB", true},
                    NameRow{"ALetterBeforeASetBindsToNoStart", R"(pattern="b[12]")", "ab2c", true},
                    NameRow{"AnExpressionThatIsBroken", R"(pattern="a[")", "a[", false},
                    NameRow{"ABrokenSetOfAGlob", R"(pattern="*[")", "a[", false},
                    NameRow{"BytesAboveAscii", R"(pattern="*.gr&#xFC;n")", "a.gr\xC3\xBCn", true},
                    NameRow{"NoCaseAboveAscii", R"(pattern="*.&#xFC;")", "a.\xC3\x9C", false},
                    NameRow{"ANulInTheName", R"(pattern="*.txt")", "a\0b.txt"s, true}),
    ruleName);

// ---- kinds of types -----------------------------------------------------------------------------

TEST(Kinds, ATypeIsAKindOfItselfOnlyIfItIsKnown)
{
    auto const database = databaseWith(R"(<mime-type type="x/a"/>)");
    EXPECT_TRUE(database->isMimeTypeEqualOrSubclassOf("x/a", "x/a"));
    EXPECT_FALSE(database->isMimeTypeEqualOrSubclassOf("x/b", "x/b"));
    EXPECT_FALSE(database->isMimeTypeEqualOrSubclassOf("", ""));
}

TEST(Kinds, AllKnownTextIsPlainText)
{
    auto const database = databaseWith(R"(<mime-type type="text/x-foo"/><mime-type type="x/text/"/>)");
    EXPECT_TRUE(database->isMimeTypeEqualOrSubclassOf("text/x-foo", "text/plain"));
    EXPECT_FALSE(database->isMimeTypeEqualOrSubclassOf("text/x-bar", "text/plain"));
    EXPECT_FALSE(database->isMimeTypeEqualOrSubclassOf("x/text/", "text/plain"));
}

TEST(Kinds, AllButInodesAreOctets)
{
    auto const database = databaseWith(R"(<mime-type type="x/a"/><mime-type type="inode/fifo"/>
        <mime-type type="inode/mount-point"><sub-class-of type="x/a"/></mime-type>)");
    EXPECT_TRUE(database->isMimeTypeEqualOrSubclassOf("x/a", "application/octet-stream"));
    EXPECT_FALSE(database->isMimeTypeEqualOrSubclassOf("inode/fifo", "application/octet-stream"));
    EXPECT_TRUE(database->isMimeTypeEqualOrSubclassOf("inode/mount-point", "application/octet-stream"));
}

TEST(Kinds, ParentsOfParentsCountIfTheyAreKnown)
{
    auto const database = databaseWith(R"(<mime-type type="x/a"><sub-class-of type=""/><sub-class-of type="x/b"/>
        </mime-type><mime-type type="x/b"><sub-class-of type="x/c"/></mime-type><mime-type type="x/c"/>
        <mime-type type="x/d"><sub-class-of type="x/unknown"/></mime-type>)");
    EXPECT_TRUE(database->isMimeTypeEqualOrSubclassOf("x/a", "x/c"));
    EXPECT_FALSE(database->isMimeTypeEqualOrSubclassOf("x/c", "x/a"));
    EXPECT_FALSE(database->isMimeTypeEqualOrSubclassOf("x/d", "x/unknown"));
}

TEST(Kinds, TheRecordsOfATypeAddUp)
{
    auto const database = databaseWith(R"(<mime-type type="x/a"/><mime-type type="x/b"/>
        <mime-type type="x/a"><sub-class-of type="x/b"/></mime-type>)");
    EXPECT_TRUE(database->isMimeTypeEqualOrSubclassOf("x/a", "x/b"));
}

TEST(Kinds, RingsEnd)
{
    auto const database = databaseWith(R"(<mime-type type="x/a"><sub-class-of type="x/b"/></mime-type>
        <mime-type type="x/b"><sub-class-of type="x/a"/></mime-type>)");
    EXPECT_TRUE(database->isMimeTypeEqualOrSubclassOf("x/a", "x/b"));
    EXPECT_FALSE(database->isMimeTypeEqualOrSubclassOf("x/a", "x/c"));
}

// ---- explanations -------------------------------------------------------------------------------

TEST(Explanation, ShowsAllThatFitsInTheOrderOfTheDatabase)
{
    auto const database = databaseWith(R"(
        <mime-type type="x/a"><glob pattern="*.c"/><glob pattern="a*"/><magic priority="1">
            <match type="byte" value="61" offset="0"/><match type="byte" value="7a" offset="0"/>
            <match type="byte" value="62" offset="1"/></magic></mime-type>
        <mime-type type="x/b"><glob pattern="*.b.c"/><magic><match type="byte" value="61" offset="0"/></magic>
        </mime-type>)");
    MimeTypeExplanation const why = database->explain(bytes("ab"), "a.b.c");
    std::string globs, magics;
    for (auto const& hit : why.globs)
        globs += hit.type->mimeType + ' ' + hit.glob->pattern + (hit.kept ? " kept;" : ";");
    for (auto const& hit : why.magics)
        magics += hit.type->mimeType + ' ' + std::to_string(hit.magic->priority) + ' ' + hit.match->value + ';';
    EXPECT_EQ("x/a *.c;x/a a*;x/b *.b.c kept;", globs);
    EXPECT_EQ("x/a 1 a;x/a 1 b;x/b 50 a;", magics);
    EXPECT_EQ("x/b", *why.mimeType);
}

// ---- reading the file ---------------------------------------------------------------------------

/// What the terminal would show of this.
template <class Work> std::string _standardError(Work work)
{
    testing::internal::CaptureStderr();
    work();
    return testing::internal::GetCapturedStderr();
}

struct BadFile {
    char const* rule;
    char const* text; // null: there is none
};

class UnreadableDatabase : public testing::TestWithParam<BadFile> {};

TEST_P(UnreadableDatabase, ThrowsAndStaysQuiet)
{
    auto const read = [] {
        if (GetParam().text) return databaseOf(GetParam().text);
        return std::make_unique<SharedMimeInfoImpl const>("/nowhere/database.xml");
    };
    std::string const shown = _standardError([&] {
        try {
            read();
            ADD_FAILURE() << "was read";
        } catch (Exception const& failure) {
            EXPECT_EQ("SharedMimeInfoImpl", failure.message());
            EXPECT_EQ(6, failure.code());
            EXPECT_EQ("SharedMimeInfo", failure.fileName());
            EXPECT_NE("", failure.stringParameter());
        }
    });
    EXPECT_EQ("", shown);
}

INSTANTIATE_TEST_SUITE_P(Files, UnreadableDatabase,
                         testing::Values(BadFile{"Missing", nullptr}, BadFile{"Empty", ""},
                                         BadFile{"NoXml", "[Globs]\n50:text/plain:*.txt\n"},
                                         BadFile{"NoRoot", "<?xml version=\"1.0\"?><!-- nothing -->"},
                                         BadFile{"CutOff", "<mime-info><mime-type type=\"x/a\"/>"},
                                         BadFile{"AnUnknownEntity", "<mime-info>&x;</mime-info>"}),
                         ruleName);

TEST(Database, CanBeReadFromMemory)
{
    SharedMimeInfoImpl const database(
        bytes(R"(<mime-info><mime-type type="x/a"><glob pattern="*.a"/></mime-type></mime-info>)"));
    EXPECT_EQ("x/a", database.mimeType(Buffer(), "b.a"));
    EXPECT_EQ((std::set<std::string>{"x/a"}), database.mimeTypeList());
}

TEST(Database, MemoryThatHoldsNoXmlIsRefusedLikeAFile)
{
    for (char const* text : {"", "[Globs]", "<mime-info>"})
        EXPECT_EQ("", _standardError([&] {
                      try {
                          SharedMimeInfoImpl const database(bytes(text));
                          ADD_FAILURE() << text << " was read";
                      } catch (Exception const& failure) {
                          EXPECT_EQ("SharedMimeInfoImpl", failure.message());
                          EXPECT_EQ(6, failure.code());
                          EXPECT_EQ(0u, failure.stringParameter().find("(memory): ")) << failure.stringParameter();
                      }
                  }));
}

TEST(Database, ADirectoryIsUnreadable)
{
    EXPECT_EQ("", _standardError([] { EXPECT_THROW(SharedMimeInfoImpl("/usr"), Exception); }));
}

TEST(Database, AnyRootWillDo)
{
    EXPECT_EQ("x/a", *databaseOf("<anything><mime-type type=\"x/a\"/></anything>")->mimeTypeList().begin());
    EXPECT_TRUE(databaseOf("<mime-info/>")->mimeTypeList().empty());
}

TEST(Database, LeavesTheErrorHandlerOfTheThreadAsItWas)
{
    auto const mine = [](void* count, xmlErrorPtr) { ++*static_cast<int*>(count); };
    int complaints = 0;
    xmlSetStructuredErrorFunc(&complaints, mine);
    EXPECT_THROW(databaseOf("<a>"), Exception);
    EXPECT_EQ(0, complaints);
    xmlFreeDoc(xmlReadMemory("<a>", 3, nullptr, nullptr, 0));
    EXPECT_GT(complaints, 0);
    xmlSetStructuredErrorFunc(nullptr, nullptr);
}

} // namespace
} // namespace Velmara
