#include <gtest/gtest.h>

#include "facts/Columns.h"

using namespace VelmaraCommand;

TEST(Columns, IdeographsTakeTwoAndMarksNone)
{
    EXPECT_EQ(3u, columnsOf("abc"));
    EXPECT_EQ(1u, columnsOf("\xC3\xA9"));
    EXPECT_EQ(4u, columnsOf("\xE6\x97\xA5\xE6\x9C\xAC"));
    EXPECT_EQ(1u, columnsOf("e\xCC\x81"));
}

TEST(Columns, ClippedTextEndsInDotsWithinItsColumns)
{
    EXPECT_EQ("abcdef", clipped("abcdef", 6));
    EXPECT_EQ("ab...", clipped("abcdef", 5));
    EXPECT_EQ("\xE6\x97\xA5...", clipped("\xE6\x97\xA5\xE6\x9C\xAC\xE6\x97\xA5", 5)) << "no character is cut";
}

TEST(Columns, PaddedTextTakesAllItsColumns)
{
    EXPECT_EQ("ab  ", padded("ab", 4));
    EXPECT_EQ("\xE6\x97\xA5  ", padded("\xE6\x97\xA5", 4));
    EXPECT_EQ("a...", padded("abcde", 4));
}

TEST(Columns, TextIsBrokenAtBlanksWhereThereAreAny)
{
    using Lines = std::vector<std::string>;
    EXPECT_EQ((Lines{"one two", "three"}), wrapped("one two three", 8, 3));
    EXPECT_EQ((Lines{"abcd", "efgh"}), wrapped("abcdefgh", 4, 3));
    EXPECT_EQ((Lines{"one", "two", "..."}), wrapped("one two three four", 3, 3));
    EXPECT_EQ((Lines{"one two", "three..."}), wrapped("one two three four", 8, 2));
    EXPECT_EQ(Lines{}, wrapped("", 8, 3));
}

TEST(Columns, SizesAreShortAndInUnitsOfThousand)
{
    EXPECT_EQ("0 bytes", shownSize(0));
    EXPECT_EQ("1 byte", shownSize(1));
    EXPECT_EQ("999 bytes", shownSize(999));
    EXPECT_EQ("1.0 kB", shownSize(1000));
    EXPECT_EQ("1.5 kB", shownSize(1536));
    EXPECT_EQ("999.9 kB", shownSize(999949));
    EXPECT_EQ("1.0 MB", shownSize(999950)) << "never 1000.0";
    EXPECT_EQ("12.0 GB", shownSize(12000000000ull));
    EXPECT_EQ("1.2 TB", shownSize(1234567890123ull));
    EXPECT_EQ("18446744.1 TB", shownSize(~0ull)) << "there is no larger unit";
}
