#include <velmara/Velmara.h>

#include <gtest/gtest.h>

#include <utility>

#include "support/Collected.h"

namespace Velmara {
namespace {

using std::string;

MediaIn _decoded(string const& text, MediaOutDecorator const& decoder = CodecBase64())
{
    return MediaIn(new DecodeMediaIn(BufferMediaIn(text), decoder), false);
}

string _block(MediaIn& in, unsigned n)
{
    std::vector<unsigned char> block(n + 1);
    int const got = in.read(block.data(), n);
    return string(block.begin(), block.begin() + got);
}

string _line(MediaIn& in)
{
    Buffer line = bytes("old");
    in.readline(line);
    return string(reinterpret_cast<char const*>(line.data()), line.length());
}

/// By the form of `read` that fills a Buffer.
string _filled(MediaIn& in, unsigned n, int capacity = 0)
{
    Buffer block(capacity, 0);
    block.append('x'); // does not stay
    int const got = in.read(block, n);
    return string(reinterpret_cast<char const*>(block.data()), static_cast<size_t>(got));
}

string _written(MediaIn& in)
{
    Collected out;
    MediaOut sink = out.media();
    in.write(sink);
    EXPECT_EQ(0, out.ends()) << "the caller's sink is not ended";
    return out.take();
}

string const _twoLines = "b25l\r\nDQp0\r\nd28K\r\ndGhyZWU=\r\n"; // "one\r\ntwo\nthree"

TEST(DecodeMediaIn, ReadsBlocks)
{
    MediaIn in = _decoded(_twoLines);
    EXPECT_EQ("o", _block(in, 1));
    EXPECT_EQ("ne\r\nt", _block(in, 5));
    EXPECT_EQ("", _block(in, 0));
    EXPECT_FALSE(in.atEnd());
    EXPECT_EQ("wo\nthree", _block(in, 100));
    EXPECT_TRUE(in.atEnd());
    EXPECT_EQ("", _block(in, 100));
}

TEST(DecodeMediaIn, ReadsLinesTheLastWithoutATerminator)
{
    MediaIn in = _decoded(_twoLines);
    EXPECT_EQ("one\r\n", _line(in));
    EXPECT_EQ("two\n", _line(in));
    EXPECT_EQ("three", _line(in));
    EXPECT_EQ("", _line(in));
}

TEST(DecodeMediaIn, ReadsOfBothKindsGoOnFromEachOther)
{
    MediaIn in = _decoded(_twoLines);
    EXPECT_EQ("on", _block(in, 2));
    EXPECT_EQ("e\r\n", _line(in));
    EXPECT_EQ("tw", _block(in, 2));
    EXPECT_EQ("o\n", _line(in));
    string rest;
    in.read(rest);
    EXPECT_EQ("three", rest);
}

TEST(DecodeMediaIn, ALineMayComeInManyPiecesAndManyLinesInOne)
{
    MediaIn pieces = _decoded("YWJj\nZGVm\nCg==\n");
    EXPECT_EQ("abcdef\n", _line(pieces));
    MediaIn one = _decoded("YQpiCgpj\n");
    EXPECT_EQ("a\n", _line(one));
    EXPECT_EQ("b\n", _line(one));
    EXPECT_EQ("\n", _line(one));
    EXPECT_FALSE(one.atEnd());
    EXPECT_EQ("c", _line(one));
    EXPECT_TRUE(one.atEnd());
}

TEST(DecodeMediaIn, ALongLineIsGivenWhole)
{
    string text, decoded;
    for (int i = 0; i < 30000; ++i) {
        text += "YWJj";
        decoded += "abc";
    }
    MediaIn in = _decoded(text + "\r\nCg==\r\n");
    EXPECT_EQ(decoded + "\n", _line(in));
}

TEST(DecodeMediaIn, ABlockReadIntoABufferGivesNoMoreThanWasAskedFor)
{
    MediaIn in = _decoded("YWJj\nZGVm\nCmdo\n"); // "abc", "def", LF "gh"
    EXPECT_EQ("ab", _filled(in, 2));
    EXPECT_EQ("cde", _filled(in, 3)) << "from two lines of the source";
    EXPECT_EQ("f\n", _line(in));
    EXPECT_EQ("gh", _filled(in, 100));
    EXPECT_TRUE(in.atEnd());
    EXPECT_EQ("", _filled(in, 100));
}

TEST(DecodeMediaIn, ABlockReadOfNoBytesReadsUpToTheCapacity)
{
    MediaIn in = _decoded("YWJj\nZGVm\n");
    EXPECT_EQ("abcd", _filled(in, 0, 4));
}

TEST(DecodeMediaIn, AnEmptySource)
{
    MediaIn in = _decoded("");
    EXPECT_TRUE(in.atEnd());
    EXPECT_EQ("", _block(in, 10));
    EXPECT_EQ("", _line(in));
    EXPECT_EQ("", _written(in));
}

TEST(DecodeMediaIn, ANullSource)
{
    MediaIn in(new DecodeMediaIn(MediaIn(), CodecBase64()), false);
    EXPECT_TRUE(in.atEnd());
    EXPECT_EQ("", _block(in, 10));
    EXPECT_EQ("", _line(in));
    EXPECT_EQ("", _written(in));
}

TEST(DecodeMediaIn, IsNotAtItsEndWhileTheSourceHoldsLinesThatGiveNothing)
{
    MediaIn in = _decoded("YQ==\n\n\n");
    EXPECT_EQ("a", _block(in, 1));
    EXPECT_FALSE(in.atEnd());
    EXPECT_EQ("", _block(in, 1));
    EXPECT_TRUE(in.atEnd());
}

TEST(DecodeMediaIn, ANullBlockReadsNothing)
{
    MediaIn in = _decoded("YQ==\n");
    EXPECT_EQ(0, in.read(nullptr, 10));
    EXPECT_EQ("a", _block(in, 10));
}

TEST(DecodeMediaIn, HasNoPosition)
{
    MediaIn in = _decoded(_twoLines);
    EXPECT_EQ(0, in.peek());
    EXPECT_EQ("on", _block(in, 2));
    EXPECT_EQ(0, in.peek());
    EXPECT_EQ(0u, in.tell());
    EXPECT_EQ(0u, static_cast<DecodeMediaIn&>(*in.get()).tell());
    in.setpos(0);
    EXPECT_EQ("e\r\n", _line(in));
}

TEST(DecodeMediaIn, WriteRewindsTheSource)
{
    MediaIn in = _decoded("a=3Db\ncd\n", CodecQuotedPrintable());
    EXPECT_EQ("a=", _block(in, 2));
    EXPECT_EQ("a=b\ncd\n", _written(in));
    EXPECT_EQ("b\n", _line(in)) << "what was pending still is";
    EXPECT_TRUE(in.atEnd());
}

TEST(DecodeMediaIn, ASecondWriteGoesOnWithTheDecoderAsItIs)
{
    MediaIn uu = _decoded("begin 644 a\n#0V%T\nend\n", CodecUUEncode());
    EXPECT_EQ("Cat", _written(uu));
    EXPECT_EQ("", _written(uu)) << "the decoder has seen the end line";
}

string const _openBinHex = ":!@%!9%9B9(4dH(3!N!8$!*!%DLe$BA4#p3!!"; // "Cat", but no closing colon

TEST(DecodeMediaIn, OnlyWriteEndsTheDecoder)
{
    MediaIn pulled = _decoded(_openBinHex, CodecBinHex40());
    string all;
    pulled.read(all);
    EXPECT_EQ("", all);
    EXPECT_EQ("", _line(pulled));
    MediaIn written = _decoded(_openBinHex, CodecBinHex40());
    EXPECT_EQ("Cat", _written(written));
}

TEST(DecodeMediaIn, ADecoderMayOutliveIt)
{
    CodecBase64 decoder;
    _decoded("YQ==", decoder).release();
    EXPECT_NO_THROW(decoder.write(bytes("QUJD")));
}

TEST(DecodeMediaIn, ASourceThatIsNeverAtItsEndDoesNotHoldWriteForever)
{
    MailHeaderMedia header(BufferMediaIn(string("A: =41\n\nbody\n")));
    MediaIn in(new DecodeMediaIn(header, CodecQuotedPrintable()), false);
    EXPECT_EQ("A: A\n", _written(in));
}

/// Fails once, behind its first line.
class StumblingIn : public MediaInImpl {
public:
    bool atEnd() const override { return m_lines == 2; }
    int peek() const override { return 'x'; }
    using MediaInImpl::read;
    int read(uchar_t*, uint_t) override { return 0; }
    void readline(Buffer& line) override
    {
        line.length(0);
        if (m_lines == 1 && !std::exchange(m_stumbled, true)) throw Exception("medium", 6, nullptr, 0);
        if (m_lines < 2) line.append(bytes(m_lines++ == 0 ? "abc=\n" : "def\n"));
    }

private:
    int m_lines = 0;
    bool m_stumbled = false;
};

TEST(DecodeMediaIn, AFailureWithinALineLosesNothingOfIt)
{
    MediaIn in(new DecodeMediaIn(MediaIn(new StumblingIn, false), CodecQuotedPrintable()), false);
    Buffer line;
    EXPECT_THROW(in.readline(line), Exception);
    EXPECT_TRUE(line.isEmpty());
    EXPECT_EQ("abcdef\n", _line(in));
    EXPECT_TRUE(in.atEnd());
}

TEST(DecodeMediaIn, QuotedPrintableGetsLineByLine)
{
    MediaIn in = _decoded("a=\nb=3D=\r\nc\n", CodecQuotedPrintable());
    EXPECT_EQ("ab=c\n", _line(in));
}

} // namespace
} // namespace Velmara
