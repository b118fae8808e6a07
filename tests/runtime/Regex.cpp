#include <velmara/Regex.h>

#include <gtest/gtest.h>

#include <velmara/Exception.h>

namespace Velmara {
namespace {

using Groups = std::vector<std::string>;

Groups search(std::string const& pattern, std::string const& text, unsigned int flags = 0)
{
    Groups groups{"left over"};
    bool const found = Regex::Expression(pattern, flags, true)(text, groups);
    EXPECT_EQ(found, !groups.empty()) << pattern;
    return groups;
}

TEST(Regex, IsFoundAnywhereAtTheLeftmostPlace)
{
    EXPECT_EQ((Groups{"12"}), search("[0-9]+", "a12b345"));
}

TEST(Regex, GroupZeroIsTheWholeMatch)
{
    EXPECT_EQ((Groups{"a1", "a", "1"}), search("([a-z])([0-9])", "--a1--"));
}

TEST(Regex, AGroupThatTookNoPartIsEmpty)
{
    EXPECT_EQ((Groups{"b", "", "b"}), search("(a)|(b)", "b"));
}

TEST(Regex, WithoutAMatchTheGroupsAreEmptied)
{
    EXPECT_EQ(Groups(), search("x", "abc"));
}

TEST(Regex, WithoutCaptureNoGroupIsFilled)
{
    Groups groups{"left over"};
    EXPECT_TRUE(Regex::Expression("(a)", 0, false)("a", groups));
    EXPECT_EQ(Groups(), groups);
    EXPECT_TRUE(Regex::Expression("(a)", 0, false)("a\n", groups));
    EXPECT_EQ(Groups(), groups);
}

TEST(Regex, CaseCountsUnlessAFlagSaysOtherwise)
{
    EXPECT_EQ(Groups(), search("abc", "ABC"));
    EXPECT_EQ(Groups{"ABC"}, search("abc", "ABC", Regex::Expression::IgnoreCase));
    EXPECT_EQ(Groups{"\xc4"}, search("\xe4", "\xc4", Regex::Expression::IgnoreCase));
}

TEST(Regex, TheEndIsAlsoBeforeOneLastLineFeed)
{
    EXPECT_EQ(Groups{"b"}, search("b$", "ab"));
    EXPECT_EQ(Groups{"b"}, search("b$", "ab\n"));
    EXPECT_EQ(Groups(), search("b$", "ab\n\n"));
    EXPECT_EQ(Groups(), search("b$", "ab\nc"));
    EXPECT_EQ(Groups{"b\r"}, search("b.$", "ab\r\n"));
    EXPECT_EQ(Groups{""}, search("^$", "\n"));
}

TEST(Regex, OfAMatchAtEitherEndTheLeftmostCounts)
{
    EXPECT_EQ(Groups{"b"}, search("b$|\n$", "ab\n"));
    EXPECT_EQ(Groups{"\n"}, search("x$|\n$", "ab\n"));
    EXPECT_EQ(Groups{"b\n"}, search("b\n?", "ab\n")); // of two at one place that of the whole text
}

TEST(Regex, TheDotIsAnyByteButLineFeed)
{
    EXPECT_EQ(Groups{"\xff"}, search("^.$", "\xff"));
    EXPECT_EQ((Groups{std::string("\0", 1)}), search("^.$", std::string("\0", 1)));
    EXPECT_EQ(Groups(), search("a.b", "a\nb"));
}

TEST(Regex, PatternsAreBytesToo)
{
    EXPECT_EQ(Groups{"\xe4"}, search("[\xe4\xf6]", "x\xe4"));
}

TEST(Regex, ReadsAReplyLineWithItsLineEnd)
{
    std::string const reply = "^(\\d\\d\\d)[-\\s](\\d{1,3}\\.\\d{1,3}\\.\\d{1,3})\\s*(.*$)";
    EXPECT_EQ((Groups{"250 2.1.0 Ok\r", "250", "2.1.0", "Ok\r"}), search(reply, "250 2.1.0 Ok\r\n"));
    EXPECT_EQ((Groups{"550 5.7.1", "550", "5.7.1", ""}), search(reply, "550 5.7.1"));
    EXPECT_EQ(Groups(), search(reply, "250-SIZE"));
}

TEST(Regex, ABadPatternIsAnException)
{
    for (char const* bad : {"(", "[a", "a**", "(a)\\1", "(?=a)"}) {
        try {
            Regex::Expression(bad, 0, true);
            FAIL() << bad;
        } catch (Exception const& e) {
            EXPECT_EQ(5, e.code());
            EXPECT_EQ("Regex::Expression", e.message());
            EXPECT_NE("", e.stringParameter());
        }
    }
}

TEST(Regex, NestedRepeatsStayLinear)
{
    EXPECT_EQ(Groups(), search("(a*)*(a*)*b$", std::string(100000, 'a')));
}

} // namespace
} // namespace Velmara
