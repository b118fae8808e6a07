#include <velmara/htm_txt_hash.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <ctime>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "hash/Fragments.h"
#include "hash/PlainNormaliser.h"
#include "support/Rule.h"

namespace {

constexpr int html = 1;
constexpr int plainText = 2;

struct Result {
    std::string emitted; // what stood at out before the final step
    std::string extract;
};

Result normalised(std::string const& input, int mode, int capacity = 256)
{
    std::vector<char> out(static_cast<size_t>(capacity) + 1, '\x01');
    long written = -1;
    int const length =
        htm_txt_get_data(input.data(), static_cast<int>(input.size()), mode, out.data(), capacity, &written);
    EXPECT_EQ('\x01', out.back()) << "wrote past the capacity";
    Result result;
    result.extract.assign(out.data(), static_cast<size_t>(length));
    // The cuts leave at least 128 bytes and the filling ends there, so what was written still stands.
    result.emitted.assign(out.data(), static_cast<size_t>(written));
    return result;
}

// What of the input is written when it stands behind the two lines that are set aside.
std::string emitted(std::string const& input, int mode)
{
    return normalised("1st\n2nd\n" + input, mode).emitted;
}

std::string extract(std::string const& input, int mode)
{
    return normalised(input, mode).extract;
}

// Whether markup between two letters breaks the line: only then do both end in lines set aside.
bool breaksLine(std::string const& markup)
{
    std::string const result = normalised("a" + markup + "b\nc", html).emitted;
    EXPECT_TRUE(result == "c" || result.empty()) << markup << " gave " << result;
    return result == "c";
}

std::string bytes(char const* text, size_t n)
{
    return std::string(text, n);
}

std::string repeated(std::string const& text, size_t times)
{
    std::string all;
    all.reserve(text.size() * times);
    while (times-- > 0) all += text;
    return all;
}

std::string xs(size_t n)
{
    return std::string(n, 'x');
}

std::string reversed(std::string const& text)
{
    return std::string(text.rbegin(), text.rend());
}

TEST(TextExtract, OtherModesGiveNothingAndLeaveWrittenAlone)
{
    std::string const text = repeated("word ", 100);
    char out[256];
    for (int mode : {0, 3, -1, 17}) {
        long written = 4711;
        EXPECT_EQ(0, htm_txt_get_data(text.data(), static_cast<int>(text.size()), mode, out, 256, &written));
        EXPECT_EQ(4711, written);
    }
}

TEST(TextExtract, WrittenMayBeNull)
{
    std::string const text = "a\nb\n" + repeated("word ", 100);
    char out[256];
    EXPECT_EQ(256, htm_txt_get_data(text.data(), static_cast<int>(text.size()), plainText, out, 256, nullptr));
}

TEST(TextExtract, WrittenIsGivenAlsoWithoutAnExtract)
{
    char out[256];
    long written = -1;
    EXPECT_EQ(0, htm_txt_get_data("a\nb\ncde", 7, plainText, out, 256, &written));
    EXPECT_EQ(3, written);
}

TEST(TextExtract, NothingComesOfNothing)
{
    char out[256];
    for (int mode : {html, plainText})
        for (int length : {0, -1}) {
            long written = -1;
            EXPECT_EQ(0, htm_txt_get_data(nullptr, length, mode, out, 256, &written));
            EXPECT_EQ(0, written);
        }
}

TEST(TextExtract, SmallCapacityIsNeverPassedByTextNorByFilling)
{
    std::string const text = xs(100) + "\n" + xs(100) + "\n" + repeated("word ", 100);
    EXPECT_EQ(repeated("word", 25), normalised(text, plainText, 100).extract);
    EXPECT_EQ(xs(70), normalised(xs(100), plainText, 70).extract);
    EXPECT_EQ("", normalised(text, plainText, 0).extract);
    long written = -1;
    EXPECT_EQ(0, htm_txt_get_data(text.data(), 100, plainText, nullptr, -5, &written));
    EXPECT_EQ(0, written);
}

TEST(TextExtract, ScanStopsWhenTheOutputIsFull)
{
    Result const full = normalised("a\nb\n" + xs(256), plainText);
    EXPECT_EQ(xs(256), full.extract);
    EXPECT_EQ(xs(256), normalised("a\nb\n" + xs(300) + "\nmore\n", html).extract);
    EXPECT_EQ(256u, normalised("a\nb\n" + xs(300) + "\nmore\n", html).emitted.size());
}

TEST(TextExtract, EveryByteIsDroppedMappedOrPassed)
{
    std::string all, high;
    for (int c = 0; c < 256; ++c) {
        if (c != '\n') all += bytes(" ", 1) + static_cast<char>(c);
        if (c >= 0x80) high += static_cast<char>(c);
    }
    EXPECT_EQ(
        "\x1c\x1d\x1e\x1f#s%'()*+-./0123456789:;=?@abcdefghijklmnopqrstuvwxyz\\^_`abcdefghijklmnopqrstuvwxyzl~\x7f" +
            high,
        emitted(all, plainText));
}

TEST(TextExtract, DollarReadsAsSAndBarAsL)
{
    EXPECT_EQ("sale", emitted("$ALE", plainText));
    EXPECT_EQ("click", emitted("C|ICK", plainText));
}

TEST(TextExtract, ExclamationMarkIsNeverWritten)
{
    EXPECT_EQ("buynow", emitted("Buy! now!!!", plainText));
    EXPECT_EQ("buynow", emitted("Buy! now!!!", html));
}

TEST(TextExtract, UriBytesAreThoseOfTheList)
{
    std::string const marks = R"(;/?:@&=+$,[]\#-_.!~*'()%)";
    std::string const otherControls = "\t\n\r";
    for (int i = 0; i < 256; ++i) {
        char const c = static_cast<char>(i);
        bool const letterOrDigit = (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
        bool const control = i < 32 && otherControls.find(c) == std::string::npos;
        bool const inUri = letterOrDigit || control || marks.find(c) != std::string::npos;
        // Inside a URI "cde" is its end, and all goes; otherwise "a.b" and "cde" are two words.
        std::string const result = emitted(std::string("a.b") + c + "cde", plainText);
        EXPECT_EQ(inUri, result.empty()) << "byte " << i << " gave " << result;
        if (!inUri) {
            EXPECT_EQ("a.b", result.substr(0, 3)) << "byte " << i;
            EXPECT_EQ("cde", result.substr(result.size() - 3)) << "byte " << i;
        }
    }
}

struct Row {
    char const* rule;
    std::string input;
    std::string emitted;
};

class Words : public testing::TestWithParam<Row> {};
class HtmlRows : public testing::TestWithParam<Row> {};

TEST_P(Words, AreWrittenOrDropped)
{
    EXPECT_EQ(GetParam().emitted, emitted(GetParam().input, plainText));
}

TEST_P(Words, ReadTheSameInHtmlWithoutMarkup)
{
    EXPECT_EQ(GetParam().emitted, emitted(GetParam().input, html));
}

TEST(TextExtract, MarkupInPlainTextIsText)
{
    EXPECT_EQ("xby/blt;", emitted("x <b>y</b> &lt;", plainText));
}

TEST_P(HtmlRows, AreWrittenAsExpected)
{
    EXPECT_EQ(GetParam().emitted, emitted(GetParam().input, html));
}

INSTANTIATE_TEST_SUITE_P(
    Text, Words,
    testing::Values(
        Row{"HostNameGoesWithTheBlanksAroundIt", "see www.a.example now", "seenow"},
        Row{"LabelOfThreeLettersMakesAUri", "x a.bcd y", "xy"}, Row{"LabelOfTwoLettersDoesNot", "x ab.cd y", "xab.cdy"},
        Row{"ThreeLettersAheadOfTheDotMakeAUriToo", "x abc.d y", "xy"},
        Row{"LettersOfALabelNeedNotStandTogether", "x a1b2c.d y", "xy"}, Row{"ThirdLabelCounts", "x a.b.cde y", "xy"},
        Row{"AddressOfFourNumbersGoes", "x 10.0.0.1 y", "xy"}, Row{"TwoNumbersStay", "x 1.2 y", "x1.2y"},
        Row{"ThreeNumbersStay", "x 1.2.3 y", "x1.2.3y"},
        Row{"FiveNumbersGoBecauseLabelsAreCappedAtFour", "x 1.2.3.4.5 y", "xy"},
        Row{"LastLabelGathersTheDigitsOfAllBeyond", "x 1.2.3.4.5.6.7 y", "x1.2.3.4.5.6.7y"},
        Row{"NumberOfFourDigitsMakesText", "x 1.2.3.1234 y", "x1.2.3.1234y"},
        Row{"FirstNumberOfFourDigitsMakesText", "x 1234.1.1.1 y", "x1234.1.1.1y"},
        Row{"NumberOfThreeDigitsDoesNot", "x 255.255.255.255 y", "xy"},
        Row{"LetterMakesFourLabelsText", "x 1.2.c.4 y", "x1.2.c.4y"},
        Row{"EmptyLabelsCount", "x a.b..... y", "xa.b.....y"},
        Row{"EmptyLabelsMakeAnAddressOfTwoNumbers", "x 1.2... y", "xy"}, Row{"AbbreviationStays", "x e.g y", "xe.gy"},
        Row{"VersionStays", "x v1.2 y", "xv1.2y"},
        Row{"SchemeWithoutADotIsText", "x http://host/path y", "xhttp://host/pathy"},
        Row{"SchemeCountsAsPartOfTheFirstLabel", "x http://a.b y", "xy"},
        Row{"PathGoesWithTheHost", "x www.a.example/p?q=r&s#t y", "xy"},
        Row{"MailAddressGoes", "x joe@a.example y", "xy"}, Row{"DotBehindAWordStaysWithIt", "x abc. y", "xabc.y"},
        Row{"DotAtTheVeryEndStays", "x abc.", "xabc."}, Row{"TwoDotsAreText", "x abc..def y", "xabc..defy"},
        Row{"HyphenBehindTheDotEndsTheWord", "x abc.-def.ghi y", "xabc.-y"},
        Row{"PercentBehindTheDotGoesOn", "x abc.%20 y", "xy"}, Row{"AmpersandBehindTheDotGoesOn", "x abc.&d y", "xy"},
        Row{"NulBehindTheDotGoesOn", bytes("x abc.\0 y", 9), "xy"},
        Row{"WordMustStartWithALetterOrDigit", "x .com /path y", "x.com/pathy"},
        Row{"MarksAheadOfAWordAreText", "x (abc.de) y", "x(y"},
        Row{"HighByteEndsAWord", "x ab\xc3\xa4.def y", "xab\xc3\xa4.defy"},
        Row{"ByteThatEndsAUriIsStillTreated", "abc.de\x80x", "\x80x"},
        Row{"ByteThatEndsTextIsStillTreated", "ab\x80x", "ab\x80x"}, Row{"UriAtTheEndGoes", "x www.a.example", "x"},
        Row{"WordAtTheEndStays", "x word", "xword"}),
    Velmara::ruleName);

INSTANTIATE_TEST_SUITE_P(
    Entities, HtmlRows,
    testing::Values(
        Row{"LowerLt", "&lt;x", "x"}, Row{"UpperLt", "&LT;x", "x"}, Row{"LowerGt", "&gt;x", "x"},
        Row{"UpperGt", "&GT;x", "x"}, Row{"LowerAmp", "&amp;x", "x"}, Row{"UpperAmp", "&AMP;x", "x"},
        Row{"LowerQuot", "&quot;x", "x"}, Row{"UpperQuot", "&QUOT;x", "x"}, Row{"Nbsp", "&nbsp;x", "x"},
        Row{"Emsp", "&emsp;x", "x"}, Row{"Ensp", "&ensp;x", "x"},
        Row{"SemicolonMayBeMissing", "&ltx &gt.x &ampx &quotx &nbspx", "x.xxxx"},
        Row{"OnlyOneSemicolonIsTaken", "&lt;;x &nbsp;;x", ";x;x"},
        Row{"EmspAndEnspNeedTheirSemicolon", "&emsp x &ensp y", "emspxenspy"},
        Row{"EmspTakesNoSecondSemicolon", "&emsp;;x", ";x"},
        Row{"MixedCaseIsNoEntity", "&Lt;x &gT;x &Amp;x &QUot;x &NBSP;x &EMSP;x", "lt;xgt;xamp;xquot;xnbsp;xemsp;x"},
        Row{"NumericEntityLeavesItsDigits", "&#65;", "#65;"}, Row{"UnknownEntityIsText", "&eacute;", "eacute;"},
        Row{"CutEntityAtTheEndIsText", "x&am", "xam"}, Row{"LtAtTheVeryEnd", "x&lt", "x"},
        Row{"AmpAtTheVeryEnd", "x &amp", "x"}, Row{"NbspAtTheVeryEnd", "x&nbsp", "x"},
        Row{"EmspCutAheadOfItsSemicolon", "x &emsp", "xemsp"}, Row{"EmspAtTheVeryEnd", "x&emsp;", "x"},
        Row{"AmpersandAtTheVeryEnd", "x&", "x"}, Row{"EntityThatIsNoUriByteEndsAWord", "ww&lt;w.de", "www.de"},
        Row{"BlankEntityEndsAWord", "ww&nbsp;w.de", "www.de"}, Row{"QuoteEntityEndsAWord", "ww&quot;w.de", "www.de"},
        Row{"AmpDoesNotEndAWord", "ww&ampw.de", ""}, Row{"SemicolonBehindABareAmpersandIsText", "&;x", ";x"},
        Row{"BareAmpersandDoesNotEndAWord", "ww&w.de", ""},
        Row{"BytesOfAmpLieInTheWordButAreNotCounted", "a&amp;b.de", "aamp;b.de"},
        Row{"EntityBehindTheFirstDotEndsTheWord", "abc.&lt;d", "abc.d"},
        Row{"AmpBehindTheFirstDotGoesOn", "ab.&amp;d", "ab.amp;d"},
        Row{"AmpBehindTheFirstDotMayMakeAUri", "abc.&amp;d", ""}, Row{"EntityFurtherOnIsPartOfTheUri", "a.b&lt;c", ""}),
    Velmara::ruleName);

INSTANTIATE_TEST_SUITE_P(
    Tags, HtmlRows,
    testing::Values(
        Row{"TagLeavesNoTrace", "x<b>y</b>z", "xyz"}, Row{"TagEndsAWord", "ww<b>w.de", "www.de"},
        Row{"TagBehindTheFirstDotEndsTheWord", "abc.<b>de", "abc.de"},
        Row{"TagThatEndsAUriIsSwallowedAtItsFirstByte", "abc.de<BR>fg", "brfg"},
        Row{"AttributesGo", "x<a href=\"http://www.a.example/\">y", "xy"},
        Row{"QuotedGreaterThanEndsTheTag", "x<a title=\"b>c\">y", "xcy"},
        Row{"TagGoesOnAcrossLines", "x<a\nb\nc>y", "xy"}, Row{"EmptyClosingTagLeavesNoTrace", "x</>y", "xy"},
        Row{"LoneLessThanGoesAndItsNeighbourIsPlain", "x<1.2.3.4 y", "x1.2.3.4y"},
        Row{"NeighbourOfALoneLessThanIsNoPartOfAWord", "x <2www.de", "x2"},
        Row{"BlankBehindLessThanMakesItText", "x < b>y", "xby"}, Row{"TwoLessThansAreTakenTogether", "x<<b>y", "xby"},
        Row{"LessThanEndsAWord", "ww<1w.de", "ww1w.de"}, Row{"LessThanAtTheVeryEnd", "x<", "x"},
        Row{"UnclosedTagIsText", "x <cd ef", "xcdef"}, Row{"UnclosedTagWithoutWhiteSpaceIsText", "x <cdef", "xcdef"},
        Row{"UnclosedScriptIsText", "x <SCRIPT y z", "xscriptyz"},
        Row{"WordAheadOfAnUnclosedTagIsWrittenTwice", "ab<cd", "ababcd"},
        Row{"DottedWordAheadOfAnUnclosedTagIsWrittenTwice", "ab.<cd", "ab.ab.cd"},
        Row{"TextBehindAnUnclosedTagIsReadAsPlainText", "x <cd &lt; e", "xcdlt;e"},
        Row{"ScriptIsHidden", "x<SCRIPT>y</SCRIPT>z", "xz"}, Row{"StyleIsHidden", "x<style type=a>y</style>z", "xz"},
        Row{"TitleIsHidden", "x<TITLE>y</TITLE >z", "xz"},
        Row{"HiddenEntitiesAndUrisLeaveNoTrace", "x<STYLE>&#65; www.a.example a&b &lt</STYLE>y", "xy"},
        Row{"AnyHiddenElementEndsAnother", "x<SCRIPT>a<TITLE>b</STYLE>y", "xy"},
        Row{"HiddenToTheEnd", "x<SCRIPT>y", "x"}, Row{"HiddenLastBytes", "x<SCRIPT>y<", "x"},
        Row{"ByteBehindALoneLessThanIsWrittenEvenIfHidden", "x<SCRIPT>if (a<1) b</SCRIPT>y", "x1y"},
        Row{"TextBehindAHiddenUnclosedTagComesBack", "x<SCRIPT>hid<den text", "xdentext"},
        Row{"ClosingTagOfAHiddenElementAloneDoesNothing", "x</SCRIPT>y", "xy"}),
    Velmara::ruleName);

INSTANTIATE_TEST_SUITE_P(
    Comments, HtmlRows,
    testing::Values(Row{"CommentGoes", "x<!-- a > b -->y", "xy"},
                    Row{"CommentEndsAtTheFirstEnd", "x<!-- a --> b -->y", "xb--y"},
                    Row{"OpeningDashesCanEndIt", "x<!-->y", "xy"}, Row{"ThreeDashes", "x<!--->y", "xy"},
                    Row{"FourDashes", "x<!---->y", "xy"}, Row{"CommentSeparatesWords", "ww<!-- -->w.de", "www.de"},
                    Row{"DeclarationGoes", "x<!DOCTYPE html>y", "xy"},
                    Row{"DeclarationEndsAtTheFirstGreaterThan", "x<!ENTITY a \">\">y", "xy"},
                    Row{"EmptyDeclarationGoes", "x<!>y", "xy"}, Row{"OneDashIsADeclaration", "x<!- a>b -->y", "xb--y"},
                    Row{"UnclosedCommentEndsAtTheNextGreaterThan", "x<!-- a > b", "xb"},
                    Row{"UnclosedCommentsEachEndAtTheirGreaterThan", "x <!-- a <!-- b > c <!-- d > e", "xce"},
                    Row{"CommentInAHiddenElementHidesItsEnd", "x<SCRIPT><!-- </SCRIPT> -->y</SCRIPT>z", "xz"},
                    Row{"OpenWordBehindAnUnclosedDeclarationIsWrittenTwice", "x <!cd", "xcdcd"},
                    Row{"ClosedWordBehindAnUnclosedDeclarationIsWrittenOnce", "x <!cd ", "xcd"},
                    Row{"WordsOnBothSidesAreWrittenTwice", "ab<!cd", "ababcdcd"},
                    Row{"UnclosedCommentIsText", "x <!-- a", "x--aa"},
                    Row{"DashesAtTheVeryEndOpenNoComment", "x <!--", "x--"},
                    Row{"ShortestUnclosedComment", "x <!--y", "x--yy"}, Row{"BangAtTheVeryEnd", "x <!", "x"},
                    Row{"DottedWordBehindAnUnclosedDeclarationIsWrittenTwice", "x <!cd.", "xcd.cd."},
                    Row{"UriBehindAnUnclosedDeclarationGoes", "x <!www.a.example", "x"}),
    Velmara::ruleName);

struct TagRow {
    char const* name;
    bool opening, closing; // breaks the line
};

constexpr TagRow tagRows[] = {
    {"BLOCKQUOTE", true, true},
    {"CENTER", true, true},
    {"H1", true, true},
    {"H2", true, true},
    {"H3", true, true},
    {"H4", true, true},
    {"H5", true, true},
    {"H6", true, true},
    {"HR", true, false},
    {"BR", true, false},
    {"P", true, true},
    {"DL", true, true},
    {"DD", true, false},
    {"DT", true, false},
    {"DIR", true, true},
    {"LI", true, false},
    {"MENU", true, true},
    {"OL", true, true},
    {"UL", true, true},
    {"LISTING", true, true},
    {"PRE", true, true},
    {"MARQUEE", true, true},
    {"TABLE", true, true},
    {"TR", false, false},
    {"TD", false, false},
    {"SUB", false, false},
    {"SUP", false, false},
    {"TEXTAREA", true, true},
    {"IMG", false, false},
    {"FRAME", false, false},
    {"EMBED", false, false},
    {"TH", false, false},
    {"BODY", false, false},
    {"DIV", false, false},
    {"SPAN", false, false},
    {"A", false, false},
    {"BLOCKQUOT", false, false},
    {"BLOCKQUOTES", false, false},
    {"BXOCKQUOTE", false, false},
    {"H", false, false},
    {"H7", false, false},
};

TEST(TextExtractTags, BreakTheLineAsTheTableSays)
{
    for (TagRow const& row : tagRows) {
        std::string const name = row.name;
        EXPECT_EQ(row.opening, breaksLine("<" + name + ">")) << name;
        EXPECT_EQ(row.closing, breaksLine("</" + name + ">")) << name;
    }
}

TEST(TextExtractTags, HiddenOnesBreakNoLine)
{
    for (std::string const name : {"TITLE", "SCRIPT", "STYLE"}) {
        EXPECT_FALSE(breaksLine("<" + name + "></" + name + ">")) << name;
        EXPECT_FALSE(breaksLine("</" + name + ">")) << name;
    }
}

TEST(TextExtractTags, RowBreaksTheLineOnlyInATable)
{
    EXPECT_FALSE(breaksLine("<TR></TR>"));
    std::string const table = "<TABLE>a<TR>b\nc"; // the table's own break comes ahead of any character
    EXPECT_EQ("c", normalised(table, html).emitted);
    EXPECT_EQ("c", normalised("<TABLE>a</TR>b\nc", html).emitted);
    EXPECT_EQ("", normalised("<TABLE>a<TD>b\nc", html).emitted);
    EXPECT_EQ("", normalised("<TABLE></TABLE>a<TR>b\nc", html).emitted);
    EXPECT_EQ("", normalised("<TABLE><TABLE></TABLE>a<TR>b\nc", html).emitted);
}

TEST(TextExtractTags, HiddenTagsBreakNoLineAndOpenNoTable)
{
    EXPECT_FALSE(breaksLine("<STYLE><P><BR></P></STYLE>"));
    EXPECT_EQ("", normalised("<STYLE><TABLE></STYLE>a<TR>b\nc", html).emitted);
    EXPECT_EQ("c", normalised("<TABLE><STYLE></TABLE></STYLE>a<TR>b\nc", html).emitted);
}

TEST(TextExtractTags, NameEndsAtGreaterThanOrWhiteSpaceAlone)
{
    for (char const* tag :
         {"<BR>", "<br>", "<bR >", "<BR\tx>", "<BR\nx>", "<BR\vx>", "<BR\fx>", "<BR\rx>", "<BR /x=y>"})
        EXPECT_TRUE(breaksLine(tag)) << tag;
    for (char const* tag : {"<BR/>", "<BR;>", "<B>", "<BRR>", "<//P>", "</ P>", "<BR\x1f>", "<BR\xa0>"})
        EXPECT_FALSE(breaksLine(tag)) << tag;
    EXPECT_FALSE(breaksLine(bytes("<BR\0>", 5)));
}

TEST(TextExtractTags, LongNamesAreUnknown)
{
    EXPECT_FALSE(breaksLine("<BLOCKQUOTEX>"));
    EXPECT_FALSE(breaksLine("<" + repeated("P", 29) + ">"));
    EXPECT_FALSE(breaksLine("<" + repeated("BR", 50000) + ">"));
}

TEST(TextExtractTags, NameIsUpperCasedInAsciiAlone)
{
    EXPECT_TRUE(breaksLine("<bLoCkQuOtE>"));
    EXPECT_FALSE(breaksLine("<l\xc4\xb1>"));
}

TEST(TextExtractLines, FirstTwoLinesWithACharacterAreSetAside)
{
    EXPECT_EQ("three", normalised("one\ntwo\nthree", plainText).emitted);
    EXPECT_EQ("three", normalised("\n \n!\n one\n\n\r\n,\ntwo\n\n\nthree", plainText).emitted);
}

TEST(TextExtractLines, BlanksAndCarriageReturnsDoNotSplitThem)
{
    EXPECT_EQ("three", normalised("o n\te\rx\vy\fz\ntwo words\nthree", plainText).emitted);
}

TEST(TextExtractLines, FurtherLinesAreJoined)
{
    EXPECT_EQ("threefour", normalised("one\ntwo\nthree\n\n\nfour\n", plainText).emitted);
}

TEST(TextExtractLines, LineEndThatEndsAUriEndsTheLine)
{
    EXPECT_EQ("c", normalised("a www.a.example\nb www.a.example\nc", plainText).emitted);
    EXPECT_EQ("c", normalised("www.a.example\na\nb\nc", plainText).emitted) << "a line of a URI alone is empty";
}

TEST(TextExtractLines, LineSetAsideKeepsItsFirst128Bytes)
{
    std::string const first = std::string(128, 'a') + "bcd";
    EXPECT_EQ(std::string(128, 'a'), extract(first, plainText));
    EXPECT_EQ(std::string(128, 'a'), extract("x\n" + first, plainText));
    EXPECT_EQ("yz" + std::string(126, 'a'), extract("x\n" + std::string(126, 'a') + "zybcd", plainText));
}

std::string lines(std::vector<size_t> const& lengths)
{
    std::string text;
    char c = 'a';
    for (size_t length : lengths) text += std::string(length, c++) + "\n";
    return text;
}

std::string runs(std::vector<std::pair<size_t, char>> const& list)
{
    std::string text;
    for (auto const& run : list) text += std::string(run.first, run.second);
    return text;
}

TEST(TextExtractEnd, BelowSixtyFourBytesThereIsNone)
{
    EXPECT_EQ("", extract(lines({20, 20, 23}), plainText));
    EXPECT_EQ(runs({{24, 'c'}, {20, 'b'}, {20, 'a'}}), extract(lines({20, 20, 24}), plainText));
    EXPECT_EQ("", extract(lines({63}), plainText));
    EXPECT_EQ(64u, extract(lines({64}), plainText).size());
}

TEST(TextExtractEnd, FillsUpBackwardsWithTheSecondLineFirst)
{
    EXPECT_EQ("0123456789" + xs(60) + "zyxwv" + "edcba", extract("abcde\nvwxyz\n0123456789" + xs(60), plainText));
    EXPECT_EQ(repeated("ihgfedcba", 8), extract(repeated("abcdefghi", 8), plainText));
}

TEST(TextExtractEnd, FourLinesOfFortyKeepTheLastTwo)
{
    std::string const one = "abcdefghijklmnopqrstuvwxyz0123456789abcd",
                      two = "zyxwvutsrqponmlkjihgfedcba9876543210zyxw";
    std::string const four = runs({{40, 'c'}, {40, 'd'}});
    std::string const expected = four + reversed(two) + "dcba9876";
    EXPECT_EQ(128u, expected.size());
    EXPECT_EQ(expected,
              extract(one + "\n" + two + "\n" + std::string(40, 'c') + "\n" + std::string(40, 'd') + "\n", plainText));
}

TEST(TextExtractEnd, LastLineIsCutIf129BytesRemain)
{
    EXPECT_EQ(runs({{129, 'c'}}), extract(lines({1, 1, 129, 10}), plainText));
    EXPECT_EQ(runs({{128, 'c'}, {10, 'd'}}), extract(lines({1, 1, 128, 10}), plainText));
}

TEST(TextExtractEnd, LineBeforeItIsCutIfMoreThan128BytesRemain)
{
    EXPECT_EQ(runs({{129, 'c'}}), extract(lines({1, 1, 129, 20, 30}), plainText));
    EXPECT_EQ(runs({{128, 'c'}, {20, 'd'}}), extract(lines({1, 1, 128, 20, 30}), plainText));
}

TEST(TextExtractEnd, LengthOfTheLineBeforeIsCutEvenWhereTheLastLineStays)
{
    EXPECT_EQ(runs({{20, 'c'}, {10, 'd'}, {110, 'e'}}), extract(lines({1, 1, 20, 10, 120}), plainText));
}

TEST(TextExtractEnd, OnlyTheTwoLastLinesAreCut)
{
    EXPECT_EQ(runs({{50, 'c'}, {50, 'd'}, {50, 'e'}}), extract(lines({1, 1, 50, 50, 50, 20, 30}), plainText));
}

TEST(TextExtractEnd, OneLineIsNeverCut)
{
    EXPECT_EQ(runs({{200, 'c'}}), extract(lines({1, 1, 200}), plainText));
}

TEST(TextExtractEnd, LinesWithoutACharacterDoNotCount)
{
    EXPECT_EQ(runs({{129, 'c'}}), extract(lines({1, 1, 129, 10}) + "\n \n!\nwww.a.example\n", plainText));
}

TEST(TextExtractEnd, FullOutputIsCutLikeAnyOther)
{
    EXPECT_EQ(runs({{150, 'c'}}), extract(lines({1, 1, 150, 50, 100}), plainText));
}

TEST(TextExtractEnd, TagsMakeLinesToo)
{
    EXPECT_EQ(runs({{129, 'c'}}), extract("a<BR>b<P>" + std::string(129, 'c') + "<LI>dd<HR>ee</P>", html));
}

// The input at the end of a block of its own, where a sanitizer sees a read behind it.
Result atTheEndOfABlock(std::string const& input, int mode)
{
    std::unique_ptr<char[]> block(new char[input.size()]);
    std::memcpy(block.get(), input.data(), input.size());
    char out[256];
    long written = 0;
    int const length = htm_txt_get_data(block.get(), static_cast<int>(input.size()), mode, out, 256, &written);
    return {std::string(out, static_cast<size_t>(written)), std::string(out, static_cast<size_t>(length))};
}

TEST(TextExtractInput, BytesBehindTheEndDoNotMatter)
{
    std::string const heads[] = {"", "1\n2\nab", "1\n2\nab.", "1\n2\nab.c", "1\n2\n<SCRIPT>ab"};
    std::string const tails[] = {"<",    "</",    "<!",    "<!-",    "<!--",   "<!---", "<!-- -", "<!-- --", "<BR",
                                 "<BR ", "</BR",  "&",     "&l",     "&lt",    "&am",   "&amp",   "&quo",    "&quot",
                                 "&nbs", "&nbsp", "&emsp", "&emsp;", "www.",   "a.b",   "<b ",    "<b x=",   "a",
                                 "\n",   "<!x",   "&e",    "&n",     "10.0.0", "<1"};
    for (std::string const& head : heads)
        for (std::string const& tail : tails) {
            std::string const input = head + tail;
            std::string const expected = atTheEndOfABlock(input, html).emitted;
            for (char const* behind : {">", "-->", ";", "a", " ", "t;", "--", "."}) {
                std::string const longer = input + behind;
                char out[256];
                long written = 0;
                htm_txt_get_data(longer.data(), static_cast<int>(input.size()), html, out, 256, &written);
                EXPECT_EQ(expected, std::string(out, static_cast<size_t>(written))) << input << " ahead of " << behind;
            }
        }
}

TEST(TextExtractInput, AgreesWithThePlainReadingOnGeneratedText)
{
    std::mt19937 random(20240229);
    for (int i = 0; i < 50000; ++i) {
        std::vector<unsigned char> picks(random() % (i % 20 == 0 ? 800 : 100));
        for (unsigned char& pick : picks) pick = static_cast<unsigned char>(random());
        std::string const lead = i % 4 == 0 ? "" : "1st\n2nd\n"; // all behind it is written
        std::string const text = lead + textOfFragments(picks.data(), picks.size());
        for (int mode : {html, plainText}) {
            long written = -1;
            std::string const expected = PlainNormaliser::extract(text, mode, 256, written);
            Result const result = atTheEndOfABlock(text, mode);
            ASSERT_EQ(expected, result.extract) << "mode " << mode << ": " << text;
            ASSERT_EQ(written, static_cast<long>(result.emitted.size())) << "mode " << mode << ": " << text;
        }
    }
}

double secondsFor(std::string const& input, int mode)
{
    std::clock_t const start = std::clock();
    normalised(input, mode);
    return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

TEST(TextExtractInput, FloodsOf150KilobytesCostOnePass)
{
    std::string const units[] = {"<!--", "<!-- >", "<!---->", "<",        "<<",         "<a",     "<a ", "<a>",
                                 "</",   "<!",     "<!>",     "&",        "&lt;",       "&amp;a", ".",   "a.",
                                 "a.b ", "1.",     "a",       "-",        "--",         "->",     ">",   "-->",
                                 " ",    "\n",     "a.&",     "<SCRIPT>", "<SCRIPT><a", "a<!"};
    for (std::string const& unit : units)
        for (char const* head : {"", "<!--"})
            for (int mode : {html, plainText})
                EXPECT_LT(secondsFor(head + repeated(unit, 150000 / unit.size()), mode), 1) << "a flood of " << unit;
}

// A search that is made again at each byte takes hours here.
TEST(TextExtractInput, FloodsOf15MegabytesCostOnePass)
{
    for (std::string const unit : {"<!--", "<", ".", "a.", "a&amp;", "<a ", "a<!"})
        EXPECT_LT(secondsFor(repeated(unit, 15000000 / unit.size()), html), 20) << "a flood of " << unit;
}

} // namespace
