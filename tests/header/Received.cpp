#include <velmara/Received.h>

#include <gtest/gtest.h>

#include <random>
#include <set>
#include <stdexcept>

#include <velmara/Exception.h>

#include "tests/header/PlainReceived.h"

namespace Velmara {
namespace {

TEST(Received, ATypicalHeaderHasAllItsParts)
{
    Received const received("from a.example (b.example [192.0.2.1]) by c.example with ESMTP id 1; "
                            "Mon, 1 Jan 2024 00:00:00 +0000");
    EXPECT_EQ("a.example", received.from());
    EXPECT_EQ("b.example", received.reverseName());
    EXPECT_EQ("192.0.2.1", received.address().asString(true));
    EXPECT_EQ("c.example", received.by());
    EXPECT_EQ("ESMTP", received.find("with"));
    EXPECT_EQ("1;", received.find("id")); // a value ends at white space only
    EXPECT_EQ("mon, 1 jan 2024 00:00:00 +0000", received.date());
}

struct Clauses {
    char const *rule, *value;
    std::vector<std::pair<std::string, std::string>> clauses;
    char const* date;
};
class ReceivedClauses : public testing::TestWithParam<Clauses> {};

TEST_P(ReceivedClauses, AreFound)
{
    Received const received(GetParam().value);
    for (auto const& [name, value] : GetParam().clauses) EXPECT_EQ(value, received.find(name)) << name;
    EXPECT_EQ(GetParam().date, received.date());
}

auto const byRule = [](auto const& row) { return std::string(row.param.rule); };

INSTANTIATE_TEST_SUITE_P(
    Rules, ReceivedClauses,
    testing::Values(
        Clauses{"AnyWordIsAName", "colour blue shape round", {{"colour", "blue"}, {"shape", "round"}}, ""},
        Clauses{"NamesAreInLowerCase", "FROM A BY B", {{"from", "A"}, {"by", "B"}, {"FROM", ""}, {"By", ""}}, ""},
        Clauses{
            "CommentsBelongToTheWordBefore", "from a (b) (c (d)) by e", {{"from", "a (b) (c (d))"}, {"by", "e"}}, ""},
        Clauses{"CommentWithoutABlankBelongsToo", "from a(b) by e", {{"from", "a(b)"}, {"by", "e"}}, ""},
        Clauses{"WordBehindACommentWithoutABlank", "from (b)c by e", {{"from", "(b)c"}, {"by", "e"}}, ""},
        Clauses{"WhiteSpaceOfAnyKind", "from\ta\r\n\tby\r\n b ;x", {{"from", "a"}, {"by", "b"}}, "x"},
        Clauses{"WhiteSpaceInACommentStays", "from a (b\r\n\tc)", {{"from", "a (b\r\n\tc)"}}, ""},
        Clauses{"LaterClauseOfANameCounts", "with a with b", {{"with", "b"}}, ""},
        Clauses{
            "CommentInPlaceOfANameIsDropped", "(comment) from a by b; x", {{"from", "a"}, {"by", "b;"}, {"", ""}}, "x"},
        Clauses{"CommentAndItsWordAreDropped", "(comment)x from a", {{"from", "a"}}, ""},
        Clauses{"FirstSemicolonBeginsTheDate", "from a ; x; Y ", {{"from", "a"}}, "x; y"},
        Clauses{"SemicolonInACommentToo", "from a (b; c) by d; e", {{"from", "a (b; c)"}, {"by", ""}}, "c) by d; e"},
        Clauses{"ValueRunsOverTheSemicolon", "for <a@b>; Mon, 1 Jan", {{"for", "<a@b>;"}, {"mon,", ""}}, "mon, 1 jan"},
        Clauses{"NameRunsOverTheSemicolon", "from a by;x b", {{"from", "a"}, {"by;x", ""}, {"by", ""}}, "x b"},
        Clauses{"NothingAheadOfTheSemicolon", "; from a", {{"from", ""}}, "from a"},
        Clauses{"NoSemicolonNoDate", "from a by b", {{"from", "a"}, {"by", "b"}}, ""},
        Clauses{"OneWordIsNoClause", "from", {{"from", ""}}, ""},
        Clauses{"NameWithoutAValueIsNone", "from a by", {{"from", "a"}, {"by", ""}}, ""},
        Clauses{"UnclosedCommentEmptiesItsClause", "by b from a (c by d", {{"by", "b"}, {"from", ""}}, ""},
        Clauses{"ClosingParenthesisEndsAValue", "from a) b", {{"from", "a"}, {")", "b"}}, ""},
        Clauses{"ClosingParenthesisCanEmptyAValue", "from ) by b", {{"from", ""}, {")", "by"}}, ""},
        Clauses{"EmptyValueIsAClauseStill", "from a from ) x", {{"from", ""}}, ""},
        Clauses{"StepsEndWithTheCharacters", ") ) ) ) ) ) a b", {{")", ""}, {"a", ""}}, ""},
        Clauses{"ShortValuesEndEarly", "a b", {{"a", ""}}, ""},
        Clauses{"LastClauseInsideItsSteps", "a bb", {{"a", "bb"}}, ""}),
    byRule);

struct Host {
    char const *rule, *value, *from, *reverseName, *address;
};
class ReceivedFrom : public testing::TestWithParam<Host> {};

TEST_P(ReceivedFrom, IsTakenApart)
{
    Received const received(GetParam().value);
    EXPECT_EQ(GetParam().from, received.from());
    EXPECT_EQ(GetParam().reverseName, received.reverseName());
    EXPECT_EQ(GetParam().address, received.address().asString(true));
    EXPECT_EQ(*GetParam().address == '\0', received.address().isNull());
}

INSTANTIATE_TEST_SUITE_P(
    Rules, ReceivedFrom,
    testing::Values(
        Host{"NoClause", "by b.example; x", "", "", ""},
        Host{"NameAndReverseNameInLowerCase", "from A.Example (B.Example [192.0.2.1]) by c", "a.example", "b.example",
             "192.0.2.1"},
        Host{"NameAloneKeepsItsCase", "from A.Example by c", "A.Example", "", ""},
        Host{"NoReverseName", "from a ([192.0.2.1]) by c", "a", "", "192.0.2.1"},
        Host{"AddressInBracketsAlone", "from [192.0.2.1] by c.example; x", "", "", "192.0.2.1"},
        Host{"AddressAsName", "from 192.0.2.1 by c.example; x", "", "", "192.0.2.1"},
        Host{"BracketsAsNameAheadOfAComment", "from [192.0.2.1] (helo) by c", "", "", "192.0.2.1"},
        Host{"AddressAsNameOfSix", "from 2001:db8::1 by c", "", "", "2001:db8::1"},
        Host{"AddressOfTheCommentBeatsTheName", "from [192.0.2.1] (b [198.51.100.7]) by c", "192.0.2.1", "b",
             "198.51.100.7"},
        Host{"BracketAndName", "from [a.example (b) by c", "a.example", "", ""},
        Host{"ABracketAloneIsNoName", "from [ (b) by c", "", "", ""},
        Host{"AddressInAComment", "from a.example (192.0.2.1) by c", "a.example", "", "192.0.2.1"},
        Host{"AddressInTheLastComment", "from a.example (helo) (192.0.2.1) by c", "a.example", "", "192.0.2.1"},
        Host{"AddressInTheMiddleComment", "from a.example (helo) (192.0.2.1) (x) by c", "a.example", "", ""},
        Host{"AddressInANestedComment", "from a.example (x (192.0.2.1)) by c", "a.example", "", "192.0.2.1"},
        Host{"TagOfSix", "from a.example (IPv6:2001:db8::1)", "a.example", "", "2001:db8::1"},
        Host{"TagOfSixInBrackets", "from a (b [ipv6:2001:db8::1]) by c", "a", "b", "2001:db8::1"},
        Host{"TagOfSixAheadOfFour", "from a (b [IPv6:192.0.2.1]) by c", "a", "b", "192.0.2.1"},
        Host{"TagOfSixIsNoName", "from IPv6:2001:db8::1 by c", "IPv6:2001:db8::1", "", ""},
        Host{"NoOtherTag", "from a (b [IPv4:192.0.2.1]) by c", "a", "b", ""},
        Host{"BlanksAroundAnAddress", "from a (b [ 192.0.2.1\t]) by c", "a", "b", "192.0.2.1"},
        Host{"TextBesideAnAddress", "from a (b 192.0.2.1) by c", "a", "", ""},
        Host{"BadAddress", "from a (b [192.0.2.256]) by c", "a", "b", ""},
        Host{"EmptyBrackets", "from a (b []) by c", "a", "b", ""},
        Host{"UnclosedBracketInAComment", "from a (b [192.0.2.1) by c", "a", "b", ""},
        Host{"UnclosedBracketWithoutAComment", "from [192.0.2.1 by c", "", "", ""},
        Host{"BracketBehindAName", "from a[192.0.2.1] by c", "", "", "192.0.2.1"},
        Host{"ReverseNameOfTwoWords", "from a (HELO b [192.0.2.1]) by c", "a", "helo b", "192.0.2.1"},
        Host{"BracketInALaterComment", "from a (b) (c [192.0.2.1]) by d", "a", "b) (c", "192.0.2.1"},
        Host{"UnclosedCommentLeavesNothing", "from a (b [192.0.2.1", "", "", ""}),
    byRule);

TEST(Received, TheReverseNameIsEmptyUntilTheFromClauseWasAskedFor)
{
    Received const received("from a (b [192.0.2.1]) by c");
    Received const copy(received);
    EXPECT_EQ("", received.reverseName());
    EXPECT_EQ("c", received.by());
    EXPECT_EQ("", received.reverseName());
    EXPECT_FALSE(copy.address().isNull());
    EXPECT_EQ("b", received.reverseName());
}

TEST(Received, ByIsInLowerCaseWithoutComments)
{
    EXPECT_EQ("c.example", Received("from a by C.Example (Postfix) with x").by());
    EXPECT_EQ("c.example", Received("from a by C.Example(Postfix) with x").by());
    EXPECT_EQ("", Received("from a by (Postfix) with x").by());
    EXPECT_EQ("", Received("from a; x").by());
}

TEST(Received, TheValueIsTrimmedWhenItIsRead)
{
    Received const received(" \r\n\tfrom a by b \n");
    EXPECT_EQ(" \r\n\tfrom a by b \n", received.value());
    EXPECT_EQ("a", received.from());
    EXPECT_EQ("from a by b", received.value());
}

TEST(Received, WhiteSpaceAloneIsNothing)
{
    Received const received(" \t ");
    EXPECT_EQ("", received.from());
    EXPECT_EQ("", received.by());
    EXPECT_EQ("", received.date());
}

template <class Call> int lineOf(Call call)
{
    try {
        call();
    } catch (HeaderException const& e) {
        EXPECT_EQ(1, e.code());
        EXPECT_EQ("HeaderImpl", e.fileName());
        return static_cast<int>(e.lineNumber());
    }
    ADD_FAILURE();
    return 0;
}

TEST(Received, SliceHoldsAnAddressOnlyIfItHoldsNothingElse)
{
    std::string const value = "[ iPv6:2001:db8::1\t] [IPv6:] (192.0.2.1:25) 192.0.2.1";
    auto const between = [&](char const* begin, char const* end) {
        size_t const start = value.find(begin) + 1;
        return s_extractIPAddress(value, start, value.find(end, start)).asString(true);
    };
    EXPECT_EQ("2001:db8::1", between("[", "]"));
    EXPECT_EQ("", between("[I", "]")); // nothing behind the tag
    EXPECT_EQ("", between("(", ")"));  // a port
    EXPECT_EQ("192.0.2.1", between(") ", "\n"));
    EXPECT_TRUE(s_extractIPAddress(value, 0, value.find(']') + 1).isNull()); // brackets
    EXPECT_TRUE(s_extractIPAddress(value, value.size(), value.size()).isNull());
    EXPECT_THROW(s_extractIPAddress(value, value.size() + 1, value.size() + 2), std::out_of_range);
}

TEST(Received, EachAccessorOfANullHandleThrowsAtItsOwnLine)
{
    Received const none;
    std::set<int> const lines{lineOf([&] { none.find("from"); }),  lineOf([&] { none.date(); }),
                              lineOf([&] { none.by(); }),          lineOf([&] { none.from(); }),
                              lineOf([&] { none.reverseName(); }), lineOf([&] { none.address(); })};
    EXPECT_EQ(6u, lines.size());
}

TEST(Received, IsReadLikeThePlainReader)
{
    std::mt19937 random(1);
    for (int i = 0; i < 20000; ++i) {
        unsigned char bytes[20];
        size_t const length = random() % sizeof bytes;
        for (size_t k = 0; k < length; ++k) bytes[k] = static_cast<unsigned char>(random());
        std::string const text = PlainReceived::text(bytes, length);
        ASSERT_STREQ(nullptr, PlainReceived::failed(text)) << testing::PrintToString(text);
    }
}

// The last word of each has no white space behind it.
TEST(Received, MegabytesOfOneThingCostLittle)
{
    for (std::string const piece : {"x", "(", ")", ") ", "a ", "(a) ", "[", "from (", "\t"}) {
        std::string value = "from a ";
        while (value.size() < 4000000) value += piece;
        Received const received(value + "xxxxxxxxxxxxxxxx");
        received.address();
        EXPECT_EQ("", received.date());
    }
}

} // namespace
} // namespace Velmara
