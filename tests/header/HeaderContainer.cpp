#include <velmara/HeaderContainer.h>

#include <gtest/gtest.h>

#include <set>

#include <velmara/ContentType.h>
#include <velmara/Exception.h>
#include <velmara/RefHeaderList.h>

#include "support/HeaderText.h"
#include "support/Refusals.h"
#include "support/Rule.h"

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
    ruleName);

TEST(HeaderContainer, BlanksUntilTheEndOfTheInputAreRefused)
{
    for (std::string block : {" \t ", " "}) {
        try {
            read(block);
            FAIL();
        } catch (Exception const& failure) {
            EXPECT_EQ("HeaderContainer Parse", failure.message());
            EXPECT_EQ(5, failure.code());
            EXPECT_EQ("HeaderImpl", failure.fileName());
            EXPECT_EQ("parse", failure.cause().message());
            EXPECT_EQ(5, failure.cause().code());
        }
    }
}

TEST(HeaderContainer, AFirstLineWhoseFirstPieceIsBlankIsRefused)
{
    EXPECT_THROW(read(std::string(1024, ' ') + "A: 1\n\n"), Exception);
    EXPECT_EQ("A[ 1]", shown(read(std::string(1022, ' ') + "A: 1\n\n").headers()));
}

TEST(HeaderContainer, AnEmptyInputIsAnEmptyBlock)
{
    EXPECT_TRUE(read("").headers().empty());
}

/// A stream that breaks behind its text.
class BreakingMediaIn : public MediaInImpl {
public:
    explicit BreakingMediaIn(std::string const& text) : m_text(text) {}
    bool atEnd() const override { return false; }
    int peek() const override { return -1; }
    using MediaInImpl::read;
    int read(uchar_t* bytes, uint_t n) override
    {
        if (m_at == m_text.size()) throw Exception("broken", 6, nullptr, 0);
        if (n == 0) return 0;
        *bytes = static_cast<uchar_t>(m_text[m_at++]);
        return 1;
    }

private:
    std::string m_text;
    size_t m_at = 0;
};

TEST(HeaderContainer, AFailureOfTheMediumIsTheCauseAndWhatWasReadStays)
{
    MediaIn in(new BreakingMediaIn("A: 1\nB: 2\nC"), false);
    std::list<Header> headers;
    try {
        HeaderContainerImpl::parse(in, headers);
        FAIL();
    } catch (Exception const& failure) {
        EXPECT_EQ("HeaderContainer Parse", failure.message());
        EXPECT_EQ(5, failure.code());
        EXPECT_EQ("broken", failure.cause().message());
        EXPECT_EQ(6, failure.cause().code());
    }
    EXPECT_EQ("A[1]", shown(headers));
}

TEST(HeaderContainer, ReadingAppends)
{
    HeaderContainerImpl impl;
    impl.list.emplace_back("A", "1");
    BufferMediaIn in(std::string("B: 2\n\nrest"));
    impl.parse(in);
    EXPECT_EQ("A[1] B[2]", shown(impl.list));
    EXPECT_EQ('r', in.peek());
}

// A line arrives in pieces of 1024 bytes, so each length around the cuts is tried.
TEST(HeaderContainer, AValueOfAnyLengthIsJoinedWithoutChange)
{
    for (size_t length = 1015; length < 1030; ++length) {
        std::string const value = "v" + std::string(length, ' ') + "w";
        EXPECT_EQ("A[" + value + "] B[2]", shown(read("A: " + value + "\nB: 2\n\n").headers())) << length;
        EXPECT_EQ("A[1\n " + value + "] B[2]", shown(read("A: 1\n " + value + "\nB: 2\n\n").headers())) << length;
        EXPECT_EQ("A[" + value + "]", shown(read("A: " + value + "\r\n\r\nB: 2\n\n").headers())) << length;
    }
    std::string const megabytes(3 << 20, 'x');
    EXPECT_EQ(megabytes, read("A: " + megabytes + "\n\n").find("A").value());
}

TEST(HeaderContainer, ANameThatACutSplitsKeepsItsLastPieceAndIsRepeatedInTheValue)
{
    // The rest of the line follows an unfinished piece, so it is taken whole into the value.
    EXPECT_EQ("b[b: 1]", shown(read(std::string(1024, 'a') + "b: 1\n\n").headers()));
}

TEST(HeaderContainer, FindsTheFirstWithoutRegardToCase)
{
    HeaderContainer headers = read("A: 1\na: 2\n\n");
    EXPECT_EQ("1", headers.find("a").value());
    EXPECT_TRUE(headers.find("AA").isNull());
    EXPECT_EQ(&HeaderContainerImpl::m_empty, &headers.find(""));
}

TEST(HeaderContainer, CopiesShareTheListClonesDoNot)
{
    HeaderContainer headers = read("A: 1\n\n");
    HeaderContainer copy(headers), assigned;
    assigned = headers;
    HeaderContainer const clone = headers.clone();
    headers.add(Header("B", "2"), false);
    EXPECT_EQ("A[1] B[2]", shown(copy.headers()));
    EXPECT_EQ("A[1] B[2]", shown(assigned.headers()));
    EXPECT_EQ("A[1]", shown(clone.headers()));
    EXPECT_NE(&headers.find("A").value(), &clone.find("A").value());
}

TEST(HeaderContainer, AssignmentToItselfDoesNothing)
{
    HeaderContainer headers = read("A: 1\n\n");
    HeaderContainer& same = headers;
    headers = same;
    EXPECT_EQ("A[1]", shown(headers.headers()));
}

TEST(HeaderContainer, AClonedTypedHeaderIsPlainWithTheSameText)
{
    HeaderContainer headers;
    headers.add(ContentType("text/html"), false);
    HeaderContainer const clone = headers.clone();
    EXPECT_EQ("Content-Type[text/html]", shown(clone.headers()));
    EXPECT_EQ(nullptr, dynamic_cast<ContentTypeImpl*>(clone.headers().front().get()));
}

TEST(HeaderContainer, AddsAtTheEndOrInFront)
{
    HeaderContainer headers;
    Header const header("A", "1");
    headers.add(header);
    headers.add(Header("B", "2"), false);
    headers.add(Header("C", "3"), true);
    headers.add(Header("A", "4"), false);
    EXPECT_EQ("C[3] A[1] B[2] A[4]", shown(headers.headers()));
    EXPECT_EQ(&header.value(), &headers.find("A").value());
}

TEST(HeaderContainer, AddsAListInOrderItsOwnToo)
{
    HeaderContainer headers;
    headers.add({Header("A", "1"), Header("B", "2")});
    headers.add(headers.headers());
    EXPECT_EQ("A[1] B[2] A[1] B[2]", shown(headers.headers()));
}

template <class Call> void expectNullIsRefused(Call call)
{
    try {
        call();
        ADD_FAILURE() << "nothing thrown";
    } catch (Exception const& refusal) {
        EXPECT_EQ("HeaderContainer::add", refusal.message());
        EXPECT_EQ(4, refusal.code());
        EXPECT_EQ("HeaderImpl", refusal.fileName());
        EXPECT_EQ("Attempted to a Null header", refusal.stringParameter());
    }
}

TEST(HeaderLists, RefuseNullHeadersAndStayAsTheyAre)
{
    HeaderContainer headers;
    RefHeaderList list(true);
    std::list<Header> const oneIsNull{Header("A", "1"), Header()};
    expectNullIsRefused([&] { headers.add(Header(), false); });
    expectNullIsRefused([&] { headers.add(ContentType(), true); });
    expectNullIsRefused([&] { headers.add(oneIsNull); });
    expectNullIsRefused([&] { headers.replace(Header(), false); });
    expectNullIsRefused([&] { list.add(Header()); });
    expectNullIsRefused([&] { list.add(oneIsNull); });
    expectNullIsRefused([&] { list.replace(Header()); });
    EXPECT_TRUE(headers.headers().empty());
    EXPECT_TRUE(list.headers().empty());
}

TEST(HeaderLists, ContainerRemovesEveryMatchTheSharedListOnlyTheFirst)
{
    HeaderContainer headers = read("A: 1\nB: 2\na: 3\nA: 4\n\n");
    RefHeaderList list(true);
    list.add(headers.headers());
    HeaderContainer first = headers.clone();

    headers.remove("a", true);
    EXPECT_EQ("B[2]", shown(headers.headers()));
    first.remove(std::string("a"), false);
    EXPECT_EQ("B[2] a[3] A[4]", shown(first.headers()));
    list.remove("a", true);
    EXPECT_EQ("B[2] a[3] A[4]", shown(list.headers()));
    list.remove("a", false);
    EXPECT_EQ("B[2] A[4]", shown(list.headers()));
    list.remove("missing", true);
    EXPECT_EQ("B[2] A[4]", shown(list.headers()));
}

TEST(HeaderContainer, RemovesNothingForANullName)
{
    HeaderContainer headers = read("A: 1\n\n");
    headers.remove(static_cast<char const*>(nullptr), true);
    EXPECT_EQ("A[1]", shown(headers.headers()));
}

TEST(HeaderContainer, RemovesByANameThatGoesWithTheHeader)
{
    HeaderContainer headers = read("A-name-that-needs-memory: 1\nB: 2\nA-name-that-needs-memory: 3\n\n");
    headers.remove(headers.headers().front().type(), true);
    EXPECT_EQ("B[2]", shown(headers.headers()));
}

TEST(HeaderLists, ReplaceTheFirstInItsPlace)
{
    HeaderContainer headers = read("A: 1\nB: 2\nb: 3\n\n");
    RefHeaderList list(true);
    list.add(headers.headers());
    Header const replacement("b", "new");

    headers.replace(replacement, true);
    list.replace(replacement);
    EXPECT_EQ("A[1] b[new] b[3]", shown(headers.headers()));
    EXPECT_EQ("A[1] b[new] b[3]", shown(list.headers()));
}

TEST(HeaderLists, ReplaceAddsWhatIsMissing)
{
    HeaderContainer headers = read("A: 1\n\n");
    RefHeaderList list(true);
    headers.replace(Header("B", "2"));
    headers.replace(Header("C", "3"), true);
    list.add(Header("A", "1"));
    list.replace(Header("B", "2"));
    EXPECT_EQ("C[3] A[1] B[2]", shown(headers.headers()));
    EXPECT_EQ("A[1] B[2]", shown(list.headers()));
}

TEST(HeaderContainer, ReplacesByAListInOrderItsOwnToo)
{
    HeaderContainer headers = read("A: 1\nB: 2\n\n");
    headers.replace({Header("B", "new"), Header("C", "3"), Header("D", "4")});
    EXPECT_EQ("A[1] B[new] C[3] D[4]", shown(headers.headers()));
    headers.replace(headers.headers());
    EXPECT_EQ("A[1] B[new] C[3] D[4]", shown(headers.headers()));
}

TEST(HeaderContainer, ReplacementDoesNotReachOtherHandlesOnTheOldHeader)
{
    Header const old("A", "1");
    HeaderContainer headers;
    headers.add(old, false);
    headers.replace(Header("A", "2"), false);
    EXPECT_EQ("1", old.value());
}

TEST(HeaderContainer, OfAnImplementationThatIsMissingIsNullAndItsCopyRefused)
{
    HeaderContainer null(nullptr, false);
    EXPECT_TRUE(null.isNull());
    HeaderContainer assigned;
    assigned = null; // accepts what the copy refuses
    EXPECT_TRUE(assigned.isNull());
    try {
        HeaderContainer copy(null);
        FAIL();
    } catch (Exception const& refusal) {
        EXPECT_EQ("RefCounted constructor for RefImpl failed.", refusal.message());
        EXPECT_EQ(4, refusal.code());
        EXPECT_EQ(0u, refusal.lineNumber());
    }
}

TEST(HeaderContainer, EveryOperationOfANullContainerThrowsWithALineOfItsOwn)
{
    HeaderContainer null(nullptr, false);
    std::set<unsigned int> lines;
    lines.insert(lineOfRefusal([&] { null.clone(); }));
    lines.insert(lineOfRefusal([&] { null.headers(); }));
    lines.insert(lineOfRefusal([&] { null.find("A"); }));
    lines.insert(lineOfRefusal([&] { null.add(Header("A", "1"), false); }));
    lines.insert(lineOfRefusal([&] { null.add(std::list<Header>()); }));
    lines.insert(lineOfRefusal([&] { null.remove("A", true); }));
    lines.insert(lineOfRefusal([&] { null.remove(std::string("A"), true); }));
    lines.insert(lineOfRefusal([&] { null.replace(Header("A", "1"), false); }));
    lines.insert(lineOfRefusal([&] { null.replace(std::list<Header>()); }));
    EXPECT_EQ(9u, lines.size());
}

} // namespace
} // namespace Velmara
