#include <velmara/StringOperations.h>

#include <gtest/gtest.h>

#include <clocale>
#include <memory>

namespace Velmara {
namespace {

TEST(StringOperations, ComparesWithoutRegardToAsciiCase)
{
    EXPECT_TRUE(stringCompareNoCase("Content-Type", "content-type", 0));
    EXPECT_FALSE(stringCompareNoCase("Content-Type", "content-typ", 0));
    EXPECT_FALSE(stringCompareNoCase("a[", "a{", 0)); // one bit apart, but no letters
    EXPECT_FALSE(stringCompareNoCase("\xC4", "\xE4", 0));
}

TEST(StringOperations, ComparesTheFirstBytesLikeStrncasecmp)
{
    EXPECT_TRUE(stringCompareNoCase("begin 644", "BEGIN ", 6));
    EXPECT_FALSE(stringCompareNoCase("beg", "begin", 4));
    EXPECT_TRUE(stringCompareNoCase("beg", "BEG", 40));
    EXPECT_TRUE(stringCompareNoCase(std::string("ab\0c", 4), std::string("ab\0d", 4), 4));
}

TEST(StringOperations, ANullPointerIsAnEmptyText)
{
    char const* const none = nullptr;
    EXPECT_TRUE(stringCompareNoCase(none, "", 0));
    EXPECT_TRUE(stringCompareNoCase(none, std::string(), 3));
    EXPECT_FALSE(stringCompareNoCase(none, "a", 1));
}

TEST(StringOperations, ComparingTheFirstBytesLooksAtNoMore)
{
    // On the heap, where a sanitizer sees a step behind the end.
    std::unique_ptr<char[]> const bytes(new char[4]{'E', 'n', 'd', 's'});
    EXPECT_TRUE(stringCompareNoCase(bytes.get(), "ENDS", 4));
    EXPECT_TRUE(stringCompareNoCase(reinterpret_cast<unsigned char const*>(bytes.get()), "end", 3));
    EXPECT_FALSE(stringCompareNoCase(bytes.get(), std::string("ENDx"), 4));
}

TEST(StringOperations, WholeStringsCompareBehindANulToo)
{
    EXPECT_FALSE(stringCompareNoCase(std::string("ab\0c", 4), std::string("ab\0d", 4), 0));
}

TEST(StringOperations, EveryMixOfStringTypesCompares)
{
    char const* c = "Ab";
    auto const* u = reinterpret_cast<unsigned char const*>("aB");
    std::string const s = "AB";
    EXPECT_TRUE(stringCompareNoCase(c, c, 0));
    EXPECT_TRUE(stringCompareNoCase(c, s, 0));
    EXPECT_TRUE(stringCompareNoCase(s, c, 0));
    EXPECT_TRUE(stringCompareNoCase(s, s, 0));
    EXPECT_TRUE(stringCompareNoCase(u, u, 0));
    EXPECT_TRUE(stringCompareNoCase(u, c, 0));
    EXPECT_TRUE(stringCompareNoCase(c, u, 0));
    EXPECT_TRUE(stringCompareNoCase(u, s, 0));
    EXPECT_TRUE(stringCompareNoCase(s, u, 0));
}

TEST(StringOperations, LowersAsciiLettersOnly)
{
    EXPECT_EQ("a[\xC4z0", stringToLower("A[\xC4Z0"));
    std::string text = "ABC";
    stringToLowerNoCopy(text);
    EXPECT_EQ("abc", text);
}

TEST(StringOperations, CopyToLowerAppendsAPiece)
{
    std::string to = "X";
    copyStringToLower(std::string("ABCDEF"), to, 1, 2);
    EXPECT_EQ("Xbc", to);
    copyStringToLower("GHI", to, 1, static_cast<unsigned long>(-1));
    EXPECT_EQ("Xbchi", to);
    copyStringToLower(std::string("ABC"), to, 3, 1);
    copyStringToLower(std::string("ABC"), to, 99, 1);
    EXPECT_EQ("Xbchi", to);
    copyStringToLower(to, to, 0, 2);
    EXPECT_EQ("Xbchixb", to);
}

TEST(StringOperations, TrimsTheFourWhiteSpaceBytes)
{
    std::string left = " \t\r\n\v x ";
    stringLeftTrim(left);
    EXPECT_EQ("\v x ", left);
    std::string right = " x\f \t\r\n";
    stringRightTrim(right);
    EXPECT_EQ(" x\f", right);
    std::string all = " \r\n";
    stringRightTrim(all);
    EXPECT_EQ("", all);
}

TEST(StringOperations, WidensEachByte)
{
    EXPECT_EQ(std::wstring(L"a\x00FF") + L'\0', stringToWstring(std::string("a\xFF\0", 3)));
}

TEST(StringOperations, FindsBytesWithTheHighBit)
{
    EXPECT_FALSE(stringContains8bitChar("abc\x7F"));
    EXPECT_TRUE(stringContains8bitChar("abc\x80"));
    EXPECT_FALSE(stringContains8bitChar(""));
}

TEST(StringOperations, MinTakesTheMixesOfWidths)
{
    EXPECT_EQ(1u, min(1u, 2u));
    EXPECT_EQ(2ul, min(1ul << 40, 2u));
    EXPECT_EQ(1ul << 40, min(1ul << 40, 1ul << 41));
    EXPECT_EQ(1ul << 40, min(1ul << 41, 1ul << 40));
}

} // namespace
} // namespace Velmara
