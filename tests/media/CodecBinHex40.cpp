#include <velmara/Velmara.h>

#include <gtest/gtest.h>

#include "support/Collected.h"
#include "support/Rule.h"

namespace Velmara {
namespace {

using std::string;

/// Six bits a character, the way of the format, without line ends.
string _text(string const& stream)
{
    char const alphabet[] = "!\"#$%&'()*+,-012345689@ABCDEFGHIJKLMNPQRSTUVXYZ[`abcdefhijklmpqr";
    string text;
    unsigned bits = 0, count = 0;
    for (unsigned char byte : stream) {
        bits = bits << 8 | byte;
        for (count += 8; count >= 6; count -= 6) text += alphabet[bits >> (count - 6) & 63];
    }
    if (count != 0) text += alphabet[bits << (6 - count) & 63];
    return text;
}

/// The stream up to the data fork of a file named "ab" (checksums are not looked at).
string _header(unsigned dataLength)
{
    string header("\2ab\0TEXTttxt\1\2", 14);
    for (int shift : {24, 16, 8, 0}) header += static_cast<char>(dataLength >> shift);
    return header + string("\0\0\0\3", 4) + "\x12\x34";
}

string _file(unsigned dataLength, string const& rest)
{
    return ":" + _text(_header(dataLength) + rest) + ":";
}

string const _notice = "(This file must be converted with BinHex 4.0)\r\n";

// By another encoder, with true checksums: name "a", data fork "Cat", no resource fork.
string const _catFile = "\r\n:!@%!9%9B9(4dH(3!N!8$!*!%DLe$BA4#p3!!:\r\n";

struct Row {
    char const* rule;
    Pieces writes;
    string arrives;
};

class BinHex : public testing::TestWithParam<Row> {};

TEST_P(BinHex, GivesTheDataFork)
{
    EXPECT_EQ(GetParam().arrives, through<CodecBinHex40>(GetParam().writes, true));
}

INSTANTIATE_TEST_SUITE_P(Start, BinHex,
                         testing::Values(Row{"WithNotice", {_notice, _file(3, "Cat")}, "Cat"},
                                         Row{"NoticeInAnyCaseOfAnyVersionBehindWhiteSpace",
                                             {" \t\r\n(THIS FILE MUST BE CONVERTED WITH BINHEX!\r\r\n",
                                              _file(3, "Cat")},
                                             "Cat"},
                                         Row{"WithoutNotice", {_file(3, "Cat")}, "Cat"},
                                         Row{"WhiteSpaceBeforeTheColon", {"\r\n\t\v\f ", " " + _file(3, "Cat")}, "Cat"},
                                         Row{"OtherTextEndsDecodingForGood", {"Hello\r\n", _file(3, "Cat")}, ""},
                                         Row{"OtherTextBehindTheNoticeToo", {_notice, "x", _file(3, "Cat")}, ""},
                                         Row{"AnEmptyWriteAheadOfTheColon", {"", _file(3, "Cat")}, "Cat"}),
                         ruleName);

INSTANTIATE_TEST_SUITE_P(
    Notice, BinHex,
    testing::Values(
        Row{"WhatFollowsItInItsWriteWaitsForTheNext", {_notice + _file(3, "Cat"), ""}, "Cat"},
        Row{"WithoutAFurtherWriteItIsLost", {_notice + _file(3, "Cat")}, ""},
        Row{"ACutOneEndsDecodingForGood", {_notice.substr(0, 39), _notice.substr(39), _file(3, "Cat")}, ""},
        Row{"OneWithoutItsLineEndEndsDecodingForGood",
            {_notice.substr(0, 44), _notice.substr(44), _file(3, "Cat")},
            ""},
        Row{"OneWithANulEndsDecodingForGood", {_notice.substr(0, 42) + string(1, '\0') + "\r\n", _file(3, "Cat")}, ""},
        Row{"OneBehindAnEmptyWriteEndsDecodingForGood", {"", _notice, _file(3, "Cat")}, ""},
        Row{"OneBehindAWriteOfWhiteSpaceEndsDecodingForGood", {"\r\n", _notice, _file(3, "Cat")}, ""}),
    ruleName);

INSTANTIATE_TEST_SUITE_P(Runs, BinHex,
                         testing::Values(Row{"MarkAnd0IsTheMarkItself",
                                             {_file(3, string("a\x90\0b", 4))},
                                             "a\x90"
                                             "b"},
                                         Row{"MarkAndCountRepeatTheByteBefore", {_file(4, "\x78\x90\x04")}, "xxxx"},
                                         Row{"MarkAnd1DoesNothing", {_file(2, "x\x90\x01y")}, "xy"},
                                         Row{"ARunOfMarks", {_file(3, string("\x90\0\x90\3", 4))}, "\x90\x90\x90"},
                                         Row{"ARunMayFollowARun", {_file(5, "x\x90\3\x90\3")}, "xxxxx"},
                                         Row{"TheLongestRun", {_file(255, "x\x90\xff")}, string(255, 'x')},
                                         Row{"ARunMayReachFromTheHeaderIntoTheFork",
                                             {":" + _text(string("\1a\0TEXTttxt\1\2\0\0\0\3\0\0\0\0\7\7\x90\4", 25)) +
                                              ":"},
                                             "\7\7\7"},
                                         Row{"ARunMayMakeTheWholeHeader",
                                             {":" +
                                              _text(string("\0\x90\x17"
                                                           "abc",
                                                           6)) +
                                              ":"},
                                             ""}),
                         ruleName);

INSTANTIATE_TEST_SUITE_P(
    End, BinHex,
    testing::Values(
        Row{"ResourceForkAndChecksumsAreDropped", {_file(3, "Cat" + string(20000, 'r'))}, "Cat"},
        Row{"ADataForkOf0DeliversNothing", {_file(0, "Cat")}, ""},
        Row{"AShorterForkThanDeclaredGivesWhatIsThere", {_file(99, "Cat")}, "Cat"},
        Row{"ABadByteEndsBehindWhatWasDecoded", {":" + _text(_header(6) + "CatCat") + "~" + _text("CatCat")}, "CatCat"},
        Row{"ABadByteInTheHeaderGivesNothing", {":" + _text(_header(3)).substr(0, 20) + "~" + _text("CatCat")}, ""},
        Row{"TextBehindTheClosingColonIsIgnored", {_file(6, "Cat") + _text("Cat")}, "Cat"},
        Row{"WithoutTheColonTheEndDeliversTheRest", {":" + _text(_header(3) + "Cat")}, "Cat"}),
    ruleName);

TEST(CodecBinHex40, TheClosingColonDeliversWithoutAnEnd)
{
    EXPECT_EQ("Cat", through<CodecBinHex40>({_file(3, "Cat")}));
    EXPECT_EQ("", through<CodecBinHex40>({":" + _text(_header(3) + "Cat")}));
}

TEST(CodecBinHex40, PlainBytesAreTakenLikeABuffer)
{
    Collected out;
    CodecBinHex40 codec(out.media());
    string const text = _file(3, "Cat");
    codec.write(reinterpret_cast<unsigned char const*>(text.data()), static_cast<unsigned>(text.size()));
    EXPECT_EQ("Cat", out.take());
}

TEST(CodecBinHex40, AnEndBehindTheHeaderAloneWritesNothing)
{
    Collected out;
    CodecBinHex40 codec(out.media());
    codec.write(bytes(":" + _text(_header(3))));
    codec.end();
    EXPECT_EQ(0, out.writes());
}

TEST(CodecBinHex40, TheResultDoesNotDependOnTheCuts)
{
    for (Pieces const& pieces : everyCut(_catFile)) EXPECT_EQ("Cat", through<CodecBinHex40>(pieces)) << pieces.front();
    string text = _file(14, string("a\x90\5b\x90\0\x90\4xyz", 11) + "resource");
    for (size_t at = 7; at < text.size(); at += 11) text.insert(at, "\r\n");
    for (Pieces const& pieces : everyCut(text))
        EXPECT_EQ("aaaaab\x90\x90\x90\x90xyz" + string("r"), through<CodecBinHex40>(pieces)) << pieces.front();
}

TEST(CodecBinHex40, BehindTheNoticeACutMayFallAnywhere)
{
    for (Pieces pieces : everyCut(_catFile)) {
        pieces.insert(pieces.begin(), _notice);
        EXPECT_EQ("Cat", through<CodecBinHex40>(pieces)) << pieces[1];
    }
}

TEST(CodecBinHex40, ALongForkIsPassedOnInPieces)
{
    string fork;
    for (int i = 0; i < 20000; ++i) fork += static_cast<char>('a' + i % 23);
    Collected out;
    CodecBinHex40 codec(out.media());
    codec.write(bytes(":" + _text(_header(20000) + fork)));
    EXPECT_EQ(2, out.writes());
    EXPECT_EQ(fork.substr(0, 2 * 8192), out.take());
    codec.end();
    EXPECT_EQ(fork.substr(2 * 8192), out.take());
}

TEST(CodecBinHex40, EndIsNotPassedOn)
{
    Collected out;
    CodecBinHex40 codec;
    codec.attach(out.media());
    codec.write(bytes(_catFile));
    CodecBinHex40(codec).end();
    EXPECT_EQ("Cat", out.take());
    EXPECT_EQ(0, out.ends());
}

} // namespace
} // namespace Velmara
