#include <velmara/StringPattern.h>

#include <gtest/gtest.h>

namespace Velmara {
namespace {

enum Case { CaseCounts, AnyCase };

struct Row {
    char const* rule;
    char const* pattern;
    Case sensitivity;
    std::vector<std::string> matches, differs;
};
class StringPatternGlob : public testing::TestWithParam<Row> {};

TEST_P(StringPatternGlob, CoversTheWholeText)
{
    Row const& row = GetParam();
    StringPattern const pattern(row.pattern, row.sensitivity == AnyCase, false);
    for (std::string const& text : row.matches) EXPECT_TRUE(pattern.matches(text)) << text;
    for (std::string const& text : row.differs) EXPECT_FALSE(pattern.matches(text)) << text;
}

std::string const withNul("a\0b", 3);

INSTANTIATE_TEST_SUITE_P(
    Rules, StringPatternGlob,
    testing::Values(Row{"PlainName", "body", CaseCounts, {"body"}, {"Body", "bod", "bodyx", "xbody", ""}},
                    Row{"PlainNameInAnyCase", "bOdy", AnyCase, {"body", "BODY"}, {"bod", "bodyx"}},
                    Row{"EmptyPatternIsTheEmptyText", "", CaseCounts, {""}, {"a"}},
                    Row{"StarIsAnyNumberOfBytes", "*.doc", AnyCase, {".doc", "a.DOC", "a.doc.doc"}, {"a.docx", "adoc"}},
                    Row{"StarInTheMiddle", "a*b*c", CaseCounts, {"abc", "axbxxbc"}, {"ab", "acb", "abcd"}},
                    Row{"StarAlone", "*", CaseCounts, {"", "x", "a\nb", withNul}, {}},
                    Row{"StarsInARow", "a**?", CaseCounts, {"ab", "abc"}, {"a"}},
                    Row{"QuestionMarkIsOneByte", "h?", CaseCounts, {"h1", "hr", "h\n", "h\xff"}, {"h", "h11"}},
                    Row{"SetOfBytes", "[abx-z]", CaseCounts, {"a", "b", "y"}, {"c", "A", "", "ab"}},
                    Row{"SetInAnyCase", "[a-c]1", AnyCase, {"a1", "C1"}, {"d1"}},
                    Row{"NegatedSet", "[!a-c]", CaseCounts, {"d", "A", "\n"}, {"a", "c", ""}},
                    Row{"NegatedSetByCaret", "[^a]", CaseCounts, {"^", "b"}, {"a"}},
                    Row{"NegatedSetInAnyCase", "[!A]", AnyCase, {"b"}, {"a", "A"}},
                    Row{"BracketFirstInASetIsItself", "[]a]", CaseCounts, {"]", "a"}, {"[", "b"}},
                    Row{"HyphenAtTheEndOfASetIsItself", "[a-]", CaseCounts, {"-", "a"}, {"b"}},
                    Row{"HighBytesAreBytes", "[\xe0-\xff]*", CaseCounts, {"\xe4x"}, {"\xc0"}},
                    Row{"BackSlashIsOrdinary", "\\*", CaseCounts, {"\\", "\\x"}, {"*"}},
                    Row{"DotIsOrdinary", "a.b", CaseCounts, {"a.b"}, {"axb"}},
                    Row{"UnclosedSetMatchesNothing", "[abc", CaseCounts, {}, {"[abc", "a", ""}},
                    Row{"BackwardRangeMatchesNothing", "[z-a]", CaseCounts, {}, {"z", "a", "-", "[z-a]"}},
                    Row{"OnlyAsciiLettersHaveCase", "\xe4*", AnyCase, {"\xe4"}, {"\xc4"}}),
    [](auto const& row) { return std::string(row.param.rule); });

TEST(StringPattern, ARegularExpressionIsFoundAnywhere)
{
    StringPattern const pattern("b+", false, true);
    EXPECT_TRUE(pattern.matches("abbc"));
    EXPECT_FALSE(pattern.matches("ABBC"));
    EXPECT_TRUE(StringPattern("b+", true, true).matches("ABBC"));
}

TEST(StringPattern, HeadingsAreTwoBytesThatBeginWithH)
{
    StringPattern const heading("^h.$", true, true);
    for (char const* name : {"h1", "h6", "hr", "H2"}) EXPECT_TRUE(heading.matches(name)) << name;
    for (char const* name : {"h", "h11", "th", "head"}) EXPECT_FALSE(heading.matches(name)) << name;
}

TEST(StringPattern, ABadExpressionMatchesNothing)
{
    StringPattern const bad("(", false, true);
    EXPECT_TRUE(bad.isNull());
    EXPECT_FALSE(bad.matches("("));
}

TEST(StringPattern, AListMatchesWhatAnyOfItMatches)
{
    StringPattern const some(std::list<StringPattern>{{"br", true, false}, {"^h.$", true, true}, {"p", false, false}});
    for (char const* name : {"br", "BR", "h3", "p"}) EXPECT_TRUE(some.matches(name)) << name;
    for (char const* name : {"b", "P", "head"}) EXPECT_FALSE(some.matches(name)) << name;
}

TEST(StringPattern, NullAndAnEmptyListMatchNothing)
{
    for (StringPattern const& none : {StringPattern(), StringPattern(std::list<StringPattern>())}) {
        EXPECT_TRUE(none.isNull());
        EXPECT_FALSE(none.matches(""));
        EXPECT_FALSE(none.matches("a"));
    }
}

TEST(StringPattern, ANameOfTheParserIsReadUpToItsNul)
{
    auto const bytes = [](char const* text) { return reinterpret_cast<unsigned char const*>(text); };
    StringPattern const pattern("ta*", true, false);
    EXPECT_TRUE(pattern.matches(bytes("table")));
    EXPECT_FALSE(pattern.matches(bytes("tr")));
    EXPECT_FALSE(pattern.matches(static_cast<unsigned char const*>(nullptr)));
}

TEST(StringPattern, ManyStarsOnALongTextCostLittle)
{
    EXPECT_FALSE(StringPattern("*a*a*a*a*a*a*a*b", false, false).matches(std::string(100000, 'a')));
}

} // namespace
} // namespace Velmara
