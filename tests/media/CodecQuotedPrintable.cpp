#include <velmara/Velmara.h>

#include <gtest/gtest.h>

#include "support/Collected.h"
#include "support/Rule.h"

namespace Velmara {
namespace {

using std::string;

struct Row {
    char const* rule;
    Pieces writes, arrives;
};

class QuotedPrintable : public testing::TestWithParam<Row> {};

TEST_P(QuotedPrintable, DeliversPerWrite)
{
    Row const& row = GetParam();
    Collected out;
    CodecQuotedPrintable codec(out.media());
    for (size_t i = 0; i < row.writes.size(); ++i) {
        codec.write(bytes(row.writes[i]));
        EXPECT_EQ(row.arrives[i], out.take()) << "write " << i;
    }
    codec.end();
    EXPECT_EQ("", out.take()) << "end";
    EXPECT_EQ(1, out.ends());
}

INSTANTIATE_TEST_SUITE_P(OneWrite, QuotedPrintable,
                         testing::Values(Row{"UpperCaseDigits", {"a=3Db"}, {"a=b"}},
                                         Row{"LowerCaseDigits", {"a=3db"}, {"a=b"}},
                                         Row{"AllValuesOfAByte", {"=00=7f=80=FF"}, {string("\0\x7f\x80\xff", 4)}},
                                         Row{"SoftBreakWithCrLf", {"a=\r\n"}, {"a"}},
                                         Row{"SoftBreaksWithCrLfAnywhere", {"a=\r\nb=\r\nc"}, {"abc"}},
                                         Row{"BareLineFeedIsASoftBreakAtTheEndOfAWrite", {"a=\n"}, {"a"}},
                                         Row{"BareLineFeedIsNoSoftBreakBeforeMore", {"a=\nb"}, {"a=\nb"}},
                                         Row{"BareLineFeedBeforeMoreStaysBesideEscapes", {"=41=\nb=42"}, {"A=\nbB"}},
                                         Row{"BadDigitsStay", {"=ZZ"}, {"=ZZ"}},
                                         Row{"OneBadDigitStays", {"=4Z=Z4x"}, {"=4Z=Z4x"}},
                                         Row{"BytesFrom127OnAreNoDigits",
                                             {"=\x7f"
                                              "1=1\x7f=\x80\x80=1\xff!"},
                                             {"=\x7f"
                                              "1=1\x7f=\x80\x80=1\xff!"}},
                                         Row{"TrailingBlanksBehindTheEqualSignStay", {"a= \r\n"}, {"a= \r\n"}},
                                         Row{"LineEndsAndBlanksStay", {"a \t\r\n\n\r"}, {"a \t\r\n\n\r"}},
                                         Row{"AnEqualSignBeforeAnEscapeStays", {"==41"}, {"=A"}},
                                         Row{"ADigitBeforeAnEscapeStays", {"=4=41"}, {"=4A"}},
                                         Row{"LongRunsBetweenEscapes",
                                             {"0123456789abcdef=410123456=4201234567=43"},
                                             {"0123456789abcdefA0123456B01234567C"}},
                                         Row{"AnEmptyWriteIsPassedOn", {""}, {""}}),
                         ruleName);

INSTANTIATE_TEST_SUITE_P(
    Seams, QuotedPrintable,
    testing::Values(
        Row{"AnEscapeCutInTheMiddleIsJoined", {"a=3", "Db"}, {"a", "=b"}},
        Row{"AnEscapeCutBehindTheEqualSignIsJoined", {"a=", "3Db"}, {"a", "=b"}},
        Row{"AnEscapeInThreeWritesIsJoined", {"=", "3", "D"}, {"", "", "="}},
        Row{"ASoftBreakCutBeforeItsLineFeedIsJoined", {"a=\r", "\nb"}, {"a", "b"}},
        Row{"ASoftBreakCutBehindTheEqualSignIsJoined", {"a=", "\r\nb"}, {"a", "b"}},
        Row{"ABareLineFeedThatEndsTheNextWriteIsASoftBreak", {"a=", "\n", "b"}, {"a", "", "b"}},
        Row{"ABareLineFeedBeforeMoreOfTheNextWriteIsNot", {"a=", "\nb"}, {"a", "=\nb"}},
        Row{"AnEmptyWriteKeepsTheCarry", {"=4", "", "1"}, {"", "", "A"}},
        Row{"CarriedBytesThatAreNoEscapeArriveAgainWithEachWrite", {"=Z", "Q", "x", "y"}, {"", "=ZQ", "=ZQx", "=ZQxy"}},
        Row{"UntilAWriteHoldsAnEscape", {"=Z", "Q", "x=41", "y"}, {"", "=ZQ", "=ZQxA", "y"}},
        Row{"OrIsCutWithinOne", {"=Z", "Q", "x=4", "1y"}, {"", "=ZQ", "=ZQx", "Ay"}},
        Row{"WhatFollowsADecodedEscapeIsCarriedAlone", {"=41=4", "2"}, {"A", "B"}},
        Row{"AnEqualSignAtTheEndIsLost", {"a="}, {"a"}}, Row{"AndALoneByteBehindIt", {"a=4"}, {"a"}}),
    ruleName);

TEST(CodecQuotedPrintable, WellFormedTextDoesNotDependOnItsCuts)
{
    for (Pieces const& pieces : everyCut("caf=C3=A9 =3D\r\nsoft=\r\n=20break=0A"))
        EXPECT_EQ("caf\xc3\xa9 =\r\nsoft break\n", through<CodecQuotedPrintable>(pieces)) << pieces.front();
}

struct Cuts {
    char const* text;
    char const* whole;
    Pieces cutAt; // behind 1, 2, ... bytes
    char const* bytewise;
};

TEST(CodecQuotedPrintable, OtherTextDependsOnItsCuts)
{
    Cuts const rows[] = {
        {"x=\ny", "x=\ny", {"x=\ny", "x=\ny", "xy"}, "xy"},
        {"=ZQx", "=ZQx", {"=ZQx", "=ZQx", "=ZQx"}, "=ZQ=ZQx"},
        {"a= b", "a= b", {"a= b", "a= b", "a= b"}, "a= b"},
        {"=\rab", "=\rab", {"=\rab", "=\rab", "=\rab"}, "=\ra=\rab"},
        {"==4", "=", {"=", "="}, "="},
    };
    for (Cuts const& row : rows) {
        string const text = row.text;
        EXPECT_EQ(row.whole, through<CodecQuotedPrintable>({text})) << text;
        EXPECT_EQ(row.bytewise, through<CodecQuotedPrintable>(singleBytes(text))) << text;
        for (size_t at = 1; at < text.size(); ++at)
            EXPECT_EQ(row.cutAt[at - 1], through<CodecQuotedPrintable>({text.substr(0, at), text.substr(at)}))
                << text << " cut at " << at;
    }
}

struct Remembering : MediaOutImpl {
    void write(Buffer const& line) override { last = &line; }
    void write(uchar_t const*, uint_t) override { last = nullptr; }
    Buffer const* last = nullptr;
};

TEST(CodecQuotedPrintable, AWriteWithoutEscapesIsHandedOnWithoutACopy)
{
    auto* sink = new Remembering;
    MediaOut out(sink, false);
    CodecQuotedPrintable codec(out);
    for (char const* text : {"plain\r\n", "=ZZ\r\n"}) {
        Buffer const line = bytes(text);
        codec.write(line);
        EXPECT_EQ(&line, sink->last) << text;
    }
}

struct Failing : MediaOutImpl {
    using MediaOutImpl::write;
    void write(uchar_t const*, uint_t) override
    {
        if (asMediaException) throw MediaException(7, "Elsewhere", 2);
        throw Exception("full", 6, "Elsewhere", 7);
    }
    bool asMediaException = false;
};

TEST(CodecQuotedPrintable, AFailureOfTheDownstreamIsTranslatedOnce)
{
    auto* sink = new Failing;
    MediaOut out(sink, false);
    CodecQuotedPrintable codec(out);
    try {
        codec.write(bytes("a"));
        FAIL();
    } catch (MediaException const& e) {
        EXPECT_EQ("MediaException", e.message());
        EXPECT_EQ(4, e.code());
        EXPECT_EQ("MessageMediaImpl", e.fileName());
        ASSERT_TRUE(e.hasCause());
        EXPECT_EQ("full", e.cause().message());
    }
    sink->asMediaException = true;
    try {
        codec.write(bytes("a"));
        FAIL();
    } catch (MediaException const& e) {
        EXPECT_EQ(2, e.code());
        EXPECT_EQ("Elsewhere", e.fileName());
        EXPECT_FALSE(e.hasCause());
    }
}

TEST(CodecQuotedPrintable, CopiesShareWhatIsCarriedAndADownstreamCanBeAttachedLater)
{
    Collected out;
    CodecQuotedPrintable first;
    CodecQuotedPrintable second(first);
    second.attach(out.media());
    first.write(bytes("=4"));
    unsigned char const rest[] = {'1'};
    second.write(rest, 1);
    EXPECT_EQ("A", out.take());
}

} // namespace
} // namespace Velmara
