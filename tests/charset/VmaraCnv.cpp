#include <velmara/Velmara.h>

#include <cerrno>

#include <gtest/gtest.h>

namespace Velmara {
namespace {

using std::string;

/// One call with a copy of the input and `room` bytes of output.
struct Call {
    Call(cVmaraCnv* handle, string const& input, size_t room)
        : in(input), bytes(room, '\0'), inLeft(in.size()), outLeft(room)
    {
        char* from = &in[0];
        char* to = &bytes[0];
        errno = 0;
        result = vmaracnv(handle, &from, &inLeft, &to, &outLeft);
        error = errno;
        EXPECT_EQ(in.size() - inLeft, static_cast<size_t>(from - &in[0]));
        EXPECT_EQ(room - outLeft, static_cast<size_t>(to - &bytes[0]));
        bytes.resize(room - outLeft);
    }

    string in, bytes;
    size_t inLeft, outLeft;
    int result, error;
};

class VmaraCnv : public testing::Test {
protected:
    ~VmaraCnv() override { vmaracnv_close(latin1); }
    cVmaraCnv* latin1 = vmaracnv_open("ISO-8859-1", "UTF-8");
};

TEST_F(VmaraCnv, ConvertsAllThatFits)
{
    Call const call(latin1, "a\xe4", 10);
    EXPECT_EQ(0, call.result);
    EXPECT_EQ("aä", call.bytes);
    EXPECT_EQ(0u, call.inLeft);
}

TEST_F(VmaraCnv, WithoutRoomPendingInputStaysWhereItIs)
{
    Call const call(latin1, "ab", 0);
    EXPECT_EQ(-1, call.result);
    EXPECT_EQ(E2BIG, call.error);
    EXPECT_EQ(2u, call.inLeft);
}

TEST_F(VmaraCnv, WithoutRoomAndWithoutInputAllIsWell)
{
    EXPECT_EQ(0, Call(latin1, "", 0).result);
}

TEST_F(VmaraCnv, WhatDoesNotFitComesFirstAtTheNextCall)
{
    Call const first(latin1, "\xe4\xe5", 1); // a piece of one byte for a room of one
    EXPECT_EQ(-1, first.result);
    EXPECT_EQ("\xc3", first.bytes);
    EXPECT_EQ(1u, first.inLeft);
    Call const none(latin1, "", 0);
    EXPECT_EQ(-1, none.result) << "output is pending";
    EXPECT_EQ(E2BIG, none.error);
    Call const rest(latin1, "", 5);
    EXPECT_EQ(0, rest.result);
    EXPECT_EQ("\xa4", rest.bytes);
}

TEST_F(VmaraCnv, APieceIsAQuarterOfTheRoomAndOneByte)
{
    // 9 bytes of room: pieces of 3, 1, 1 and 1 bytes, which leave 3, 1 and no room.
    Call const call(latin1, string(8, '\xe4'), 9);
    EXPECT_EQ(-1, call.result);
    EXPECT_EQ(9u, call.bytes.size());
    EXPECT_EQ(3u, call.inLeft);
}

TEST_F(VmaraCnv, TakesAsMuchInputAsOutputAllows)
{
    Call const call(latin1, string(5000, 'a'), 4000);
    EXPECT_EQ(-1, call.result);
    EXPECT_EQ(string(4000, 'a'), call.bytes);
    EXPECT_EQ(1000u, call.inLeft);
}

TEST_F(VmaraCnv, ExactlyFillingTheRoomIsSuccess)
{
    EXPECT_EQ(0, Call(latin1, "ab", 2).result);
}

TEST(VmaraCnvOpen, TheSourceComesFirst)
{
    cVmaraCnv* handle = vmaracnv_open("UTF-8", "ISO-8859-1");
    EXPECT_EQ("\xe4", Call(handle, "ä", 5).bytes);
    vmaracnv_close(handle);
}

TEST(VmaraCnvOpen, AnUnknownNameGivesNull)
{
    EXPECT_EQ(nullptr, vmaracnv_open("no-such-charset", "UTF-8"));
    EXPECT_EQ(nullptr, vmaracnv_open("UTF-8", "no-such-charset"));
}

TEST(VmaraCnvOpen, EqualNamesCopy)
{
    cVmaraCnv* handle = vmaracnv_open("utf-8", "UTF-8");
    EXPECT_EQ("\xff", Call(handle, "\xff", 5).bytes);
    vmaracnv_close(handle);
}

TEST(VmaraCnvOpen, BadBytesAreMarked)
{
    cVmaraCnv* handle = vmaracnv_open("EUC-KR", "UTF-8");
    EXPECT_EQ("a\uFFFDb", Call(handle,
                               "a\xff"
                               "b",
                               20)
                              .bytes);
    vmaracnv_close(handle);
}

TEST(VmaraCnvSeams, AnUnfinishedCharacterWaitsUnseen)
{
    cVmaraCnv* handle = vmaracnv_open("EUC-KR", "UTF-8");
    Call const half(handle, "\xbe", 9);
    EXPECT_EQ(0, half.result);
    EXPECT_EQ("", half.bytes);
    EXPECT_EQ("안", Call(handle, "\xc8", 9).bytes);
    Call(handle, "\xbe", 9);
    vmaracnv_close(handle);
}

TEST(VmaraCnvNull, FailsAndCloses)
{
    errno = 0;
    EXPECT_EQ(-1, vmaracnv(nullptr, nullptr, nullptr, nullptr, nullptr));
    EXPECT_EQ(E2BIG, errno);
    vmaracnv_close(nullptr);
}

} // namespace
} // namespace Velmara
