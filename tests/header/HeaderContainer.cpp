#include <velmara/HeaderContainer.h>

#include <gtest/gtest.h>

#include <velmara/ContentType.h>
#include <velmara/Exception.h>

#include "support/HeaderText.h"

namespace Velmara {
namespace {

HeaderContainer read(std::string const& block)
{
    BufferMediaIn in(block);
    return HeaderContainer(in);
}

std::string withCrLf(std::string const& text)
{
    std::string converted;
    for (char c : text) converted += c == '\n' ? std::string("\r\n") : std::string(1, c);
    return converted;
}

struct Row {
    char const* rule;
    std::string block;
    std::string headers;
};

class HeaderBlock : public testing::TestWithParam<Row> {};

TEST_P(HeaderBlock, IsReadAs)
{
    EXPECT_EQ(GetParam().headers, shown(read(GetParam().block).headers()));
}

TEST_P(HeaderBlock, IsReadAlikeWithCrLf)
{
    EXPECT_EQ(withCrLf(GetParam().headers), shown(read(withCrLf(GetParam().block)).headers()));
}

INSTANTIATE_TEST_SUITE_P(
    Rules, HeaderBlock,
    testing::Values(Row{"AHeaderAndTheEmptyLine", "Subject: x\n\n", "Subject[x]"},
                    Row{"TheEndOfTheInputDropsTheHeaderBeingRead", "Subject: x\n", ""},
                    Row{"TheEndOfTheInputKeepsTheHeadersBefore", "A: 1\nB: 2\n", "A[1]"},
                    Row{"AnEmptyLineFirstIsAnEmptyBlock", "\nA: 1\n\n", ""},
                    Row{"WhatFollowsTheEmptyLineIsNotRead", "A: 1\n\nB: 2\n\n", "A[1]"},
                    Row{"FoldingStaysInTheValue", "A: 1\n folded\n\tmore\n\n", "A[1\n folded\n\tmore]"},
                    Row{"OnlyTheEndOfAValueIsTrimmed", "A: \t 1 \n  2 \t\n \t\n\n", "A[1 \n  2]"},
                    Row{"AnEmptyValue", "A:\nB: \n\n", "A[] B[]"},
                    Row{"AValueThatStartsOnTheFoldedLine", "A:\n 1\n\n", "A[\n 1]"},
                    Row{"ALineWithoutColonIsDroppedAndEndsTheHeaderBefore", "A: 1\nno colon\n folded\nB: 2\n\n",
                        "A[1] B[2]"},
                    Row{"LeadingBlanksOfTheFirstLineAreSkipped", " \tA: 1\n\n", "A[1]"},
                    Row{"BlanksAheadOfTheColonStayInTheName", "A : 1\n\n", "A [1]"},
                    Row{"OnlyTheFirstColonCounts", "A: b: c\n\n", "A[b: c]"},
                    Row{"ANamelessHeaderCountsInTheMiddleOnly", ": 1\nA: 2\n: 3\n\n", "[1] A[2]"},
                    Row{"OneEmptyLineBehindAFirstLineWithoutColonEndsNothing", "no colon\n\nA: 1\n\n", "A[1]"},
                    Row{"TwoEmptyLinesBehindAFirstLineWithoutColonEndTheBlock", "no colon\n\n\nA: 1\n\n", ""},
                    Row{"AnEmptyLineBehindALineWithoutColonEndsTheBlock", "A: 1\nno colon\n\nB: 2\n\n", "A[1]"},
                    Row{"AFirstLineOfBlanksIsALineWithoutColon", "  \nA: 1\n\n", "A[1]"},
                    Row{"DuplicatesStayInOrder", "A: 1\nB: 2\na: 3\n\n", "A[1] B[2] a[3]"}),
    [](testing::TestParamInfo<Row> const& row) { return std::string(row.param.rule); });

TEST(HeaderContainer, BlanksUntilTheEndOfTheInputAreRefused)
{
    try {
        read(" \t ");
        FAIL();
    } catch (Exception const& failure) {
        EXPECT_EQ("HeaderContainer Parse", failure.message());
        EXPECT_EQ(5, failure.code());
        EXPECT_EQ("HeaderImpl", failure.fileName());
        EXPECT_EQ("parse", failure.cause().message());
        EXPECT_EQ(5, failure.cause().code());
    }
}

} // namespace
} // namespace Velmara
