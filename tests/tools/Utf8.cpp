#include "facts/Utf8.h"

#include <string>

#include <gtest/gtest.h>

namespace VelmaraCommand {
namespace {

struct CharacterRow {
    char const* rule;
    std::string text;
    char32_t value;
    unsigned int length;
};

class FirstCharacter : public testing::TestWithParam<CharacterRow> {};

TEST_P(FirstCharacter, IsReadStrictly)
{
    CharacterRow const& row = GetParam();
    Utf8Character const character = firstCharacter(row.text);
    EXPECT_EQ(row.length, character.length);
    EXPECT_EQ(row.value, character.value);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, FirstCharacter,
    testing::Values(CharacterRow{"Ascii", "ab", U'a', 1}, CharacterRow{"Nul", std::string(1, '\0'), 0, 1},
                    CharacterRow{"TwoBytes", "\xC3\xA9x", U'\u00E9', 2},
                    CharacterRow{"ThreeBytes", "\xE2\x82\xAC", U'\u20AC', 3},
                    CharacterRow{"FourBytes", "\xF0\x9F\x98\x80", U'\U0001F600', 4},
                    CharacterRow{"ContinuationFirst", "\x80", 0, 0}, CharacterRow{"CutShort", "\xE2\x82", 0, 0},
                    CharacterRow{"LongSlash", "\xC0\xAF", 0, 0}, CharacterRow{"LongSlashOfThree", "\xE0\x80\xAF", 0, 0},
                    CharacterRow{"LongSlashOfFour", "\xF0\x80\x80\xAF", 0, 0},
                    CharacterRow{"Surrogate", "\xED\xA0\x80", 0, 0},
                    CharacterRow{"PastTheLastPlane", "\xF4\x90\x80\x80", 0, 0}, CharacterRow{"ByteFF", "\xFF", 0, 0}),
    [](auto const& row) { return std::string(row.param.rule); });

TEST(SteersText, ControlsAndDirectionsDoLettersDoNot)
{
    for (char32_t c :
         {U'\0', U'\x1B', U'\x7F', U'\u0085', U'\u061C', U'\u200E', U'\u2028', U'\u202E', U'\u2066', U'\u2069'})
        EXPECT_TRUE(steersText(c)) << static_cast<unsigned int>(c);
    for (char32_t c : {U' ', U'~', U'\u00A0', U'\u05D0', U'\u200D', U'\u202F', U'\u206A', U'\U0001F600'})
        EXPECT_FALSE(steersText(c)) << static_cast<unsigned int>(c);
}

TEST(BeginningOf, NeverCutsACharacterInTwo)
{
    EXPECT_EQ("abc", beginningOf("abc", 3));
    EXPECT_EQ("ab", beginningOf("abc", 2));
    EXPECT_EQ("a", beginningOf("a\xC3\xA9", 2));
    EXPECT_EQ("a", beginningOf("a\xF0\x9F\x98\x80", 4));
    EXPECT_EQ("a\xF0\x9F\x98\x80", beginningOf("a\xF0\x9F\x98\x80z", 5));
    EXPECT_EQ("", beginningOf("\xC3\xA9", 1));
}

TEST(BeginningOf, DoesNotSearchFarInBytesThatAreNoText)
{
    std::string const text(100, '\x80');
    EXPECT_EQ(47u, beginningOf(text, 50).size());
}

} // namespace
} // namespace VelmaraCommand
