#include <velmara/Rfc822MsgParser.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>

#include <unistd.h>

#include <velmara/ContentType.h>

#include "support/HeaderText.h"
#include "support/Rule.h"
#include "support/Shape.h"

namespace Velmara {
namespace {

std::string multipart(std::string const& boundary, std::string const& text)
{
    return "Content-Type: multipart/mixed; boundary=" + boundary + "\n\n" + text;
}

// Trees. Each row runs with LF and with CR LF.

struct TreeRow {
    char const* rule;
    std::string mail, expected;
};

class Trees : public testing::TestWithParam<TreeRow> {};

TEST_P(Trees, WithLf)
{
    EXPECT_EQ(GetParam().expected, contents(GetParam().mail));
}

TEST_P(Trees, WithCrLf)
{
    EXPECT_EQ(withCrLf(GetParam().expected), contents(withCrLf(GetParam().mail)));
}

TEST_P(Trees, FromASourceOfSingleBytes)
{
    EXPECT_EQ(GetParam().expected, contents(Mail(bytewise(GetParam().mail)).root()));
    EXPECT_EQ(shape(GetParam().mail), shape(Mail(bytewise(GetParam().mail)).root()));
}

INSTANTIATE_TEST_SUITE_P(
    Leaves, Trees,
    testing::Values(
        TreeRow{"TextBehindTheEmptyLineIsTheBody", "A: 1\n\ntext\n", "leaf[text\n]"},
        TreeRow{"NoInputIsALeaf", "", "leaf[]"}, TreeRow{"ALastLineNeedsNoLineEnd", "A: 1\n\ntext", "leaf[text]"},
        TreeRow{"WithoutEmptyLineTheFirstLineThatIsNoHeaderStartsTheBody", "A: 1\nno header\nmore\n",
                "leaf[no header\nmore\n]"},
        TreeRow{"WithoutHeadersAllIsBody", "no header\nmore\n", "leaf[no header\nmore\n]"},
        TreeRow{"AnEmptyFirstLineIsAnEmptyHeaderBlock", "\nA: 1\n", "leaf[A: 1\n]"},
        TreeRow{"AMailboxSeparatorInFrontMakesAllOfItBody", "From x@a.example Mon\nA: 1\n\ntext\n",
                "leaf[From x@a.example Mon\nA: 1\n\ntext\n]"},
        TreeRow{"ABlankBeforeTheColonEndsTheHeaderBlock", "A: 1\nB : 2\n\ntext\n", "leaf[B : 2\n\ntext\n]"},
        TreeRow{"ATabBeforeTheColonEndsTheHeaderBlock", "A: 1\nB\t: 2\n\ntext\n", "leaf[B\t: 2\n\ntext\n]"},
        TreeRow{"AColonAtTheStartEndsTheHeaderBlock", "A: 1\n: 2\n\ntext\n", "leaf[: 2\n\ntext\n]"},
        TreeRow{"ALineOfWhiteSpaceBehindAHeaderIsPartOfTheBlock", "A: 1\n \t\nB: 2\n\ntext\n", "leaf[text\n]"},
        TreeRow{"ALineOfWhiteSpaceBeforeAnyHeaderEndsTheBlock", " \t\nA: 1\n\ntext\n", "leaf[A: 1\n\ntext\n]"},
        TreeRow{"InputThatEndsInTheHeaderBlockHasAnEmptyBody", "A: 1\nB: 2", "leaf[]"},
        TreeRow{"AMultipartWithoutBoundaryIsALeaf", "Content-Type: multipart/mixed\n\n--b\ntext\n",
                "leaf[--b\ntext\n]"},
        TreeRow{"AMultipartWithAnEmptyBoundaryIsALeaf", "Content-Type: multipart/mixed; boundary=\"\"\n\n--\ntext\n",
                "leaf[--\ntext\n]"},
        TreeRow{"AnUnknownTypeIsALeaf", "Content-Type: x/y; boundary=b\n\n--b\n", "leaf[--b\n]"}),
    ruleName);

INSTANTIATE_TEST_SUITE_P(
    Multiparts, Trees,
    testing::Values(TreeRow{"TextAroundTheChildrenIsKept",
                            multipart("b", "before\n--b\nA: 1\n\none\n--b\n\ntwo\n--b--\nbehind\n"),
                            "multipart(preamble[before\n] leaf[one\n] leaf[two\n] epilogue[behind\n])"},
                    TreeRow{"AnEmptyPreambleIsAChild", multipart("b", "--b\n\none\n--b--\n"),
                            "multipart(preamble[] leaf[one\n] epilogue[])"},
                    TreeRow{"WithoutClosingDelimiterThereIsNoEpilogue", multipart("b", "--b\n\none\n--b\n\ntwo\n"),
                            "multipart(preamble[] leaf[one\n] leaf[two\n])"},
                    TreeRow{"ABoundaryThatNeverComesLeavesOnePreamble", multipart("b", "one\ntwo\n"),
                            "multipart(preamble[one\ntwo\n])"},
                    TreeRow{"NothingBehindTheHeadersIsAnEmptyPreamble", multipart("b", ""), "multipart(preamble[])"},
                    TreeRow{"AClosingDelimiterAloneLeavesNoParts", multipart("b", "before\n--b--\nbehind\n"),
                            "multipart(preamble[before\n] epilogue[behind\n])"},
                    TreeRow{"TheInputMayEndBehindADelimiter", multipart("b", "--b\n\none\n--b"),
                            "multipart(preamble[] leaf[one\n] leaf[])"},
                    TreeRow{"DelimitersBehindTheClosingOneAreText", multipart("b", "--b--\n--b\n\none\n"),
                            "multipart(preamble[] epilogue[--b\n\none\n])"},
                    TreeRow{"AQuotedBoundaryIsTakenWhole",
                            "Content-Type: multipart/mixed; boundary=\"a;b\"\n\n--a;b\n\none\n--a;b--\n",
                            "multipart(preamble[] leaf[one\n] epilogue[])"},
                    TreeRow{"TheTypeMayBeInAnyCase", "CONTENT-TYPE: MULTIPART/MIXED; BOUNDARY=b\n\n--b\n\none\n",
                            "multipart(preamble[] leaf[one\n])"},
                    TreeRow{"ItsOwnDelimiterDirectlyBehindTheHeadersIsText",
                            "Content-Type: multipart/mixed; boundary=b\n--b\n\none\n--b\n\ntwo\n--b--\n",
                            "multipart(preamble[--b\n\none\n] leaf[two\n] epilogue[])"},
                    TreeRow{"ALeafWhoseHeadersADelimiterEndsHasWhatFollows",
                            multipart("b", "--b\nA: 1\n--b\nB: 2\n\ntwo\n--b--\n"),
                            "multipart(preamble[] leaf[B: 2\n\ntwo\n] epilogue[])"},
                    TreeRow{"ALeafWhoseHeadersTheClosingDelimiterEndsHasWhatFollows",
                            multipart("b", "--b\nA: 1\n--b--\nbehind\n"), "multipart(preamble[] leaf[behind\n])"}),
    ruleName);

INSTANTIATE_TEST_SUITE_P(
    Delimiters, Trees,
    testing::Values(
        TreeRow{"TextBehindADelimiterIsDropped", multipart("b", "--b and more\n\none\n--b-- x\nbehind\n"),
                "multipart(preamble[] leaf[one\n] epilogue[behind\n])"},
        TreeRow{"ALongerWordBeginsWithTheDelimiter", multipart("abc", "--abcd\n\none\n"),
                "multipart(preamble[] leaf[one\n])"},
        TreeRow{"AnotherWordIsText", multipart("abc", "--abc\n\none\n--abd\n--ab\n"),
                "multipart(preamble[] leaf[one\n--abd\n--ab\n])"},
        TreeRow{"TheClosingDelimiterIsAPrefixToo", multipart("abc", "--abc--trailing\nbehind\n"),
                "multipart(preamble[] epilogue[behind\n])"},
        TreeRow{"OneHyphenBehindItDoesNotClose", multipart("b", "--b-\n\none\n"), "multipart(preamble[] leaf[one\n])"},
        TreeRow{"TwoHyphensAreText", multipart("b", "--b\n\n--\n--"), "multipart(preamble[] leaf[--\n--])"},
        TreeRow{"ADelimiterStartsAtTheStartOfALine", multipart("b", " --b\n--b\n\nx--b\n"),
                "multipart(preamble[ --b\n] leaf[x--b\n])"},
        TreeRow{"CaseCounts", multipart("b", "--B\n--b\n\none\n"), "multipart(preamble[--B\n] leaf[one\n])"}),
    ruleName);

INSTANTIATE_TEST_SUITE_P(
    Nesting, Trees,
    testing::Values(
        TreeRow{"InnerAndOuterPartsEnd",
                multipart("o", "--o\n" + multipart("i", "--i\n\none\n--i--\nbehind i\n--o\n\ntwo\n--o--\n")),
                "multipart(preamble[] multipart(preamble[] leaf[one\n] epilogue[behind i\n]) leaf[two\n] epilogue[])"},
        TreeRow{"AnOuterDelimiterEndsTheInnerPart",
                multipart("o", "--o\n" + multipart("i", "--i\n\none\n--o\n\ntwo\n--o--\n")),
                "multipart(preamble[] multipart(preamble[] leaf[one\n]) leaf[two\n] epilogue[])"},
        TreeRow{"AnOuterClosingDelimiterEndsTheInnerPart",
                multipart("o", "--o\n" + multipart("i", "--i\n\none\n--o--\nbehind\n")),
                "multipart(preamble[] multipart(preamble[] leaf[one\n]) epilogue[behind\n])"},
        TreeRow{"AnOuterDelimiterEndsAnInnerPreamble", multipart("o", "--o\n" + multipart("i", "text\n--o\n\ntwo\n")),
                "multipart(preamble[] multipart(preamble[text\n]) leaf[two\n])"},
        TreeRow{"OfTwoThatMatchTheInnerCounts",
                multipart("a", "--a\n" + multipart("ab", "--ab\n\none\n--ab--\n--a--\n")),
                "multipart(preamble[] multipart(preamble[] leaf[one\n] epilogue[]) epilogue[])"},
        TreeRow{"AnInnerPrefixOfTheOuterDelimiterCounts",
                multipart("ab", "--ab\n" + multipart("a", "--ab\n\none\n--ab--\n")),
                "multipart(preamble[] multipart(preamble[] leaf[one\n] leaf[]))"},
        TreeRow{"EqualBoundariesAreTheInnerOnes",
                multipart("b", "--b\n" + multipart("b", "--b\n\none\n--b--\nbehind\n--b--\nrest\n")),
                "multipart(preamble[] multipart(preamble[] leaf[one\n] epilogue[behind\n]) epilogue[rest\n])"},
        TreeRow{"AnOuterDelimiterThatEndsTheHeadersLeavesNoPreamble",
                multipart("o", "--o\nContent-Type: multipart/mixed; boundary=i\n--o\nA: 1\n\none\n--o--\n"),
                "multipart(preamble[] multipart(leaf[one\n]) epilogue[])"},
        TreeRow{"AnOuterClosingDelimiterThatEndsTheHeadersIsTheInnerOnesOwn",
                multipart("o", "--o\nContent-Type: multipart/mixed; boundary=i\n--o--\nbehind\n"),
                "multipart(preamble[] multipart(epilogue[behind\n]))"},
        TreeRow{"ThreeLevelsEndAtOnce",
                multipart("o", "--o\n" + multipart("m", "--m\n" + multipart("i", "--i\n\none\n--o\n\ntwo\n"))),
                "multipart(preamble[] multipart(preamble[] multipart(preamble[] leaf[one\n])) leaf[two\n])"}),
    ruleName);

/// Of which none is a delimiter.
std::string const twentyLines = [] {
    std::string lines;
    for (char c = 'c'; c < 'c' + 20; ++c) lines.append("--").append(1, c).append("\n");
    return lines;
}();

INSTANTIATE_TEST_SUITE_P(
    Messages, Trees,
    testing::Values(
        TreeRow{"AMessageHoldsAnother", "Content-Type: message/rfc822\n\nA: 1\n\ntext\n", "message(leaf[text\n])"},
        TreeRow{"AnySubtypeDoes", "Content-Type: message/delivery-status\n\nA: 1\n\ntext\n", "message(leaf[text\n])"},
        TreeRow{"AMultipartMayBeNested", "Content-Type: message/rfc822\n\n" + multipart("b", "--b\n\none\n--b--\n"),
                "message(multipart(preamble[] leaf[one\n] epilogue[]))"},
        TreeRow{"AnOuterDelimiterEndsIt",
                multipart("b", "--b\nContent-Type: message/rfc822\n\nA: 1\n\none\n--b\n\ntwo\n--b--\n"),
                "multipart(preamble[] message(leaf[one\n]) leaf[two\n] epilogue[])"},
        TreeRow{"ManyLinesLikeDelimitersEndNothingInIt",
                multipart("b", "--b\nContent-Type: message/rfc822\n\nA: 1\n\n" + twentyLines + "--b\n\ntwo\n--b--\n"),
                "multipart(preamble[] message(leaf[" + twentyLines + "]) leaf[two\n] epilogue[])"},
        TreeRow{"NothingBehindTheHeadersIsAnEmptyLeaf", "Content-Type: message/rfc822\n\n", "message(leaf[])"},
        TreeRow{"ALineThatIsNoHeaderGoesToTheNestedBody", "Content-Type: message/rfc822\nno header\nmore\n",
                "message(leaf[no header\nmore\n])"},
        TreeRow{"AnOuterDelimiterThatEndsItsHeadersStartsTheNestedOnes",
                multipart("b", "--b\nContent-Type: message/rfc822\n--b\nA: 1\n\none\n--b--\n"),
                "multipart(preamble[] message(leaf[one\n]) epilogue[])"},
        TreeRow{"ADigestsPartWithoutATypeIsALeaf",
                "Content-Type: multipart/digest; boundary=b\n\n--b\n\nA: 1\n\none\n--b--\n",
                "multipart(preamble[] leaf[A: 1\n\none\n] epilogue[])"},
        TreeRow{
            "ADigestsPartWithATypeIsWhatItSays",
            "Content-Type: multipart/digest; boundary=b\n\n--b\nContent-Type: message/rfc822\n\nA: 1\n\none\n--b--\n",
            "multipart(preamble[] message(leaf[one\n]) epilogue[])"}),
    ruleName);

TEST(Rfc822MsgParser, ALeafThatNobodyReadRunsOutBeforeTheNextHeadersAreRead)
{
    // A delimiter ended the first leaf's headers, so the next step already has its sign to go on. Only
    // then the live body is run out, and the closing delimiter behind it is forgotten.
    EXPECT_EQ("multipart(preamble leaf leaf)", shape(multipart("b", "--b\nA: 1\n--b\nB: 2\n\ntwo\n--b--\n")));
    EXPECT_EQ("multipart(preamble leaf epilogue)", shape(multipart("b", "--b\nA: 1\n--b--\nbehind\n")));
}

TEST(Rfc822MsgParser, AClosingDelimiterThatEndsALeafsHeadersClosesWhatIsOpenByThen)
{
    // The inner epilogue starts only behind the outer delimiter, up to which the leaf is run out. What
    // is closed is the container then on top: the outer one.
    std::string const mail =
        multipart("o", "--o\n" + multipart("i", "--i\nA: 1\n--i--\nleaf\n--o\nB: 2\n\ntwo\n--o--\n"));
    EXPECT_EQ("multipart(preamble multipart(preamble leaf epilogue))", shape(mail));
}

TEST(Digest, TheCheckGivesAnEntityWithoutATypeTheDefault)
{
    BufferMediaIn in(std::string("Content-Type: multipart/digest; boundary=b\n\n--b\n"));
    Rfc822MsgParser parser(in, 100);
    HeaderContainer outside, untyped, typed;
    typed.add(Header("Content-Type", "text/plain"), false);
    parser.sanityCheck(outside);
    Ref<MimePart> const digest(parser.createRfc822Msg(), false);
    parser.sanityCheck(untyped);
    parser.sanityCheck(typed);
    EXPECT_TRUE(outside.headers().empty()); // no container is open yet
    ASSERT_EQ(1u, untyped.headers().size());
    EXPECT_EQ("Content-Type: message/rfc822", untyped.find("Content-Type").value());
    ASSERT_EQ(1u, typed.headers().size());
    EXPECT_EQ("text/plain", typed.find("Content-Type").value());
}

TEST(Rfc822MsgParser, ADigestsPartWithoutATypeShowsTheAddedHeader)
{
    Mail mail("Content-Type: multipart/digest; boundary=b\n\n--b\nA: 1\n\none\n--b--\n");
    HeaderContainer& headers = mail.child(1).headers();
    EXPECT_EQ("A[1] Content-Type[Content-Type: message/rfc822]", shown(headers.headers()));
    EXPECT_EQ("Content-Type: Content-Type: message/rfc822", headers.headers().back().asString());
    ContentType const type(headers.find(ContentType::htype));
    EXPECT_EQ("content-type: message", type.mediatypeAsString());
    EXPECT_EQ(ContentType::MediaTypeUnknown, type.mediatype());
}

TEST(Rfc822MsgParser, OnlyADirectPartOfADigestGetsTheHeader)
{
    Mail mail("Content-Type: multipart/digest; boundary=o\n\n--o\n" + multipart("i", "--i\nA: 1\n\none\n--i--\n"));
    auto& inner = dynamic_cast<MimeRfc822MPart&>(**(mail.multipart().firstChild(), mail.multipart().nextChild()));
    inner.firstChild();
    EXPECT_EQ("A[1]", shown(inner.nextChild()->headers().headers()));
}

TEST(Rfc822MsgParser, ReadingTheTypeLeavesTheStoredHeaderAlone)
{
    Mail mail("Content-Type: text/plain\n\n");
    EXPECT_EQ("text/plain", mail.root().headers().find("Content-Type").value());
}

// Depth.

std::string numbered(size_t level)
{
    return "level-" + std::to_string(1000 + level);
}

std::string nestedMultiparts(size_t levels)
{
    std::string mail;
    for (size_t i = 0; i < levels; ++i) mail += multipart(numbered(i), "--" + numbered(i) + "\n");
    return mail + "\ntext\n";
}

std::string repeated(size_t n, std::string const& text)
{
    std::string all;
    while (n-- > 0) all += text;
    return all;
}

TEST(Rfc822MsgParser, AHundredLevelsAreEntered)
{
    EXPECT_EQ(repeated(100, "multipart(preamble ") + "leaf" + std::string(100, ')'), shape(nestedMultiparts(100)));
    std::string const messages = repeated(100, "Content-Type: message/rfc822\n\n");
    EXPECT_EQ(repeated(100, "message(") + "leaf" + std::string(100, ')'), shape(messages + "\ntext\n"));
}

TEST(Rfc822MsgParser, TheNextLevelIsSkipped)
{
    EXPECT_EQ(repeated(100, "multipart(preamble ") + "skipped" + std::string(100, ')'), shape(nestedMultiparts(101)));
    std::string const messages = repeated(101, "Content-Type: message/rfc822\n\n");
    EXPECT_EQ(repeated(100, "message(") + "skipped" + std::string(100, ')'), shape(messages + "\ntext\n"));
}

TEST(Rfc822MsgParser, ASkippedPartHoldsItsTextUpToADelimiterOfAnOpenLevel)
{
    std::string const mail = multipart("o", "--o\n" + multipart("i", "--i\n\none\n--i--\n--o\n\ntwo\n--o--\n"));
    BufferMediaIn in(mail);
    Rfc822MsgParser parser(in, 1);
    Ref<MimePart> root(parser.createRfc822Msg(), false);
    EXPECT_EQ("multipart(preamble[] skipped[--i\n\none\n--i--\n] leaf[two\n] epilogue[])", contents(**root));
}

TEST(Rfc822MsgParser, AtTheLimitAMultipartIsSkippedWhateverItsBoundary)
{
    BufferMediaIn in(std::string("Content-Type: multipart/mixed\n\ntext\n"));
    Rfc822MsgParser parser(in, 0);
    Ref<MimePart> root(parser.createRfc822Msg(), false);
    EXPECT_EQ("skipped[text\n]", contents(**root));
}

TEST(Rfc822MsgParser, ATreeStaysAHundredDeepHoweverItIsWalked)
{
    // Parsing a level to its end before its messages are entered closes them, and each then finds the
    // next multipart of the outer level.
    std::string mail = "Content-Type: multipart/mixed; boundary=o\n\n";
    for (size_t i = 0; i < 300; ++i)
        mail += "--o\n" + multipart(numbered(i),
                                    "--" + numbered(i) + "\nContent-Type: message/rfc822\n\n--" + numbered(i) + "--\n");
    Mail message(mail);
    MimePart* part = (message.multipart().firstChild(), *message.multipart().nextChild());
    size_t depth = 1;
    for (;; ++depth) {
        if (auto* multi = dynamic_cast<MimeRfc822MPart*>(part))
            part = *multi->parts().at(1);
        else if (auto* nested = dynamic_cast<MimeRfc822SPart*>(part))
            part = *nested->child();
        else
            break;
    }
    EXPECT_EQ(100u, depth);
    EXPECT_TRUE(dynamic_cast<MimeSkippedPart*>(part));
}

// Header blocks.

struct HeaderRow {
    char const* rule;
    std::string block, expected;
};

class HeaderBlocks : public testing::TestWithParam<HeaderRow> {};

TEST_P(HeaderBlocks, WithLf)
{
    EXPECT_EQ(GetParam().expected, shown(Mail(GetParam().block).root().headers().headers()));
}

TEST_P(HeaderBlocks, FromASourceOfSingleBytes)
{
    EXPECT_EQ(GetParam().expected, shown(Mail(bytewise(GetParam().block)).root().headers().headers()));
}

TEST_P(HeaderBlocks, WithCrLf)
{
    EXPECT_EQ(GetParam().expected, shown(Mail(withCrLf(GetParam().block)).root().headers().headers()));
}

std::string const xs(5000, 'x');

INSTANTIATE_TEST_SUITE_P(
    Rules, HeaderBlocks,
    testing::Values(HeaderRow{"OrderCaseAndDuplicatesAreKept", "B: 1\nA: 2\nb: 3\n\n", "B[1] A[2] b[3]"},
                    HeaderRow{"FoldedLinesAreJoinedWithOneBlank", "A: 1\n  2\n\t3\n\n", "A[1 2 3]"},
                    HeaderRow{"WhiteSpaceBehindTheColonIsSkipped", "A: \t\v\f1\nB:2\n\n", "A[1] B[2]"},
                    HeaderRow{"BlanksAtTheEndStay", "A: 1 \t\n 2\n\n", "A[1 \t 2]"},
                    HeaderRow{"AllCarriageReturnsAtTheEndGo", "A: 1\r\r\n\n", "A[1]"},
                    HeaderRow{"ACarriageReturnInsideStays", "A: 1\r2\n\n", "A[1\r2]"},
                    HeaderRow{"AFoldedEmptyLineAddsNothing", "A: 1\n  \n 2\nB: 3\n\n", "A[1 2] B[3]"},
                    HeaderRow{"AFoldedLineKeepsNoVerticalTabInFront", "A: 1\n \v2\n\n", "A[1 2]"},
                    HeaderRow{"TheEndOfTheInputKeepsTheLastHeader", "A: 1\nB: 2", "A[1] B[2]"},
                    HeaderRow{"ABodyLineKeepsTheLastHeader", "A: 1\nB: 2\nno header\n", "A[1] B[2]"},
                    HeaderRow{"AValueMayBeEmpty", "A:\nB: \nC: 3\n\n", "A[] B[] C[3]"},
                    HeaderRow{"AFoldedLineBehindAnEmptyValueStartsWithItsBlank", "A:\n 1\n\n", "A[ 1]"},
                    HeaderRow{"TheFirstColonCounts", "A: b: c\n\n", "A[b: c]"},
                    HeaderRow{"ANameMayHoldAnythingButWhiteSpace", "A(=\x01\xff: 1\n\n", "A(=\x01\xff[1]"},
                    HeaderRow{"ALongValueIsJoinedWithoutChange", "A: " + xs + "\nB: 2\n\n", "A[" + xs + "] B[2]"},
                    HeaderRow{"BlanksAtThePiecesOfALongValueStay", "A: " + std::string(2045, 'x') + "  y\nB: 2\n\n",
                              "A[" + std::string(2045, 'x') + "  y] B[2]"},
                    HeaderRow{"APieceOfALongValueIsNoHeader", "A: " + std::string(2045, 'x') + "B: 2\n\n",
                              "A[" + std::string(2045, 'x') + "B: 2]"},
                    HeaderRow{"ALongFoldedLineIsJoinedWithoutChange", "A: 1\n " + xs + "\nB: 2\n\n",
                              "A[1 " + xs + "] B[2]"},
                    HeaderRow{"ACarriageReturnAtTheEndOfAPieceIsLost", "A: " + std::string(2044, 'x') + "\ry\n\n",
                              "A[" + std::string(2044, 'x') + "y]"},
                    HeaderRow{"ANameLongerThanAPieceIsNone", xs + ": 1\n\n", ""}),
    ruleName);

TEST(Rfc822MsgParser, AValueKeepsItsNuls)
{
    std::string const value("1\0002", 3);
    Mail mail("A: " + value + "\n\n");
    EXPECT_EQ(value, mail.root().headers().find("A").value());
}

TEST(HeaderReaders, TheParserUnfoldsAndKeepsTheLastHeaderTheContainerDoesNeither)
{
    std::string const folded = "A: 1\n 2\n\n";
    BufferMediaIn first(folded);
    EXPECT_EQ("A[1 2]", shown(Mail(folded).root().headers().headers()));
    EXPECT_EQ("A[1\n 2]", shown(HeaderContainer(first).headers()));

    std::string const unfinished = "A: 1\n";
    BufferMediaIn second(unfinished);
    EXPECT_EQ("A[1]", shown(Mail(unfinished).root().headers().headers()));
    EXPECT_EQ("", shown(HeaderContainer(second).headers()));
}

// Positions and lengths.

std::string numbers(MimePart& part)
{
    return std::to_string(part.sourcePosition()) + ' ' + std::to_string(part.hlen()) + ' ' +
           std::to_string(part.blen());
}

TEST(Positions, ABodysLengthIsKnownOnceItWasRead)
{
    Mail mail("A: 1\n\ntext\n");
    EXPECT_EQ("0 6 4294967295", numbers(mail.root()));
    textOf(mail.root().body(false));
    EXPECT_EQ("0 6 5", numbers(mail.root()));
}

TEST(Positions, WithoutEmptyLineTheFirstBodyLineIsNotInTheHeaderBlock)
{
    Mail mail("A: 1\nno header\n");
    EXPECT_EQ("A: 1\n", (mail.root().source().setpos(0), textOf(mail.root().source())));
    mail.in.setpos(15);
    textOf(mail.root().body(false));
    EXPECT_EQ("0 5 10", numbers(mail.root()));
}

TEST(Positions, APartStartsBehindItsDelimiterAndEndsBeforeTheNext)
{
    Mail mail(multipart("b", "--b\nA: 1\n\none\n--b--\nend\n"));
    EXPECT_EQ("47 6 4", numbers(mail.child(1)));
}

TEST(Positions, AMultipartReachesToTheEndOfItsEpilogue)
{
    Mail mail(multipart("b", "--b\nA: 1\n\none\n--b--\nend\n"));
    mail.multipart().parts();
    EXPECT_EQ("0 43 20", numbers(mail.root()));
    textOf(mail.child(2).body(false));
    EXPECT_EQ("0 43 24", numbers(mail.root()));
}

TEST(Positions, AnInnerMultipartEndsAtTheOuterDelimiter)
{
    // 43 bytes of outer headers, "--o\n" to 47, 43 of inner headers to 90, "--i\n\none\n" to 99.
    Mail mail(multipart("o", "--o\n" + multipart("i", "--i\n\none\n--o--\n")));
    auto& outer = mail.multipart();
    outer.firstChild();
    Ref<MimePart> inner = outer.nextChild();
    shape(**inner);
    outer.parts();
    EXPECT_EQ("47 43 9", numbers(**inner));
}

TEST(Positions, TheEndOfTheInputLeavesAContainersLengthAsLastSet)
{
    Mail mail(multipart("b", "--b\n\none\n"));
    shape(mail.root());
    EXPECT_EQ("0 43 0", numbers(mail.root()));
}

TEST(Positions, AMessagesLengthIsSetByAnOuterDelimiter)
{
    // "--b\n" to 47, 30 bytes of headers to 77, "A: 1\n\none\n" to 87.
    Mail mail(multipart("b", "--b\nContent-Type: message/rfc822\n\nA: 1\n\none\n--b--\n"));
    contents(mail.root());
    MimePart& message = mail.child(1);
    EXPECT_EQ("47 30 10", numbers(message));
    EXPECT_EQ("77 6 4", numbers(**dynamic_cast<MimeRfc822SPart&>(message).child()));
}

TEST(Positions, ADelimiterThatEndsTheHeadersIsNoPartOfThem)
{
    Mail mail(multipart("b", "--b\nA: 1\n--b\nB: 2\n\ntwo\n--b--\n"));
    contents(mail.root());
    EXPECT_EQ("47 5 14", numbers(mail.child(1))); // the delimiter and "B: 2\n\ntwo\n"
}

TEST(Positions, APushedBackLineIsBehindTheNestedMessagesPosition)
{
    Mail mail("Content-Type: message/rfc822\nno header\nmore\n");
    contents(mail.root());
    EXPECT_EQ("39 0 5", numbers(**mail.nested().child()));
}

TEST(Positions, AParseMayStartInsideTheSource)
{
    BufferMediaIn in(std::string("skipA: 1\n\ntext\n"));
    in.setpos(4);
    Ref<Rfc822Msg> message = Rfc822Msg::parse(in);
    EXPECT_EQ("leaf[text\n]", contents(*message->root()));
    EXPECT_EQ("4 6 5", numbers(*message->root()));
}

// Long lines.

TEST(LongLines, APieceThatBeginsLikeADelimiterIsTakenForOne)
{
    std::string const mail = multipart("b", std::string(2048, 'x') + "--b\n\none\n");
    EXPECT_EQ("multipart(preamble leaf)", shape(mail));
}

TEST(LongLines, ALargerBufferReadsLongerPieces)
{
    std::string const mail = multipart("b", std::string(2048, 'x') + "--b\n\none\n");
    BufferMediaIn in(mail);
    Rfc822MsgParser parser(in, 100);
    parser.bufferSize(4096);
    Ref<MimePart> root(parser.createRfc822Msg(), false);
    EXPECT_EQ("multipart(preamble)", shape(**root));
}

TEST(LongLines, TheReadersBufferDecidesWhereABodyIsCut)
{
    Mail mail(multipart("b", std::string(2048, 'x') + "--b\n\none\n"));
    EXPECT_EQ("multipart(preamble[" + std::string(2048, 'x') + "--b\n\none\n])", contents(mail.root()));
}

TEST(LongLines, AreCutAlikeInEverySource)
{
    // Lines of 1 to 5000 bytes, so that blocks of a file end at many places in a line.
    std::string mail = "Content-Type: multipart/mixed; boundary=b\n\n";
    for (size_t i = 0; i < 200; ++i) {
        mail += "--b\nA: " + std::string(i * 37 % 5000, 'h') + "\n" + std::string(i * 2048 / 100, ' ') + "\n\n";
        mail += std::string(i * 25, 'x') + "--b" + std::string(i % 5, '\n');
    }
    std::string const path = testing::TempDir() + "velmara_lines_" + std::to_string(::getpid());
    std::ofstream(path, std::ios::binary) << mail;
    std::string const expected = contents(Mail(bytewise(mail)).root());
    EXPECT_EQ(expected, contents(mail));
    EXPECT_EQ(expected, contents(Mail(FileMediaIn(path)).root()));
    EXPECT_EQ(shape(Mail(bytewise(mail)).root()), shape(Mail(FileMediaIn(path)).root()));
    std::remove(path.c_str());
}

TEST(LongLines, ABoundaryLongerThanALineIsNeverFound)
{
    EXPECT_EQ("multipart(preamble)", shape(multipart(xs, "--" + xs + "\n\none\n")));
}

// The steps by themselves.

struct Parser {
    explicit Parser(std::string const& text) : in(text), parser(in, 100), root(parser.createRfc822Msg(), false) {}

    MimeRfc822MPart* multipart() const { return dynamic_cast<MimeRfc822MPart*>(root.get()); }

    BufferMediaIn in;
    Rfc822MsgParser parser;
    Ref<MimePart> root;
};

TEST(Steps, ALeafHasNoNextPart)
{
    Parser p("A: 1\n\ntext\n");
    MimeRfc822MPart other{HeaderContainer(), nullptr, p.in};
    EXPECT_EQ(nullptr, p.parser.getNextPart(&other));
}

TEST(Steps, AClosedMultipartHasNoNextPart)
{
    Parser p(multipart("b", "--b--\nend\n"));
    EXPECT_TRUE(p.parser.getNextPart(p.multipart()));
    EXPECT_TRUE(p.parser.getNextPart(p.multipart()));
    EXPECT_EQ(nullptr, p.parser.getNextPart(p.multipart()));
    EXPECT_EQ(2u, p.multipart()->parts().size());
}

TEST(Steps, GoingOnWithAnOuterPartAbandonsTheInnerOnes)
{
    Mail mail(multipart("o", "--o\n" + multipart("i", "--i\n\none\n--i--\n--o\n\ntwo\n--o--\n")));
    auto& outer = mail.multipart();
    outer.firstChild();
    auto inner = outer.nextChild();
    dynamic_cast<MimeRfc822MPart&>(**inner).firstChild();
    EXPECT_EQ("leaf[two\n]", contents(**outer.nextChild()));
    EXPECT_EQ("multipart(preamble)", shape(**inner));
}

TEST(Steps, NestedMessagesThatNobodyEntersAreRunOver)
{
    Mail mail(multipart("b", "--b\nContent-Type: message/rfc822\n\nA: 1\n\none\n--b\n\ntwo\n--b--\n"));
    auto& parts = mail.multipart().parts();
    ASSERT_EQ(4u, parts.size());
    EXPECT_TRUE(dynamic_cast<MimeRfc822SPart*>(parts[1].get()));
}

TEST(Steps, ReadlineGivesNothingAtADelimiterAndAtTheEnd)
{
    Parser p(multipart("b", "one\n--b\ntwo\n"));
    Buffer line(100, 0);
    std::string lines;
    for (int i = 0; i < 4; ++i) {
        p.parser.readline(line);
        lines += std::string(reinterpret_cast<char const*>(line.data()), line.length()) + '|';
    }
    EXPECT_EQ("one\n||two\n||", lines);
}

TEST(Steps, APushedBackLineComesFirstAndUntested)
{
    Parser p("Content-Type: multipart/mixed; boundary=b\n--b\nnext\n");
    Buffer line(100, 0);
    p.parser.readline(line);
    EXPECT_EQ(4u, line.length());
    p.parser.readline(line);
    EXPECT_EQ(5u, line.length());
}

TEST(Steps, IsBoundaryAsksTheOpenContainersOnly)
{
    Buffer delimiter("--b\n", 4, true);
    Parser leaf("A: 1\n\n");
    EXPECT_FALSE(leaf.parser.isBoundary(delimiter));
    Parser multi(multipart("b", ""));
    EXPECT_TRUE(multi.parser.isBoundary(delimiter));
    multi.parser.msgPop();
    EXPECT_FALSE(multi.parser.isBoundary(delimiter));
    multi.parser.msgPop(); // with nothing open it does nothing
}

TEST(Steps, AStreamThatOnlyTheParserHoldsMayBeReadToItsDelimiter)
{
    Parser p(multipart("b", "one\n--b\n"));
    MediaIn& stream = p.parser.nextPStream();
    Buffer line(100, 0);
    do stream.readline(line);
    while (!line.isEmpty());
    EXPECT_TRUE(stream.isNull());
}

TEST(Steps, HeadersReadElsewhereLeaveTheSourceAtTheBody)
{
    HeaderContainer headers;
    headers.add(Header("Content-Type", "multipart/mixed; boundary=b"));
    BufferMediaIn in(std::string("--b\n\none\n--b--\n"));
    Rfc822MsgParser parser(in, 100);
    Ref<MimePart> root(parser.createRfc822Msg(headers), false);
    EXPECT_TRUE(root->source().isNull());
    EXPECT_EQ(0u, root->hlen());
    EXPECT_EQ("multipart(preamble[] leaf[one\n] epilogue[])", contents(**root));
}

// Failures of the source.

class FailingIn : public MediaInImpl {
public:
    explicit FailingIn(int lines) : m_lines(lines) {}
    bool atEnd() const override { return false; }
    int peek() const override { return 'x'; }
    using MediaInImpl::read;
    int read(uchar_t*, uint_t) override { return 0; }
    void readline(Buffer& line) override
    {
        line.length(0);
        if (m_lines-- == 0) throw Exception("medium", 6, nullptr, 0);
        line.append(reinterpret_cast<uchar_t const*>("A: 1\n"), 5u);
    }

private:
    int m_lines;
};

TEST(Failures, ExceptionsOfTheSourceReachTheCallerUnchanged)
{
    MediaIn in(new FailingIn(3), false);
    try {
        Rfc822Msg::parse(in);
        FAIL();
    } catch (Exception const& failure) {
        EXPECT_EQ("medium", failure.message());
        EXPECT_EQ(6, failure.code());
        EXPECT_FALSE(failure.hasCause());
    }
}

// A flood of lines that look like delimiters changes the way in which the stack is searched.

/// The reference: the innermost delimiter that is a prefix of the line ends the text.
bool endsText(std::vector<std::string> const& boundaries, std::string const& line)
{
    for (std::string const& boundary : boundaries)
        if (line.compare(0, boundary.size() + 2, "--" + boundary) == 0) return true;
    return false;
}

std::vector<std::string> words(std::string const& alphabet, size_t longest)
{
    std::vector<std::string> all(1);
    for (size_t i = 0; i < all.size(); ++i)
        if (all[i].size() < longest)
            for (char c : alphabet) all.push_back(all[i] + c);
    return all;
}

class Floods : public testing::TestWithParam<std::vector<std::string>> {};

TEST_P(Floods, FindTheSameDelimitersAsASingleLine)
{
    std::string open;
    for (std::string const& boundary : GetParam()) open += multipart(boundary, "--" + boundary + "\n");
    for (std::string const& word : words("ab-c", 4)) {
        std::string const line = "--" + word + "\n";
        std::string const flood = repeated(40, "--zz\n--\n--b\n");
        std::string const expected = flood + (endsText(GetParam(), line) ? "" : line + "end\n");
        std::string const found = contents(open + "\n" + flood + line + "end\n");
        EXPECT_NE(std::string::npos, found.find(" leaf[" + expected + "]")) << line;
    }
}

INSTANTIATE_TEST_SUITE_P(Stacks, Floods,
                         testing::Values(std::vector<std::string>{"a"}, std::vector<std::string>{"ab", "aa", "ac"},
                                         std::vector<std::string>{"a-", "ab", "ca"},
                                         std::vector<std::string>{"aaa", "aa", "cab", "ca", "bb"},
                                         std::vector<std::string>{"aa", "aaa", "caab", "caac", "ba-"}));

} // namespace
} // namespace Velmara
