#include "scan/MboxReader.h"

#include <string>

#include <gtest/gtest.h>

#include "support/CutStream.h"
#include "support/Rule.h"

namespace VelmaraCommand {
namespace {

/// Messages as [...] and separators as they stand, in the order of the file.
std::string split(std::string const& text, std::size_t most)
{
    CutStream stream(text, most);
    MboxReader reader(stream);
    std::string all;
    while (reader.nextMessage()) {
        all += reader.separator();
        all += '[';
        for (std::string_view bytes = reader.nextBytes(); !bytes.empty(); bytes = reader.nextBytes()) all += bytes;
        all += ']';
    }
    return all + reader.separator();
}

#define DATE "Fri Jul  8 12:08:34 2011"
#define FROM "From a@b.example " DATE "\n"

struct Row {
    char const* rule;
    std::string file, parts;
};

class MboxReaderTest : public testing::TestWithParam<Row> {};

TEST_P(MboxReaderTest, SplitsHoweverTheStreamIsCut)
{
    Row const& row = GetParam();
    for (std::size_t most : {1u, 2u, 7u, 1000000u}) EXPECT_EQ(row.parts, split(row.file, most)) << most;
}

std::string const nuls("a\0\0\nb", 5);

INSTANTIATE_TEST_SUITE_P(
    Files, MboxReaderTest,
    testing::Values(
        Row{"AnEmptyFileHasNoMessage", "", ""},
        Row{"MessagesAreWhatStandsBetweenFromLines", FROM "A: 1\n\nx\n\n" FROM "B: 2\n\ny\n",
            FROM "[A: 1\n\nx\n]\n" FROM "[B: 2\n\ny\n]"},
        Row{"TheEmptyLineInFrontOfAFromLineIsNotTheMessages", FROM "x\n\n\n" FROM "y", FROM "[x\n\n]\n" FROM "[y]"},
        Row{"TheEmptyLineAtTheEndIsNotTheMessages", FROM "x\n\n", FROM "[x\n]\n"},
        Row{"LinesMayEndInCarriageReturnAndLineFeed",
            "From a@b.example " DATE "\r\nx\r\n\r\nFrom a@b.example " DATE "\r\ny\r\n\r\n",
            "From a@b.example " DATE "\r\n[x\r\n]\r\nFrom a@b.example " DATE "\r\n[y\r\n]\r\n"},
        Row{"AFromLineWithoutAnEmptyLineInFrontIsText", FROM "x\n" FROM "y\n", FROM "[x\n" FROM "y\n]"},
        Row{"FromWithoutADateIsText", FROM "x\n\nFrom here on we go\n", FROM "[x\n\nFrom here on we go\n]"},
        Row{"AQuotedFromLineStaysAsItStands", FROM "x\n\n>" FROM "y\n", FROM "[x\n\n>" FROM "y\n]"},
        Row{"WhatStandsInFrontOfTheFirstFromLineIsAMessage", "tail\n\n" FROM "x\n", "[tail\n]\n" FROM "[x\n]"},
        Row{"AFileCutInAFromLineKeepsItAsText", FROM "x\n\nFrom a@b.example Fri Ju",
            FROM "[x\n\nFrom a@b.example Fri Ju]"},
        Row{"AFileCutBehindAFromLineHasAnEmptyMessage", FROM "x\n\n" FROM, FROM "[x\n]\n" FROM "[]"},
        Row{"AFromLineNeedNoLineEndAtTheEndOfTheFile", FROM "x\n\nFrom a@b.example " DATE,
            FROM "[x\n]\nFrom a@b.example " DATE "[]"},
        Row{"EmptyMessagesAreMessages", FROM "\n" FROM "\n" FROM "\n", FROM "[]\n" FROM "[]\n" FROM "[]\n"},
        Row{"AnEmptyLineMayBeginTheFile", "\n" FROM "x\n", "\n" FROM "[x\n]"},
        Row{"NulsAreOrdinaryBytes", FROM + nuls + "\n\n" FROM + nuls, FROM "[" + nuls + "\n]\n" FROM "[" + nuls + "]"},
        Row{"ALoneCarriageReturnIsNoEmptyLine", FROM "x\r\rFrom a@b.example " DATE "\ny",
            FROM "[x\r\rFrom a@b.example " DATE "\ny]"},
        Row{"AnEmptyLineOfCarriageReturnsIsText", FROM "x\n\r\r\n" FROM "y", FROM "[x\n\r\r\n" FROM "y]"}),
    Velmara::ruleName);

TEST(MboxReader, SplitsLargerFilesThanItsWindow)
{
    std::string file, parts;
    for (int i = 0; i < 40; ++i) {
        std::string const message(static_cast<std::size_t>(i) * 997, static_cast<char>('a' + i % 26));
        file += FROM + message + "\n\n";
        parts += FROM "[" + message + "\n]\n";
    }
    for (std::size_t most : {1000u, 4096u, 65536u, 1000000u}) EXPECT_EQ(parts, split(file, most)) << most;
}

TEST(MboxReader, TellsWhereAMessageBegins)
{
    std::string const file = FROM "x\n\n" FROM "y\n";
    CutStream stream(file, 3);
    MboxReader reader(stream);
    ASSERT_TRUE(reader.nextMessage());
    EXPECT_EQ(std::string(FROM).size(), reader.offset());
    ASSERT_TRUE(reader.nextMessage()); // what was not read is passed over
    EXPECT_EQ(file.find('y'), reader.offset());
    EXPECT_FALSE(reader.nextMessage());
    EXPECT_FALSE(reader.nextMessage());
}

struct LineRow {
    char const* rule;
    char const* line;
    bool is;
};

class FromLineTest : public testing::TestWithParam<LineRow> {};

TEST_P(FromLineTest, IsKnownByItsDate)
{
    EXPECT_EQ(GetParam().is, looksLikeFromLine(GetParam().line)) << GetParam().line;
}

INSTANTIATE_TEST_SUITE_P(
    Lines, FromLineTest,
    testing::Values(LineRow{"WithSeconds", "From a@b.example Fri Jul  8 12:08:34 2011\n", true},
                    LineRow{"WithoutSeconds", "From a@b.example Fri Jul 8 12:08 2011\r\n", true},
                    LineRow{"WithAZoneInFrontOfTheYear", "From a@b.example Fri Jul 8 12:08:34 +0000 2011", true},
                    LineRow{"WithTwoZoneWords", "From a@b.example Fri Jul 8 12:08:34 MET DST 2011", true},
                    LineRow{"WithAZoneBehindTheYear", "From a@b.example Fri Jul 8 12:08:34 2011 -0700", true},
                    LineRow{"WithAPathBehindTheDate", "From ann Fri Jul 8 12:08:34 2011 remote from host", true},
                    LineRow{"WithTheDayFirst", "From a@b.example Fri, 8 Jul 2011 12:08:34 +0000", true},
                    LineRow{"WithoutASender", "From Fri Jul 8 12:08:34 2011", true},
                    LineRow{"WithBlanksInAQuotedSender", "From \"a b\"@c.example Fri Jul 8 12:08:34 2011", true},
                    LineRow{"WithADashAsSender", "From - Fri Jul 8 12:08:34 2011", true},
                    LineRow{"NotASentenceWithADate", "From what I saw Fri Jul 8 12:08:34 2011", false},
                    LineRow{"NotWithoutATime", "From a@b.example Fri Jul 8 2011", false},
                    LineRow{"NotWithoutAYear", "From a@b.example Fri Jul 8 12:08:34", false},
                    LineRow{"NotWithAnUnknownDay", "From a@b.example Fre Jul 8 12:08:34 2011", false},
                    LineRow{"NotInLowerCase", "from a@b.example Fri Jul 8 12:08:34 2011", false},
                    LineRow{"NotAHeader", "From: a@b.example", false}, LineRow{"NotAnEmptyLine", "", false}),
    Velmara::ruleName);

TEST(FromLine, HasAtMostAThousandBytes)
{
    std::string const date = " " DATE;
    EXPECT_TRUE(looksLikeFromLine("From " + std::string(995 - date.size(), 'a') + date));
    EXPECT_FALSE(looksLikeFromLine("From " + std::string(996 - date.size(), 'a') + date));
}

} // namespace
} // namespace VelmaraCommand
