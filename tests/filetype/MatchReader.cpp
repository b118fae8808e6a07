// What the reader makes of the elements of a type database, seen through the records.
#include <velmara/SharedMimeInfo.h>

#include <gtest/gtest.h>

#include "support/Rule.h"
#include "support/TypeDatabase.h"

namespace Velmara {
namespace {

using Match = SharedMimeType::Magic::Match;

std::string hex(std::string const& bytes)
{
    constexpr char digits[] = "0123456789abcdef";
    std::string text;
    for (char c : bytes) {
        text += digits[static_cast<unsigned char>(c) >> 4];
        text += digits[c & 15];
    }
    return text;
}

/// "type start:end value &mask (nested)", the value in hexadecimal digits.
std::string shape(Match const& match)
{
    std::string text = std::to_string(match.type) + ' ' + std::to_string(match.offsetStart) + ':' +
                       std::to_string(match.offsetEnd) + ' ' + hex(match.value);
    if (match.hasMask) text += " &" + match.mask;
    for (Match const& nested : match.matches) text += " (" + shape(nested) + ')';
    return text;
}

/// All tests of the one type, "; " between them.
std::string shape(SharedMimeInfoImpl const& database)
{
    std::string text;
    for (SharedMimeType const& type : database.types())
        for (SharedMimeType::Magic const& magic : type.magics)
            for (Match const& match : magic.matches) text += (text.empty() ? "" : "; ") + shape(match);
    return text;
}

auto typeWith(std::string const& elements)
{
    return databaseWith("<mime-type type=\"a/b\">" + elements + "</mime-type>");
}

auto magicWith(std::string const& elements)
{
    return typeWith("<magic>" + elements + "</magic>");
}

struct Row {
    char const* rule;
    char const* elements; // within <magic>
    char const* shape;
};

class MatchReader : public testing::TestWithParam<Row> {};

TEST_P(MatchReader, Reads)
{
    EXPECT_EQ(GetParam().shape, shape(*magicWith(GetParam().elements)));
}

INSTANTIATE_TEST_SUITE_P(
    Types, MatchReader,
    testing::Values(Row{"String", R"(<match type="string" value="ab" offset="0"/>)", "0 0:0 6162"},
                    Row{"Big16", R"(<match type="big16" value="0x1234" offset="0"/>)", "1 0:0 1234"},
                    Row{"Big32", R"(<match type="big32" value="0x12345678" offset="0"/>)", "2 0:0 12345678"},
                    Row{"Host16IsLittleEndian", R"(<match type="host16" value="0x1234" offset="0"/>)", "3 0:0 3412"},
                    Row{"Host32IsLittleEndian", R"(<match type="host32" value="0x12345678" offset="0"/>)",
                        "4 0:0 78563412"},
                    Row{"Little16", R"(<match type="little16" value="0x1234" offset="0"/>)", "5 0:0 3412"},
                    Row{"Little32", R"(<match type="little32" value="0x12345678" offset="0"/>)", "6 0:0 78563412"},
                    Row{"Byte", R"(<match type="byte" value="0x12" offset="0"/>)", "7 0:0 12"},
                    Row{"AnUnknownTypeDropsTheTest", R"(<match type="big64" value="1" offset="0"/>)", ""},
                    Row{"TypesKnowLetterCase", R"(<match type="String" value="1" offset="0"/>)", ""},
                    Row{"AMissingTypeDropsTheTest", R"(<match value="1" offset="0"/>)", ""},
                    Row{"AnotherElementIsNoTest", R"(<test type="string" value="1" offset="0"/>)", ""}),
    ruleName);

INSTANTIATE_TEST_SUITE_P(
    Numbers, MatchReader,
    testing::Values(
        Row{"AreHexadecimalWithoutPrefixToo", R"(<match type="big32" value="23" offset="0"/>)", "2 0:0 23"},
        Row{"AreNeverOctal", R"(<match type="big16" value="0777" offset="0"/>)", "1 0:0 0777"},
        Row{"AreAsLongAsTheirDigits", R"(<match type="big16" value="0x112233445566" offset="0"/>)",
            "1 0:0 112233445566"},
        Row{"OneDigitIsOneByte", R"(<match type="big32" value="0x7" offset="0"/>)", "2 0:0 07"},
        Row{"ALastSingleDigitIsAByte", R"(<match type="big32" value="0x123" offset="0"/>)", "2 0:0 1203"},
        Row{"ALastSingleDigitIsAByteAndComesFirstWhenReversed", R"(<match type="little32" value="0x123" offset="0"/>)",
            "6 0:0 0312"},
        Row{"ZeroBytesAreTheLetterX", R"(<match type="big32" value="0x00120000" offset="0"/>)", "2 0:0 58125858"},
        Row{"OneZeroDigitIsTheLetterX", R"(<match type="little16" value="0" offset="0"/>)", "5 0:0 58"},
        Row{"OnlyTheLowerCasePrefixIsCut", R"(<match type="big16" value="0X12" offset="0"/>)", "1 0:0 2112"},
        Row{"OnlyOnePrefixIsCut", R"(<match type="big16" value="0x0x12" offset="0"/>)", "1 0:0 2112"},
        Row{"OtherLowerCaseLettersCountOn", R"(<match type="big16" value="0x0g" offset="0"/>)", "1 0:0 10"},
        Row{"OtherUpperCaseLettersCountOn", R"(<match type="big16" value="0x0G" offset="0"/>)", "1 0:0 10"},
        Row{"OtherCharactersCountLikeUpperCase", R"(<match type="big16" value="0x1/" offset="0"/>)", "1 0:0 08"},
        Row{"SoDoThoseBehindTheLetters", R"(<match type="big16" value="0x1{" offset="0"/>)", "1 0:0 54"},
        Row{"HalvesAreAddedAndKeptTo8Bits", R"(<match type="big16" value="0xg1" offset="0"/>)", "1 0:0 01"},
        Row{"WhatCountsAsZeroIsTheLetterXToo", R"(<match type="big16" value="0xg0" offset="0"/>)", "1 0:0 58"},
        Row{"APrefixAloneIsNoByte", R"(<match type="big16" value="0x" offset="0"/>)", "1 0:0 "},
        Row{"AByteTakesTwoDigits", R"(<match type="byte" value="0x1234" offset="0"/>)", "7 0:0 12"},
        Row{"AByteOfOneDigit", R"(<match type="byte" value="5" offset="0"/>)", "7 0:0 05"},
        Row{"AByteOfZeroIsTheLetterX", R"(<match type="byte" value="0x0" offset="0"/>)", "7 0:0 58"},
        Row{"ADecimalByteIsHexadecimal", R"(<match type="byte" value="12" offset="0"/>)", "7 0:0 12"}),
    ruleName);

INSTANTIATE_TEST_SUITE_P(
    Texts, MatchReader,
    testing::Values(
        Row{"SignsStandForThemselves", R"(<match type="string" value="\&quot;\&amp;\\" offset="0"/>)", "0 0:0 22265c"},
        Row{"ControlCharacters", R"(<match type="string" value="\b\f\n\r\t\v" offset="0"/>)", "0 0:0 080c0a0d090b"},
        Row{"OctalOfOneToThreeDigits", R"(<match type="string" value="\0\12\1234" offset="0"/>)", "0 0:0 000a5334"},
        Row{"OctalEndsAtAnotherCharacter", R"(<match type="string" value="\18" offset="0"/>)", "0 0:0 0138"},
        Row{"OctalIsKeptTo8Bits", R"(<match type="string" value="\777" offset="0"/>)", "0 0:0 ff"},
        Row{"HexadecimalOfOneOrTwoDigits", R"(<match type="string" value="\x4\x4a\xfF0" offset="0"/>)",
            "0 0:0 044aff30"},
        Row{"AnXWithoutDigitsIsAnX", R"(<match type="string" value="\xg\x" offset="0"/>)", "0 0:0 786778"},
        Row{"AZeroStaysInAText", R"(<match type="string" value="a\x00b" offset="0"/>)", "0 0:0 610062"},
        Row{"ABackslashAtTheEndIsDropped", R"(<match type="string" value="ab\" offset="0"/>)", "0 0:0 6162"},
        Row{"ABackslashAloneIsAnEmptyText", R"(<match type="string" value="\" offset="0"/>)", "0 0:0 "},
        Row{"AnUnknownEscapeEndsTheReadingOfEscapes", R"(<match type="string" value="a\qb\n" offset="0"/>)",
            "0 0:0 6171625c6e"},
        Row{"ADigitAboveSevenIsAnUnknownEscape", R"(<match type="string" value="\8\n" offset="0"/>)", "0 0:0 385c6e"},
        Row{"NoPrefixIsCut", R"(<match type="string" value="0x12" offset="0"/>)", "0 0:0 30783132"}),
    ruleName);

INSTANTIATE_TEST_SUITE_P(
    Masks, MatchReader,
    testing::Values(
        Row{"LoseTheirPrefix", R"(<match type="big16" value="0x1234" mask="0xfff0" offset="0"/>)", "1 0:0 1234 &fff0"},
        Row{"NeedNoPrefix", R"(<match type="big16" value="0x1234" mask="fff0" offset="0"/>)", "1 0:0 1234 &fff0"},
        Row{"OfAPrefixAloneAreNone", R"(<match type="big16" value="0x1234" mask="0x" offset="0"/>)", "1 0:0 1234"},
        Row{"OfNoDigitsAreNone", R"(<match type="big16" value="0x1234" mask="" offset="0"/>)", "1 0:0 1234"},
        Row{"AreReversedForLittle16", R"(<match type="little16" value="1" mask="0xff00" offset="0"/>)",
            "5 0:0 01 &00ff"},
        Row{"AreReversedForLittle32", R"(<match type="little32" value="1" mask="0x11223344" offset="0"/>)",
            "6 0:0 01 &44332211"},
        Row{"AreReversedForHost16", R"(<match type="host16" value="1" mask="0xff00" offset="0"/>)", "3 0:0 01 &00ff"},
        Row{"AreReversedForHost32", R"(<match type="host32" value="1" mask="0x11223344" offset="0"/>)",
            "4 0:0 01 &44332211"},
        Row{"OfThreeDigitsReversed", R"(<match type="little16" value="1" mask="0x123" offset="0"/>)", "5 0:0 01 &312"},
        Row{"AreNotReversedForByte", R"(<match type="byte" value="1" mask="0x1122" offset="0"/>)", "7 0:0 01 &1122"},
        Row{"ApplyToAText", R"(<match type="string" value="abcd" mask="0xff00f0ff" offset="0"/>)",
            "0 0:0 61586064 &ff00f0ff"},
        Row{"CutALongerText", R"(<match type="string" value="abcd" mask="0xffff" offset="0"/>)", "0 0:0 6162 &ffff"},
        Row{"LongerThanTheTextAddNothing", R"(<match type="string" value="ab" mask="0xffffffff" offset="0"/>)",
            "0 0:0 6162 &ffffffff"},
        Row{"OfOneDigitEmptyTheText", R"(<match type="string" value="ab" mask="0xf" offset="0"/>)", "0 0:0  &f"},
        Row{"OtherCharactersCountAsZero", R"(<match type="string" value="ab" mask="0xffg8" offset="0"/>)",
            "0 0:0 6158 &ffg8"},
        Row{"DoNotChangeANumber", R"(<match type="big16" value="0x1234" mask="0xff00" offset="0"/>)",
            "1 0:0 1234 &ff00"}),
    ruleName);

INSTANTIATE_TEST_SUITE_P(
    Offsets, MatchReader,
    testing::Values(Row{"OneNumberIsStartAndEnd", R"(<match type="byte" value="1" offset="7"/>)", "7 7:7 01"},
                    Row{"TwoNumbers", R"(<match type="byte" value="1" offset="2:16"/>)", "7 2:16 01"},
                    Row{"AreDecimal", R"(<match type="byte" value="1" offset="010"/>)", "7 10:10 01"},
                    Row{"EndWhereTheDigitsEnd", R"(<match type="byte" value="1" offset="0x10"/>)", "7 0:0 01"},
                    Row{"AnEmptyTextIsZero", R"(<match type="byte" value="1" offset=""/>)", "7 0:0 01"},
                    Row{"ANegativeStartDropsTheTest", R"(<match type="byte" value="1" offset="-1"/>)", ""},
                    Row{"AStartBehindTheEndDropsTheTest", R"(<match type="byte" value="1" offset="3:2"/>)", ""},
                    Row{"AMissingEndIsZero", R"(<match type="byte" value="1" offset="3:"/>)", ""},
                    Row{"AMissingOffsetDropsTheTest", R"(<match type="byte" value="1"/>)", ""},
                    Row{"AMissingValueDropsTheTest", R"(<match type="byte" offset="0"/>)", ""},
                    Row{"AnEmptyValueDropsTheTest", R"(<match type="string" value="" offset="0"/>)", ""}),
    ruleName);

INSTANTIATE_TEST_SUITE_P(
    Nesting, MatchReader,
    testing::Values(
        Row{"NestedTestsBelongToTheirParent",
            R"(<match type="byte" value="1" offset="0"><match type="byte" value="2" offset="1">
               <match type="byte" value="3" offset="2"/></match><match type="byte" value="4" offset="1"/></match>)",
            "7 0:0 01 (7 1:1 02 (7 2:2 03)) (7 1:1 04)"},
        Row{"ARefusedChildLeavesItsParent",
            R"(<match type="byte" value="1" offset="0"><match type="nothing" value="2" offset="1"/></match>)",
            "7 0:0 01"},
        Row{"ARefusedParentTakesItsChildren",
            R"(<match type="byte" offset="0"><match type="byte" value="2" offset="1"/></match>)", ""},
        Row{"ARefusedTestLeavesItsSiblings",
            R"(<match type="byte" value="1" offset="0"/><match type="byte" value="2"/>
               <match type="byte" value="3" offset="0"/>)",
            "7 0:0 01; 7 0:0 03"},
        Row{"CommentsAndInstructionsAreNoTests",
            R"(<!-- c --><?match type="byte" value="1" offset="0"?>text<match type="byte" value="2" offset="0"/>)",
            "7 0:0 02"}),
    ruleName);

TEST(TypeReader, ATypeWithoutANameIsDropped)
{
    auto const database = databaseWith(R"(<mime-type><glob pattern="*.a"/></mime-type>
        <mime-type type=""><glob pattern="*.b"/></mime-type><mime-type type="x/c"/>)");
    EXPECT_EQ(std::set<std::string>{"x/c"}, database->mimeTypeList());
    ASSERT_EQ(1u, database->types().size());
}

TEST(TypeReader, OtherElementsCommentsAndInstructionsAreSkipped)
{
    auto const database = databaseWith(R"(text<!-- c --><?mime-type type="x/p"?><type type="x/a"/>
        <mime-type type="x/b"/>)");
    EXPECT_EQ(std::set<std::string>{"x/b"}, database->mimeTypeList());
}

TEST(TypeReader, ElementsGoByTheirLocalName)
{
    auto const database = databaseOf(R"(<q:any xmlns:q="urn:q"><q:mime-type q:type="x/b">
        <q:glob pattern="*.b"/></q:mime-type></q:any>)");
    ASSERT_EQ(1u, database->types().size());
    EXPECT_EQ(1u, database->types()[0].globs.size());
}

TEST(TypeReader, ATypeMayHaveSeveralRecords)
{
    auto const database = databaseWith(R"(<mime-type type="x/b"/><mime-type type="x/a"/><mime-type type="x/b"/>)");
    ASSERT_EQ(3u, database->types().size());
    EXPECT_EQ("x/b", database->types()[2].mimeType);
    EXPECT_EQ((std::set<std::string>{"x/a", "x/b"}), database->mimeTypeList());
}

TEST(TypeReader, ParentsAreCollectedInOrderOfTheirNames)
{
    auto const database = typeWith(R"(<sub-class-of type="x/b"/><sub-class-of/><sub-class-of type="x/a"/>)");
    EXPECT_EQ((std::set<std::string>{"x/a", "x/b"}), database->types()[0].subClassOf);
}

struct GlobRow {
    char const* rule;
    char const* element;
    char const* pattern;
    int weight;
    bool ignoreCase;
};

class GlobReader : public testing::TestWithParam<GlobRow> {};

TEST_P(GlobReader, Reads)
{
    auto const database = typeWith(GetParam().element);
    ASSERT_EQ(1u, database->types()[0].globs.size());
    SharedMimeType::GlobPattern const& glob = database->types()[0].globs[0];
    EXPECT_EQ(GetParam().pattern, glob.pattern);
    EXPECT_EQ(GetParam().weight, glob.weight);
    EXPECT_EQ(GetParam().ignoreCase, glob.ignoreCase);
}

INSTANTIATE_TEST_SUITE_P(
    Globs, GlobReader,
    testing::Values(GlobRow{"Defaults", R"(<glob pattern="*.a"/>)", "*.a", 50, true},
                    GlobRow{"Weight", R"(<glob pattern="*.a" weight="60"/>)", "*.a", 60, true},
                    GlobRow{"AnEmptyWeightIsZero", R"(<glob pattern="*.a" weight=""/>)", "*.a", 0, true},
                    GlobRow{"AWeightThatIsNoNumberIsZero", R"(<glob pattern="*.a" weight="x"/>)", "*.a", 0, true},
                    GlobRow{"ANegativeWeight", R"(<glob pattern="*.a" weight="-5x"/>)", "*.a", -5, true},
                    GlobRow{"CaseSensitive", R"(<glob pattern="*.C" case-sensitive="true"/>)", "*.C", 50, false},
                    GlobRow{"OnlyTheWordTrueMakesCaseCount", R"(<glob pattern="*.C" case-sensitive="TRUE"/>)", "*.C",
                            50, true},
                    GlobRow{"APatternThatIsMissingIsStoredEmpty", R"(<glob weight="7"/>)", "", 7, true}),
    ruleName);

TEST(MagicReader, PriorityIsFiftyUnlessGiven)
{
    auto const database = typeWith(R"(<magic/><magic priority="80"/><magic priority=""/><magic priority="-3"/>)");
    std::vector<int> priorities;
    for (SharedMimeType::Magic const& magic : database->types()[0].magics) priorities.push_back(magic.priority);
    EXPECT_EQ((std::vector<int>{50, 80, 0, -3}), priorities);
}

TEST(MagicReader, AMagicWithoutATestIsStored)
{
    auto const database = magicWith(R"(<match type="byte"/>)");
    ASSERT_EQ(1u, database->types()[0].magics.size());
    EXPECT_TRUE(database->types()[0].magics[0].matches.empty());
}

TEST(MagicReader, DeepNestingIsRead)
{
    std::string open, close;
    for (int depth = 0; depth < 250; ++depth) {
        open += R"(<match type="string" value="a" offset="0">)";
        close += "</match>";
    }
    auto const database = magicWith(open + close);
    Match const* match = &database->types()[0].magics[0].matches[0];
    int depth = 1;
    for (; !match->matches.empty(); ++depth) match = &match->matches[0];
    EXPECT_EQ(250, depth);
    EXPECT_EQ("a/b", database->mimeType(Buffer("aa", 2, true), ""));
}

} // namespace
} // namespace Velmara
