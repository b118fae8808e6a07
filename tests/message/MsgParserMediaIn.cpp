#include <velmara/Rfc822MsgParser.h>

#include <gtest/gtest.h>

#include "support/Shape.h"

namespace Velmara {
namespace {

std::string textOfBuffer(Buffer const& buffer)
{
    return std::string(reinterpret_cast<char const*>(buffer.data()), buffer.length());
}

/// A leaf with the body "one\ntwo\nthree\n" behind 6 bytes of headers.
struct Leaf : Mail {
    Leaf() : Mail("A: 1\n\none\ntwo\nthree\n"), body(root().body(false)) {}

    MsgParserMediaIn& stream() { return dynamic_cast<MsgParserMediaIn&>(**body); }
    void close() { textOf(body); }
    std::string line()
    {
        Buffer buffer(100, 0);
        body.readline(buffer);
        return textOfBuffer(buffer);
    }
    std::string block(unsigned int n, int size = 100)
    {
        Buffer buffer(size, 0);
        EXPECT_EQ(static_cast<int>(buffer.length()), 0);
        int const told = body.read(buffer, n);
        EXPECT_EQ(static_cast<int>(buffer.length()), told);
        return textOfBuffer(buffer);
    }

    MediaIn body;
};

TEST(LiveStream, IsNotAtItsEndBeforeALineCameBackEmpty)
{
    Leaf leaf;
    leaf.block(100);
    EXPECT_TRUE(leaf.body.atEnd());

    Leaf other;
    for (int i = 0; i < 3; ++i) other.line();
    EXPECT_TRUE(other.in.atEnd());
    EXPECT_FALSE(other.body.atEnd());
    EXPECT_EQ("", other.line());
    EXPECT_TRUE(other.body.atEnd());
}

TEST(LiveStream, CannotBeRewound)
{
    Leaf leaf;
    leaf.line();
    leaf.body.setpos(0);
    EXPECT_EQ("two\n", leaf.line());
    EXPECT_EQ("three\n", textOf(leaf.root().body(false)));
}

TEST(LiveStream, IsWrittenFromWhereItStands)
{
    Leaf leaf;
    leaf.line();
    Buffer out;
    BufferMediaOut target(out);
    leaf.body.write(target);
    EXPECT_EQ("two\nthree\n", textOfBuffer(out));
    EXPECT_EQ(14u, leaf.root().blen());
}

TEST(LiveStream, IsAtItsEndOnceTheMessageIsGone)
{
    Leaf leaf;
    MediaIn body = leaf.body;
    leaf.message.release();
    EXPECT_EQ("", textOf(body));
}

TEST(ClosedStream, IsReadFromItsStartAgainAndAgain)
{
    Leaf leaf;
    leaf.close();
    for (int i = 0; i < 2; ++i) EXPECT_EQ("one\ntwo\nthree\n", textOf(leaf.root().body(false)));
}

TEST(ClosedStream, EndsBeforeTheDelimiter)
{
    Mail mail("Content-Type: multipart/mixed; boundary=b\n\nbefore\n--b\n\none\n--b--\nbehind\n");
    mail.multipart().parts();
    textOf(mail.child(2).body(false));
    EXPECT_EQ("one\n", textOf(mail.child(1).body(false)));
    MediaIn preamble = mail.child(0).body(false);
    preamble.setpos(0);
    EXPECT_EQ("before\n", textOf(preamble));
}

TEST(ClosedStream, ACopyOfTheHandleSharesItsPosition)
{
    Leaf leaf;
    leaf.close();
    leaf.body.setpos(0);
    MediaIn copy = leaf.body;
    EXPECT_EQ("one\n", leaf.line());
    Buffer buffer(100, 0);
    copy.readline(buffer);
    EXPECT_EQ("two\n", textOfBuffer(buffer));
}

TEST(ClosedStream, IsWrittenFromItsStart)
{
    Leaf leaf;
    leaf.close();
    leaf.body.setpos(5);
    Buffer out;
    BufferMediaOut target(out);
    leaf.body.write(target);
    leaf.body.write(target);
    EXPECT_EQ("one\ntwo\nthree\none\ntwo\nthree\n", textOfBuffer(out));
}

TEST(ClosedStream, APositionCountsFromItsStart)
{
    Leaf leaf;
    leaf.close();
    leaf.body.setpos(4);
    EXPECT_EQ(10u, leaf.in.tell());
    EXPECT_EQ("two\n", leaf.line());
}

TEST(ClosedStream, APositionPastTheEndIsTheLastByte)
{
    Leaf leaf;
    leaf.close();
    for (unsigned long position : {13ul, 14ul, 15ul, ~0ul}) {
        leaf.body.setpos(position);
        EXPECT_EQ(19u, leaf.in.tell());
        EXPECT_EQ("\n", leaf.line());
    }
}

TEST(ClosedStream, AnEmptyOneAtTheStartOfTheSourceIsNotMoved)
{
    Mail mail("");
    MediaIn body = mail.root().body(false);
    EXPECT_EQ("", textOf(body));
    body.setpos(0);
    EXPECT_EQ(0u, mail.in.tell());
    EXPECT_EQ("", textOf(body));
}

TEST(ClosedStream, AnEmptyOneElsewhereIsRewoundToTheByteInFrontOfIt)
{
    Mail mail("A: 1\n\n");
    EXPECT_EQ("", textOf(mail.root().body(false)));
    EXPECT_EQ("\n", textOf(mail.root().body(false)));
}

TEST(ClosedStream, AHeaderBlockIsOneFromTheBeginning)
{
    Leaf leaf;
    leaf.root().source().setpos(0);
    EXPECT_EQ("A: 1\n\n", textOf(leaf.root().source()));
}

TEST(Reading, ABlockHoldsWholeLines)
{
    for (bool const closed : {false, true}) {
        Leaf leaf;
        if (closed) leaf.close();
        leaf.body.setpos(0);
        EXPECT_EQ("one\n", leaf.block(1));
        EXPECT_EQ("two\nthree\n", leaf.block(5));
        EXPECT_EQ("", leaf.block(5));
    }
}

TEST(Reading, ACountOfZeroMeansTheCapacity)
{
    Leaf leaf;
    EXPECT_EQ("one\ntwo\n", leaf.block(0, 5));
    EXPECT_EQ("", leaf.block(0, 0));
    EXPECT_EQ("three\n", leaf.block(100));
}

TEST(Reading, ABlockReplacesWhatTheBufferHeld)
{
    Leaf leaf;
    Buffer buffer("old", 3, true);
    leaf.body.read(buffer, 1);
    EXPECT_EQ("one\n", textOfBuffer(buffer));
    leaf.body.readline(buffer);
    EXPECT_EQ("two\n", textOfBuffer(buffer));
}

TEST(Reading, LinesOfABlockAreCutAt2048Bytes)
{
    Mail mail("A: 1\n\n" + std::string(5000, 'x') + "\n");
    Buffer buffer(100, 0);
    mail.root().body(false).read(buffer, 1);
    EXPECT_EQ(2048u, buffer.length());
    mail.root().body(false).read(buffer, 2049);
    EXPECT_EQ(2953u, buffer.length());
}

TEST(Reading, GivesTheSameFromASourceOfSingleBytes)
{
    std::string text = "A: 1\n\n";
    for (size_t i = 0; i < 100; ++i) text += std::string(i * 51, 'x') + "\n";
    Mail memory(text), bytes(bytewise(text));
    for (int round = 0; round < 2; ++round) {
        MediaIn first = memory.root().body(false), second = bytes.root().body(false);
        Buffer one(100, 0), other(100, 0);
        for (unsigned int n = 1; first.read(one, n * 97) > 0; ++n) {
            second.read(other, n * 97);
            ASSERT_EQ(textOfBuffer(one), textOfBuffer(other));
        }
        EXPECT_EQ(0, second.read(other, 1));
    }
}

TEST(Reading, ALineLongerThanTheBufferComesInPieces)
{
    Mail mail("A: 1\n\n" + std::string(250, 'x') + "\n");
    MediaIn body = mail.root().body(false);
    Buffer buffer(100, 0);
    for (unsigned int expected : {100u, 100u, 51u, 0u}) {
        body.readline(buffer);
        EXPECT_EQ(expected, buffer.length());
    }
}

TEST(Reading, AllThatRemainsComesAtOnce)
{
    Leaf first, second;
    first.line();
    Buffer buffer;
    first.body.read(buffer);
    EXPECT_EQ("two\nthree\n", textOfBuffer(buffer));
    std::string all;
    second.body.read(all);
    EXPECT_EQ("one\ntwo\nthree\n", all);
}

TEST(Reading, SingleBytesAreRefused)
{
    Leaf leaf;
    uchar_t bytes[10];
    try {
        leaf.body.read(bytes, sizeof bytes);
        FAIL();
    } catch (Exception const& refusal) {
        EXPECT_EQ("virtual int Velmara::MsgParserMediaIn::read(Velmara::uchar_t*, Velmara::uint_t)", refusal.message());
        EXPECT_EQ(4, refusal.code());
        EXPECT_EQ("Rfc822MsgParser", refusal.fileName());
        EXPECT_EQ("N/A", refusal.stringParameter());
    }
    EXPECT_EQ("one\n", leaf.line());
}

TEST(Position, IsTheStreamsOwnOnlyWithoutTheHandle)
{
    Leaf leaf;
    leaf.line();
    EXPECT_EQ(4u, leaf.stream().tell());
    EXPECT_EQ(0u, leaf.body.tell());
    MsgParserMediaIn const& same = leaf.stream();
    EXPECT_EQ(0u, same.tell());
}

TEST(Position, PeekTellsNothing)
{
    Leaf leaf;
    EXPECT_EQ(0, leaf.body.peek());
    leaf.close();
    EXPECT_EQ(0, leaf.body.peek());
}

TEST(Position, AStreamStartsAtTheLineThatWasPutBack)
{
    Mail mail("A: 1\nno header\nmore\n");
    MediaIn body = mail.root().body(false);
    textOf(body);
    body.setpos(0);
    EXPECT_EQ(5u, mail.in.tell());
    EXPECT_EQ("no header\nmore\n", textOf(body));
}

} // namespace
} // namespace Velmara
