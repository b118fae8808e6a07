#include <velmara/Velmara.h>

#include <gtest/gtest.h>

#include <type_traits>

#include "support/Collected.h"
#include "support/Rule.h"

namespace Velmara {
namespace {

using std::string;

Pieces _linesOf(MediaIn& in)
{
    Pieces pieces;
    Buffer line(4096, 0);
    for (in.readline(line); !line.isEmpty(); in.readline(line))
        pieces.emplace_back(reinterpret_cast<char const*>(line.data()), line.length());
    return pieces;
}

struct Row {
    char const* rule;
    string text;
    Pieces crlf, lf;
};

class LineEnds : public testing::TestWithParam<Row> {};

TEST_P(LineEnds, AreForced)
{
    BufferMediaIn source(GetParam().text), again(GetParam().text), third(GetParam().text);
    CRLFConvertor crlf(source, CRLFConvertor::ToCRLF), lf(again, CRLFConvertor::ToLF);
    CRLFConvertor other(third, static_cast<CRLFConvertor::CRLFConverType>(2));
    EXPECT_EQ(GetParam().crlf, _linesOf(crlf));
    EXPECT_EQ(GetParam().lf, _linesOf(lf));
    EXPECT_EQ(GetParam().lf, _linesOf(other)) << "any other value is ToLF";
}

INSTANTIATE_TEST_SUITE_P(
    Rules, LineEnds,
    testing::Values(Row{"CrLf", "a\r\nb\r\n", {"a\r\n", "b\r\n"}, {"a\n", "b\n"}},
                    Row{"LineFeed", "a\nb\n", {"a\r\n", "b\r\n"}, {"a\n", "b\n"}},
                    Row{"EmptyLines", "\n\r\n", {"\r\n", "\r\n"}, {"\n", "\n"}},
                    Row{"ALastLineWithoutOne", "a", {"a\r\n"}, {"a\n"}},
                    Row{"ALastLineThatEndsWithCr", "a\r", {"a\r\n"}, {"a\n"}},
                    Row{"ALoneCrAsTheWholeText", "\r", {"\r\n"}, {"\n"}},
                    Row{"CrsWithinALineStay", "a\rb\r\r\nc", {"a\rb\r\r\n", "c\r\n"}, {"a\rb\r\n", "c\n"}},
                    Row{"AnEmptySource", "", {}, {}}),
    ruleName);

TEST(CRLFConvertor, APieceOfALongLineGetsALineEndOfItsOwn)
{
    BufferMediaIn source(string("abcdef\n"));
    CRLFConvertor lf(source, CRLFConvertor::ToLF);
    Buffer line(4, 0);
    lf.readline(line);
    EXPECT_EQ("abcd\n", string(reinterpret_cast<char const*>(line.data()), line.length()));
}

string _block(MediaIn& in, unsigned n)
{
    std::vector<unsigned char> block(n + 1);
    int const got = in.read(block.data(), n);
    return string(block.begin(), block.begin() + got);
}

TEST(CRLFConvertor, ABlockReadKeepsTheRestOfItsLinesForTheNext)
{
    BufferMediaIn source(string("abcd\nefgh\nijkl\n"));
    CRLFConvertor in(source, CRLFConvertor::ToCRLF);
    EXPECT_EQ("abcd\r\nefgh", _block(in, 10));
    EXPECT_EQ(10u, source.tell()) << "two lines were fetched";
    EXPECT_EQ("\r\nij", _block(in, 4));
    EXPECT_EQ("kl\r\n", _block(in, 100));
    EXPECT_EQ("", _block(in, 100));
}

/// What reads into a buffer deliver, `n` bytes at a time.
Pieces _blocksOf(MediaIn& in, unsigned n)
{
    Pieces pieces;
    Buffer block;
    while (in.read(block, n) != 0) pieces.emplace_back(reinterpret_cast<char const*>(block.data()), block.length());
    return pieces;
}

TEST(CRLFConvertor, ABlockReadIntoABufferCutsNoLineOfTheSource)
{
    BufferMediaIn source(string("abcd\nefgh\nij")), again(string("Subject: x\n y\n\nbody\n"));
    CRLFConvertor in(source, CRLFConvertor::ToCRLF);
    EXPECT_EQ((Pieces{"abcd\r\nef", "gh\r\nij\r\n"}), _blocksOf(in, 8));
    MailHeaderMedia header(again);
    EXPECT_EQ((Pieces{"Subj", "ect:", " x\n ", "y\n"}), _blocksOf(header, 4));
}

TEST(CRLFConvertor, AllBlockReadsShareTheBytesThatWait)
{
    BufferMediaIn source(string("abcd\nefgh\n")), again(string("abcd\nefgh\n"));
    CRLFConvertor in(source, CRLFConvertor::ToCRLF), second(again, CRLFConvertor::ToCRLF);
    EXPECT_EQ("a", _block(in, 1));
    Buffer block(3, 0);
    EXPECT_EQ(3, in.read(block, 0)) << "0 stands for the capacity";
    EXPECT_EQ("bcd", string(reinterpret_cast<char const*>(block.data()), block.length()));
    EXPECT_EQ(8, in.read(block));
    EXPECT_EQ("\r\nefgh\r\n", string(reinterpret_cast<char const*>(block.data()), block.length()));
    EXPECT_EQ("a", _block(second, 1));
    string all;
    EXPECT_EQ(11, second.read(all));
    EXPECT_EQ("bcd\r\nefgh\r\n", all);
    EXPECT_EQ("", _block(in, 1) + _block(second, 1));
}

TEST(CRLFConvertor, ABlockThatTakesLessThanIsAskedForTellsWhatItHolds)
{
    BufferMediaIn source(string("abcd\nefgh\n"));
    CRLFConvertor in(source, CRLFConvertor::ToLF);
    Buffer block(8, 0);
    block.maxSize(3);
    EXPECT_EQ(3, in.read(block, 6));
    EXPECT_EQ("abc", string(reinterpret_cast<char const*>(block.data()), block.length()));
    EXPECT_EQ("fgh\n", _block(in, 6)) << "what found no room is lost, as with any stream";
}

TEST(CRLFConvertor, ALineReadSkipsWhatABlockReadHasKept)
{
    BufferMediaIn source(string("abcd\nefgh\n"));
    CRLFConvertor in(source, CRLFConvertor::ToCRLF);
    EXPECT_EQ("ab", _block(in, 2));
    Buffer line(100, 0);
    in.readline(line);
    EXPECT_EQ("efgh\r\n", string(reinterpret_cast<char const*>(line.data()), line.length()));
    EXPECT_EQ("cd\r\n", _block(in, 100));
}

TEST(CRLFConvertor, TheEndAndTheNextByteAreThoseOfTheSource)
{
    BufferMediaIn source(string("abcd\nx"));
    CRLFConvertor in(source, CRLFConvertor::ToCRLF);
    EXPECT_EQ('a', in.peek());
    EXPECT_EQ("a", _block(in, 1));
    EXPECT_EQ('x', in.peek());
    EXPECT_FALSE(in.atEnd());
    EXPECT_EQ("bcd\r\nx", _block(in, 6));
    EXPECT_TRUE(in.atEnd()) << "although CR LF is still to come";
    EXPECT_EQ("\r\n", _block(in, 6));
}

TEST(CRLFConvertor, OtherReadsSeeTheSameText)
{
    BufferMediaIn source(string("a\nb\n"));
    CRLFConvertor in(source, CRLFConvertor::ToCRLF);
    string all;
    in.MediaIn::read(all);
    EXPECT_EQ("a\r\nb\r\n", all);

    BufferMediaIn again(string("a\nb\n"));
    CRLFConvertor second(again, CRLFConvertor::ToCRLF);
    Collected out;
    MediaOut sink = out.media();
    second.write(sink);
    EXPECT_EQ("a\r\nb\r\n", out.take());
    EXPECT_EQ(0, in.read(nullptr, 5));
    EXPECT_EQ(0u, second.tell());
}

TEST(CRLFConvertor, WithoutASourceIsNullAndIsNotCopied)
{
    EXPECT_TRUE(CRLFConvertor().isNull());
    EXPECT_FALSE(std::is_copy_constructible<CRLFConvertor>::value);
    EXPECT_FALSE(std::is_copy_constructible<MailHeaderMedia>::value);
    EXPECT_FALSE(std::is_copy_constructible<MailBodyMedia>::value);
}

struct Mail {
    char const* rule;
    string text;
    Pieces header, body;
};

class Views : public testing::TestWithParam<Mail> {};

TEST_P(Views, ShareAMessage)
{
    BufferMediaIn source(GetParam().text), again(GetParam().text);
    MailHeaderMedia header(source);
    MailBodyMedia body(again);
    EXPECT_EQ(GetParam().header, _linesOf(header));
    EXPECT_EQ(GetParam().body, _linesOf(body));
}

INSTANTIATE_TEST_SUITE_P(
    Rules, Views,
    testing::Values(
        Mail{"TheEmptyLineBelongsToTheBodyView",
             "A: 1\r\n b\r\n\r\nbody\r\n",
             {"A: 1\r\n", " b\r\n"},
             {"\r\n", "body\r\n"}},
        Mail{"AnEmptySource", "", {}, {}}, Mail{"NoHeaderBlock", "\nA: 1\n", {}, {"\n", "A: 1\n"}},
        Mail{"AHeaderBlockAlone", "A: 1\nB: 2\n", {"A: 1\n", "B: 2\n"}, {}},
        Mail{"TheFirstLineOfABodyWithoutASeparator", "A: 1\nHello\nB: 2\n", {"A: 1\n"}, {"Hello\n", "B: 2\n"}},
        Mail{"ALeadingBlankMakesNoHeaderLine", " x: 1\nA: 1\n", {}, {" x: 1\n", "A: 1\n"}},
        Mail{"ALeadingColonMakesNoHeaderLine", ":x y\nA: 1\n", {}, {":x y\n", "A: 1\n"}},
        Mail{"ABlankAheadOfTheColonMakesNoHeaderLine", "A: 1\nX-a b: c\n", {"A: 1\n"}, {"X-a b: c\n"}},
        Mail{"AnyOtherNameMakesOne", "\xe4(): 1\nb:\n", {"\xe4(): 1\n", "b:\n"}, {}},
        Mail{"AContinuationMayBeginWithATab", "A: 1\n\tb\n\n", {"A: 1\n", "\tb\n"}, {"\n"}},
        Mail{"AContinuationMayHoldAColon", "A: 1\n b: c\n\n", {"A: 1\n", " b: c\n"}, {"\n"}},
        Mail{"ALineOfWhiteSpaceEndsTheBlock", "A: 1\n \t\r\nB: 2\n", {"A: 1\n"}, {" \t\r\n", "B: 2\n"}},
        Mail{"AContinuationNeedsAHeaderLine", "\tb\nA: 1\n", {}, {"\tb\n", "A: 1\n"}},
        Mail{"ALastLineWithoutWhiteSpaceIsNoHeaderLine", "A: 1\nSubject:x", {"A: 1\n"}, {"Subject:x"}},
        Mail{"ALastLineWithWhiteSpaceIsOne", "A: 1\nSubject: x", {"A: 1\n", "Subject: x"}, {}}),
    ruleName);

TEST(MailHeaderMedia, WithoutASourceBothViewsAreNull)
{
    EXPECT_TRUE(MailHeaderMedia().isNull());
    EXPECT_TRUE(MailBodyMedia().isNull());
}

TEST(MailHeaderMedia, ALineInPiecesIsOneLine)
{
    string const text = "Subject: 1234567890\n x\n\nbody: 1\n";
    BufferMediaIn source(text), again(text);
    MailHeaderMedia header(source);
    MailBodyMedia body(again);
    Buffer line(9, 0);
    Pieces pieces;
    for (header.readline(line); !line.isEmpty(); header.readline(line))
        pieces.emplace_back(reinterpret_cast<char const*>(line.data()), line.length());
    EXPECT_EQ((Pieces{"Subject: ", "123456789", "0\n", " x\n"}), pieces);
    body.readline(line);
    EXPECT_EQ("\n", string(reinterpret_cast<char const*>(line.data()), line.length()));
    body.readline(line);
    EXPECT_EQ("body: 1\n", string(reinterpret_cast<char const*>(line.data()), line.length()));
}

TEST(MailHeaderMedia, TheEndWithinALineEndsTheBlock)
{
    string const text = "A: 12345"; // the last piece of nine bytes is full, and nothing follows
    BufferMediaIn source(text), again(text);
    MailHeaderMedia header(source);
    MailBodyMedia body(again);
    Buffer line(8, 0);
    header.readline(line);
    EXPECT_EQ(8u, line.length());
    header.readline(line);
    EXPECT_TRUE(line.isEmpty());
    body.readline(line);
    EXPECT_TRUE(line.isEmpty());
}

TEST(MailHeaderMedia, TheSourceIsNotReadBehindTheBlock)
{
    BufferMediaIn source(string("A: 1\n\nbody\n"));
    MailHeaderMedia header(source);
    EXPECT_EQ((Pieces{"A: 1\n"}), _linesOf(header));
    EXPECT_EQ(Pieces(), _linesOf(header));
    EXPECT_EQ(6u, source.tell());
    EXPECT_EQ("", _block(header, 10));
    EXPECT_EQ(6u, source.tell());
}

TEST(MailHeaderMedia, ViewsCanBeStacked)
{
    BufferMediaIn source(string("A: 1\n\nbody\n"));
    MailBodyMedia body(source);
    CRLFConvertor stacked(body, CRLFConvertor::ToCRLF);
    EXPECT_EQ("\r\nbody\r\n", _block(stacked, 100));
}

} // namespace
} // namespace Velmara
