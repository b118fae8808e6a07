#include "facts/Text.h"

#include <gtest/gtest.h>

namespace VelmaraCommand {
namespace {

TEST(Text, HtmlKnowsNoVerticalTab)
{
    for (char c : {' ', '\t', '\n', '\f', '\r'}) {
        EXPECT_TRUE(isSpace(c));
        EXPECT_TRUE(isHtmlSpace(c));
    }
    EXPECT_TRUE(isSpace('\v'));
    EXPECT_FALSE(isHtmlSpace('\v'));
}

TEST(Text, BytesBeyondAsciiAndNulsAreNoSpace)
{
    for (char c : {'\0', '\x08', '\x0E', '\x1F', '\x85', '\xA0', '\xFF'}) EXPECT_FALSE(isSpace(c)) << int{c};
}

TEST(Text, BeginningsAndEndsMayBeAllOfIt)
{
    EXPECT_TRUE(startsWith("abc", "ab"));
    EXPECT_TRUE(startsWith("abc", "abc"));
    EXPECT_TRUE(startsWith("abc", ""));
    EXPECT_FALSE(startsWith("abc", "abcd"));
    EXPECT_FALSE(startsWith("", "a"));
    EXPECT_TRUE(endsWith("abc", "bc"));
    EXPECT_TRUE(endsWith("abc", "abc"));
    EXPECT_TRUE(endsWith("abc", ""));
    EXPECT_FALSE(endsWith("abc", "xabc"));
    EXPECT_FALSE(endsWith("abc", "ab"));
}

TEST(Text, OfABufferHasItsNuls)
{
    EXPECT_EQ(std::string("a\0b", 3), stringOf(Velmara::Buffer("a\0b", 3, true)));
    EXPECT_EQ("", stringOf(Velmara::Buffer()));
}

} // namespace
} // namespace VelmaraCommand
