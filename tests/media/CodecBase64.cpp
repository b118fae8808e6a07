#include <velmara/Velmara.h>

#include <gtest/gtest.h>

#include "support/Collected.h"
#include "support/Rule.h"

namespace Velmara {
namespace {

using std::string;

struct Row {
    char const* rule;
    bool strict;
    Pieces writes, arrives;
    int status;
};

class Base64 : public testing::TestWithParam<Row> {};

TEST_P(Base64, DeliversPerWrite)
{
    Row const& row = GetParam();
    Collected out;
    CodecBase64 codec(out.media());
    codec.strict(row.strict);
    for (size_t i = 0; i < row.writes.size(); ++i) {
        codec.write(bytes(row.writes[i]));
        EXPECT_EQ(row.arrives[i], out.take()) << "write " << i;
    }
    EXPECT_EQ(row.status, codec.status());
}

constexpr bool _strict = true, _lax = false;

INSTANTIATE_TEST_SUITE_P(
    Rules, Base64,
    testing::Values(Row{"LineEndsAreSkipped", _strict, {"QUJD\r\n"}, {"ABC"}, 1},
                    Row{"AllSixKindsOfWhiteSpaceAreSkipped", _strict, {"Q U\tJ\vD\fR\rE\nVG"}, {"ABCDEF"}, 1},
                    Row{"AGroupCutInTwoIsJoined", _strict, {"QU", "JD"}, {"", "ABC"}, 1},
                    Row{"AGroupCutAtALineEndIsJoined", _strict, {"QUJDR\r\n", "EVG\r\n"}, {"ABC", "DEF"}, 1},
                    Row{"AGroupMayComeInFourWrites", _strict, {"Q", "U", "J", "D"}, {"", "", "", "ABC"}, 1},
                    Row{"ThreeCarriedCharactersLeaveThree", _strict, {"QUJ", "DREV"}, {"", "ABC"}, 1},
                    Row{"OnePaddedByte", _strict, {"QQ=="}, {"A"}, 1},
                    Row{"TwoPaddedBytes", _strict, {"QUI="}, {"AB"}, 1},
                    Row{"PaddingMayBeCut", _strict, {"QQ=", "="}, {"", "A"}, 1},
                    Row{"PaddingEndsItsWriteButNotTheStream", _strict, {"QQ==QUJD", "QUJD"}, {"A", "ABC"}, 1},
                    Row{"PaddingBehindLettersIsDropped", _strict, {"QUJD===="}, {"ABC"}, 1},
                    Row{"AnEmptyWriteDeliversNothing", _strict, {"", "QU", "", "JD"}, {"", "", "", "ABC"}, 1},
                    Row{"WhiteSpaceAloneDeliversNothing", _strict, {"\r\n", " \t"}, {"", ""}, 0}),
    ruleName);

INSTANTIATE_TEST_SUITE_P(
    Failures, Base64,
    testing::Values(
        Row{"ABadByteEndsDecodingForTheRestOfTheStream", _strict, {"QUJD", "QU*D", "QUJD"}, {"ABC", "QU*D", "QUJD"}, 2},
        Row{"ABadByteKeepsItsWholeWriteRaw", _strict, {"QUJDQUJD*"}, {"QUJDQUJD*"}, 2},
        Row{"TheRawWriteKeepsItsWhiteSpace", _strict, {"QU\r\n", " J*\r\n"}, {"", "QU J*\r\n"}, 2},
        Row{"CarriedCharactersGoAheadOfTheRawWrite", _strict, {"QUJ", "\r\n-"}, {"", "QUJ\r\n-"}, 2},
        Row{"NulIsABadByte", _strict, {string("QU\0D", 4)}, {string("QU\0D", 4)}, 2},
        Row{"AByteAbove127IsABadByte", _strict, {"QUJ\xff"}, {"QUJ\xff"}, 2},
        Row{"ABlockThatDecodesToNothingArrivesTwice", _strict, {"====\r\n"}, {"========\r\n"}, 2},
        Row{"TheFirstOfTheTwoIsTheCleanedForm", _strict, {"=\r\n==="}, {"=====\r\n==="}, 2},
        Row{"CarriedCharactersStandInBoth", _strict, {"==", "==\r\n"}, {"", "========\r\n"}, 2},
        Row{"LettersBehindLeadingPaddingArriveTwice", _strict, {"====QUJD"}, {"====QUJD====QUJD"}, 2},
        Row{"WhatWasCarriedOverAFailureArrivesAThirdTime",
            _strict,
            {"====QU", "x", "y"},
            {"========QU", "QUx", "y"},
            2},
        Row{"OnlyPaddingAfterDecodedWritesGivesUpToo", _strict, {"QUJD", "===="}, {"ABC", "========"}, 2}),
    ruleName);

INSTANTIATE_TEST_SUITE_P(
    Lax, Base64,
    testing::Values(Row{"BadBytesAreDropped", _lax, {"QU*JD"}, {"ABC"}, 1},
                    Row{"BadBytesMayBeCarriedAcross", _lax, {"Q*U", "-J-D"}, {"", "ABC"}, 1},
                    Row{"BadBytesAloneDeliverNothing", _lax, {"***\xff"}, {""}, 0},
                    Row{"ABlockThatDecodesToNothingStillGivesUp", _lax, {"=*===", "QUJD"}, {"=====*===", "QUJD"}, 2}),
    ruleName);

TEST(CodecBase64, AddsItsOperationsToASubclass)
{
    struct Counting : CodecBase64 {
        explicit Counting(MediaOut const& out) : CodecBase64(out) {}
        void end() override { ++ends; }
        int ends = 0;
    };
    Collected out;
    Counting codec(out.media());
    MediaOut& media = codec;
    media << string("QUJD");
    media.end();
    EXPECT_EQ(1, codec.status());
    EXPECT_EQ(1, codec.ends);
}

TEST(CodecBase64, WellFormedTextDoesNotDependOnItsCuts)
{
    string const text = "TWFu eSBo\r\nYW5kcyBt\tYWtlIG\nxpZ2h0IHdvcms\r\nu\r\nCg==\r\n";
    for (Pieces const& pieces : everyCut(text))
        EXPECT_EQ("Many hands make light work.\n", through<CodecBase64>(pieces)) << pieces.front();
}

// The strict codec decodes what came in earlier writes and gives the rest raw, behind what is carried.
TEST(CodecBase64, ABadByteMakesTheResultDependOnTheCut)
{
    struct {
        size_t at;
        char const* arrives;
    } const cuts[] = {
        {1, "QUJDR*VG"}, {2, "QUJDR*VG"}, {3, "QUJDR*VG"}, {4, "ABCR*VG"},
        {5, "ABCR*VG"},  {6, "QUJDR*VG"}, {7, "QUJDR*VG"},
    };
    string const text = "QUJDR*VG";
    for (auto const& cut : cuts)
        EXPECT_EQ(cut.arrives, through<CodecBase64>({text.substr(0, cut.at), text.substr(cut.at)})) << cut.at;
    EXPECT_EQ(text, through<CodecBase64>({text}));
    EXPECT_EQ("ABCR*VG", through<CodecBase64>(singleBytes(text)));
}

TEST(CodecBase64, ALineLongerThanTheOutputBufferIsDecodedWhole)
{
    string text, decoded;
    for (int i = 0; i < 50000; ++i) {
        text += "QUJD";
        decoded += "ABC";
    }
    EXPECT_EQ(decoded, through<CodecBase64>({text + "\r\n"}));
}

TEST(CodecBase64, EndDropsABegunGroupAndIsPassedOn)
{
    Collected out;
    CodecBase64 codec(out.media());
    codec.write(bytes("QUJDR"));
    codec.end();
    EXPECT_EQ("ABC", out.take());
    EXPECT_EQ(1, out.ends());
    EXPECT_EQ(1, codec.status());
}

TEST(CodecBase64, IsStrictAndHasDecodedNothingAtFirst)
{
    CodecBase64 codec;
    EXPECT_TRUE(codec.strict());
    EXPECT_EQ(0, codec.status());
}

TEST(CodecBase64, ADownstreamCanBeAttachedLater)
{
    Collected out;
    CodecBase64 codec;
    codec.attach(out.media());
    unsigned char const text[] = {'Q', 'U', 'J', 'D'};
    codec.write(text, 4);
    EXPECT_EQ("ABC", out.take());
}

TEST(CodecBase64, CopiesShareWhatIsCarried)
{
    Collected out;
    CodecBase64 first(out.media());
    CodecBase64 second(first);
    first.write(bytes("QU"));
    second.write(bytes("JD"));
    EXPECT_EQ("ABC", out.take());
    EXPECT_EQ(1, first.status());
}

TEST(CodecBase64, OperationsOnANullHandleThrow)
{
    CodecBase64 codec;
    codec.release();
    auto const thrown = [](auto operation) -> string {
        try {
            operation();
        } catch (MediaException const& e) {
            return e.message() + " " + std::to_string(e.code()) + " " + e.fileName();
        }
        return "nothing";
    };
    EXPECT_EQ("MediaException 1 Base64Codec", thrown([&] { codec.strict(false); }));
    EXPECT_EQ("MediaException 1 Base64Codec", thrown([&] { (void)codec.strict(); }));
    EXPECT_EQ("MediaException 1 Base64Codec", thrown([&] { (void)codec.status(); }));
}

} // namespace
} // namespace Velmara
