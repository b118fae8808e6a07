#include <velmara/EmailAddress.h>

#include <gtest/gtest.h>

#include <velmara/Exception.h>

namespace Velmara {
namespace {

/// "address|domain|name"
std::string shape(EmailAddress const& address)
{
    return address.address() + '|' + address.domain() + '|' + address.displayName();
}

using Shapes = std::vector<std::string>;

Shapes shapes(std::list<EmailAddress> const& addresses)
{
    Shapes all;
    for (EmailAddress const& address : addresses) all.push_back(shape(address));
    return all;
}

struct Row {
    char const* rule;
    std::string text, shape;
};

auto const byRule = [](auto const& row) { return std::string(row.param.rule); };

/// One well-formed address: every way of reading gives it.
class EmailAddressWellFormed : public testing::TestWithParam<Row> {};

TEST_P(EmailAddressWellFormed, IsReadByBothReaders)
{
    Row const& row = GetParam();
    EXPECT_EQ(row.shape, shape(EmailAddress::rfc5322Parse(row.text, true)));
    EXPECT_EQ(row.shape, shape(EmailAddress::rfc5322Parse(row.text, false)));
    EXPECT_EQ(Shapes{row.shape}, shapes(EmailAddress::rfc5322ParseList(row.text, true)));
    EXPECT_EQ(Shapes{row.shape}, shapes(EmailAddress::rfc5322ParseList(row.text, false)));
}

TEST_P(EmailAddressWellFormed, IsReadAgainFromItsPrintedForm)
{
    EmailAddress const address = EmailAddress::rfc5322Parse(GetParam().text, false);
    EXPECT_EQ(address, EmailAddress::rfc5322Parse(address.asString(), false)) << address.asString();
}

INSTANTIATE_TEST_SUITE_P(
    Rules, EmailAddressWellFormed,
    testing::Values(
        Row{"AddressAlone", "j@a.example", "j@a.example|a.example|"},
        Row{"AddressInBrackets", "<j@a.example>", "j@a.example|a.example|"},
        Row{"Name", "Jane Doe <j@a.example>", "j@a.example|a.example|Jane Doe"},
        Row{"CaseIsKept", "J.Doe@A.Example", "J.Doe@A.Example|A.Example|"},
        Row{"QuotedName", "\"Joe Q. Public\" <j@a.example>", "j@a.example|a.example|Joe Q. Public"},
        Row{"EscapesInANameAreResolved", "\"Giant; \\\"Big\\\" \\\\Box\" <j@a.example>",
            "j@a.example|a.example|Giant; \"Big\" \\Box"},
        Row{"CommaInAQuotedName", "\"Doe, Jane\" <j@a.example>", "j@a.example|a.example|Doe, Jane"},
        Row{"DotInAName", "Joe Q. Public <j@a.example>", "j@a.example|a.example|Joe Q. Public"},
        Row{"WhiteSpaceInANameIsOneBlank", "Mary\t \r\n Smith\r\n\t<m@a.example>", "m@a.example|a.example|Mary Smith"},
        Row{"WordsAndQuotesInAName", "=?utf-8?Q?J=C3=A4n?= \"Doe\" <j@a.example>",
            "j@a.example|a.example|=?utf-8?Q?J=C3=A4n?= Doe"},
        Row{"EncodedWordStays", "=?utf-8?B?QUJD?= <j@a.example>", "j@a.example|a.example|=?utf-8?B?QUJD?="},
        Row{"CommaInAnEncodedWord", "=?utf-8?Q?Doe,_J.?= <j@a.example>", "j@a.example|a.example|=?utf-8?Q?Doe,_J.?="},
        Row{"EncodedWordInBracketsIsAWord", "<=?utf-8?Q?1?=@a.example>", "=?utf-8?Q?1?=@a.example|a.example|"},
        Row{"EncodedWordBehindAWord", "Jane =?utf-8?Q?Doe,?= <j@a.example>",
            "j@a.example|a.example|Jane =?utf-8?Q?Doe,?="},
        Row{"CommentAsName", "j@a.example (Jane Doe)", "j@a.example|a.example|Jane Doe"},
        Row{"FirstOfTheCommentsAsName", "j@a.example (Jane) (work)", "j@a.example|a.example|Jane"},
        Row{"CommentBehindBracketsAsName", "<j@a.example> (Jane)", "j@a.example|a.example|Jane"},
        Row{"PhraseBeatsComment", "Jane <j@a.example> (Doe)", "j@a.example|a.example|Jane"},
        Row{"CommentInFrontIsNoName", "(Jane) j@a.example", "j@a.example|a.example|"},
        Row{"NestedComment", "j@a.example (Jane (JD (x)) \\) Doe)", "j@a.example|a.example|Jane (JD (x)) ) Doe"},
        Row{"CommentsEverywhere", "Pete(A nice \\) chap) <pete(his account)@silly.test(his host)>",
            "pete@silly.test|silly.test|Pete"},
        Row{"CommentJoinsNoName", "Jane(x)Doe <j@a.example>", "j@a.example|a.example|Jane Doe"},
        Row{"QuotedLocalPartKeepsItsQuotes", "\"j@doe \\\"x\\\"\"@a.example",
            "\"j@doe \\\"x\\\"\"@a.example|a.example|"},
        Row{"FoldedQuotedLocalPart", "\"j\r\n doe\"@a.example", "\"j doe\"@a.example|a.example|"},
        Row{"DomainLiteral", "j@[192.0.2.1]", "j@[192.0.2.1]|[192.0.2.1]|"},
        Row{"DomainLiteralOfSix", "Jane <j@[IPv6:2001:db8::1]>", "j@[IPv6:2001:db8::1]|[IPv6:2001:db8::1]|Jane"},
        Row{"EscapedLineEndInALocalPart", "\"j\\\r\n doe\"@a.example", "\"j doe\"@a.example|a.example|"},
        Row{"ControlsInALiteralGo", "j@[192.0.2.1\x7f]", "j@[192.0.2.1]|[192.0.2.1]|"},
        Row{"WhiteSpaceInALiteralGoes", "j@[ 192.0.2.1\r\n ]", "j@[192.0.2.1]|[192.0.2.1]|"},
        Row{"SourceRouteIsDropped", "Mary <@b.example,@c.example:m@a.example>", "m@a.example|a.example|Mary"},
        Row{"WhiteSpaceAroundDots", "<jdoe@test   . example>", "jdoe@test.example|test.example|"},
        Row{"WhiteSpaceAroundTheAt", "j . doe @ a . example", "j.doe@a.example|a.example|"},
        Row{"CommentsAroundDots", "<jdoe@machine(comment).  example>", "jdoe@machine.example|machine.example|"},
        Row{"WhiteSpaceBehindDots", "j. doe@a. example", "j.doe@a.example|a.example|"},
        Row{"Utf8",
            "J\xc3\xa4n <j\xc3\xa4n@b\xc3\xbc"
            "cher.example>",
            "j\xc3\xa4n@b\xc3\xbc"
            "cher.example|b\xc3\xbc"
            "cher.example|J\xc3\xa4n"},
        Row{"AtomCharacters", "!#$%&'*+-/=?^_`{|}~@a.example", "!#$%&'*+-/=?^_`{|}~@a.example|a.example|"},
        Row{"EmptyQuotedName", "\"\" <j@a.example>", "j@a.example|a.example|"},
        Row{"EmptyQuotedLocalPart", "\"\"@a.example", "\"\"@a.example|a.example|"},
        Row{"OneLabel", "j@localhost", "j@localhost|localhost|"},
        Row{"MessageIdBehindWords", "Your message of Monday <1@a.example>",
            "1@a.example|a.example|Your message of Monday"},
        Row{"WhiteSpaceAround", " \t\r\n j@a.example \r\n", "j@a.example|a.example|"}),
    byRule);

/// What is no address of the standard: lenient reading gives something, strict reading throws.
class EmailAddressOdd : public testing::TestWithParam<Row> {};

TEST_P(EmailAddressOdd, IsReadLenientlyOnly)
{
    Row const& row = GetParam();
    EXPECT_EQ(row.shape, shape(EmailAddress::rfc5322Parse(row.text, true)));
    try {
        EmailAddress::rfc5322Parse(row.text, false);
        FAIL() << row.text;
    } catch (Exception const& e) {
        EXPECT_EQ(5, e.code());
        EXPECT_EQ("rfc5322Parse", e.message());
    }
}

TEST_P(EmailAddressOdd, IsReadAgainFromItsPrintedForm)
{
    EmailAddress const address = EmailAddress::rfc5322Parse(GetParam().text, true);
    EXPECT_EQ(address, EmailAddress::rfc5322Parse(address.asString(), true)) << address.asString();
}

INSTANTIATE_TEST_SUITE_P(
    Rules, EmailAddressOdd,
    testing::Values(
        Row{"Nothing", "", "||"}, Row{"WhiteSpace", " \r\n\t", "||"}, Row{"CommentAlone", "(x)", "||"},
        Row{"EmptyBrackets", "<>", "||"}, Row{"NameWithoutAnAddress", "\"Jane\" <>", "||"}, Row{"AtAlone", "@", "||"},
        Row{"SomeWords", "Jane Doe", "||"}, Row{"GroupOfNothing", "undisclosed-recipients:;", "||"},
        Row{"BareWord", "root", "root||"}, Row{"BareWordInBrackets", "Jane <root>", "root||Jane"},
        Row{"BareWordWithComment", "root (Jane)", "root||Jane"}, Row{"QuotedWord", "\"Jane\"", "||"},
        Row{"QuotedWordInBrackets", "<\"Jane\">", "\"Jane\"||"}, Row{"EncodedWordAlone", "=?utf-8?Q?Jane?=", "||"},
        Row{"EncodedWordIsNoLocalPart", "=?utf-8?Q?Doe,?=@a.example", "@a.example|a.example|=?utf-8?Q?Doe,?="},
        Row{"DeleteSeparates", "j@a.example\x7f.b.example", "j@a.example.b.example|a.example.b.example|"},
        Row{"EncodedWordHasACharsetOf64BytesAtMost",
            "=?" + std::string(65, 'x') + "?Q?a,b?=", "=?" + std::string(65, 'x') + "?Q?a||"},
        Row{"EncodedWordCutBehindItsEncoding", "=?x?Q", "=?x?Q||"},
        Row{"EncodedWordNeedsACharset", "=??Q?a,b?= <j@a.example>", "=??Q?a||"},
        Row{"EncodedWordNeedsAnEncodingOfOneLetter", "=?x?Qx?a,b?= <j@a.example>", "=?x?Qx?a||"},
        Row{"NoDomain", "j@", "j@||"}, Row{"NoLocalPart", "@a.example", "@a.example|a.example|"},
        Row{"TwoAts", "<j@b.example@a.example>", "j@b.example@a.example|a.example|"},
        Row{"DotsInARow", "j..d@a.example", "j..d@a.example|a.example|"},
        Row{"DotAtTheEnd", "j.@a.example.", "j.@a.example.|a.example.|"},
        Row{"BracketsForgotten", "Jane Doe j@a.example", "j@a.example|a.example|Jane Doe"},
        Row{"InitialAndBracketsForgotten", "J. Doe j. doe@a. example", "doe@a.example|a.example|J. Doe j."},
        Row{"WordsBehindTheAddress", "j@a.example Jane", "j@a.example|a.example|"},
        Row{"WordsBehindTheBrackets", "<j@a.example> Jane", "j@a.example|a.example|"},
        Row{"AddressAsName", "j@a.example <k@b.example>", "k@b.example|b.example|j@a.example"},
        Row{"FirstOfSomeAddresses", "j@a.example k@b.example c", "j@a.example|a.example|"},
        Row{"AddressAndWordAsName", "j@a.example Jane <k@b.example>", "k@b.example|b.example|j@a.example Jane"},
        Row{"BracketedName", "[list] Jane <j@a.example>", "j@a.example|a.example|[list] Jane"},
        Row{"UnclosedBrackets", "Jane <j@a.example", "j@a.example|a.example|Jane"},
        Row{"UnopenedBrackets", "j@a.example>", "j@a.example|a.example|"},
        Row{"DoubledBrackets", "Jane <<j@a.example>>", "j@a.example|a.example|Jane"},
        Row{"UnclosedQuote", "\"Jane <j@a.example>", "j@a.example|a.example|Jane"},
        Row{"UnclosedQuoteWithEscapes", "\"Jane \\\" <j@a.example>", "j@a.example|a.example|Jane \\"},
        Row{"UnclosedComment", "j@a.example (Jane", "j@a.example|a.example|"},
        Row{"UnopenedComment", "j@a.example Jane)", "j@a.example|a.example|"},
        Row{"UnclosedLiteral", "j@[192.0.2.1", "j@192.0.2.1|192.0.2.1|"},
        Row{"WordsInBrackets", "<jane doe@a.example>", "jane doe@a.example|a.example|"},
        Row{"CommaInBrackets", "<1,2@a.example>", "1,2@a.example|a.example|"},
        Row{"ColonInBrackets", "<mailto:j@a.example>", "mailto:j@a.example|a.example|"},
        Row{"BackSlashInAWord", "<j\\d@a.example>", "j\\d@a.example|a.example|"},
        Row{"ControlsSeparate", std::string("j@a.example\0.b.example", 22),
            "j@a.example.b.example|a.example.b.example|"},
        Row{"FirstOfAList", "j@a.example, k@b.example", "j@a.example|a.example|"},
        Row{"FirstThatIsThere", ", <>, k@b.example", "k@b.example|b.example|"},
        Row{"FirstOfAGroup", "friends: j@a.example, k@b.example;", "j@a.example|a.example|"},
        Row{"QuotedDomain", "j@\"a\"", "j@\"a\"|\"a\"|"}),
    byRule);

struct ListRow {
    char const* rule;
    std::string text;
    Shapes shapes;
};

class AddressList : public testing::TestWithParam<ListRow> {};

TEST_P(AddressList, IsReadByBothReaders)
{
    EXPECT_EQ(GetParam().shapes, shapes(EmailAddress::rfc5322ParseList(GetParam().text, true)));
    EXPECT_EQ(GetParam().shapes, shapes(EmailAddress::rfc5322ParseList(GetParam().text, false)));
}

INSTANTIATE_TEST_SUITE_P(
    Rules, AddressList,
    testing::Values(
        ListRow{"Some",
                "j@a.example, Jane <k@b.example>,l@c.example (L)",
                {"j@a.example|a.example|", "k@b.example|b.example|Jane", "l@c.example|c.example|L"}},
        ListRow{"Group",
                "A Group:Ed <e@a.example>,j@b.example,John <k@c.example>;",
                {"e@a.example|a.example|Ed", "j@b.example|b.example|", "k@c.example|c.example|John"}},
        ListRow{"GroupAmongOthers",
                "j@a.example, g: k@b.example;, l@c.example",
                {"j@a.example|a.example|", "k@b.example|b.example|", "l@c.example|c.example|"}},
        ListRow{"EmptyGroupAmongOthers",
                "(Empty list)(start)Hidden recipients  :(nobody(that I know))  ;, j@a.example",
                {"j@a.example|a.example|"}},
        ListRow{"EmptyPlaces",
                "Mary Smith <@node.test:mary@a.example>, , jdoe@test  . example ,",
                {"mary@a.example|a.example|Mary Smith", "jdoe@test.example|test.example|"}},
        ListRow{"CommasInQuotesAndComments",
                "\"Doe, J\" <j@a.example>, k@b.example (a, b)",
                {"j@a.example|a.example|Doe, J", "k@b.example|b.example|a, b"}},
        ListRow{"GroupWithComments",
                "A Group(Some people)\r\n :Chris Jones <c@(Chris's host.)public.example>,\r\n joe@example.org;",
                {"c@public.example|public.example|Chris Jones", "joe@example.org|example.org|"}},
        ListRow{"SameAddressTwice", "j@a.example, j@a.example", {"j@a.example|a.example|", "j@a.example|a.example|"}}),
    byRule);

class OddAddressList : public testing::TestWithParam<ListRow> {};

TEST_P(OddAddressList, IsReadLenientlyOnly)
{
    EXPECT_EQ(GetParam().shapes, shapes(EmailAddress::rfc5322ParseList(GetParam().text, true)));
    try {
        EmailAddress::rfc5322ParseList(GetParam().text, false);
        FAIL() << GetParam().text;
    } catch (Exception const& e) {
        EXPECT_EQ(5, e.code());
        EXPECT_EQ("rfc5322ParseList", e.message());
    }
}

INSTANTIATE_TEST_SUITE_P(
    Rules, OddAddressList,
    testing::Values(
        ListRow{"Nothing", "", {}}, ListRow{"OnlyCommas", ",,,", {}},
        ListRow{"GroupOfNothing", "undisclosed-recipients:;", {}},
        ListRow{"SemicolonsBetween", "j@a.example; k@b.example;", {"j@a.example|a.example|", "k@b.example|b.example|"}},
        ListRow{"BareWords", "root, j@a.example", {"root||", "j@a.example|a.example|"}},
        ListRow{"CommaForgottenBehindBrackets",
                "A <j@a.example> B <k@b.example> c",
                {"j@a.example|a.example|A", "k@b.example|b.example|B"}},
        ListRow{"BracketForgotten",
                "A <j@a.example, B <k@b.example>",
                {"j@a.example|a.example|A", "k@b.example|b.example|B"}},
        ListRow{"UnclosedQuoteHidesNothing",
                "\"A <j@a.example>, k@b.example",
                {"j@a.example|a.example|A", "k@b.example|b.example|"}},
        ListRow{"UnclosedCommentHidesNothing",
                "j@a.example, (k@b.example, (l) m@c.example",
                {"j@a.example|a.example|", "k@b.example|b.example|", "m@c.example|c.example|l"}},
        ListRow{"LiteralHidesNoAddress",
                "j@[x, <k@b.example>], l@c.example",
                {"j@x|x|", "k@b.example|b.example|", "l@c.example|c.example|"}},
        ListRow{
            "AddressAheadOfAColon", "j@a.example: k@b.example", {"j@a.example|a.example|", "k@b.example|b.example|"}},
        ListRow{"GroupUnclosed", "g: j@a.example, k@b.example", {"j@a.example|a.example|", "k@b.example|b.example|"}},
        ListRow{
            "GroupInAGroup", "g: j@a.example, h: k@b.example;;", {"j@a.example|a.example|", "k@b.example|b.example|"}},
        ListRow{"GroupWithoutAName", ": j@a.example;", {"j@a.example|a.example|"}}),
    byRule);

struct CutRow {
    char const *rule, *separators;
    std::string text;
    Shapes shapes;
};

class CutAddressList : public testing::TestWithParam<CutRow> {};

TEST_P(CutAddressList, IsCutAtItsSeparators)
{
    CutRow const& row = GetParam();
    EXPECT_EQ(row.shapes, shapes(EmailAddress::rfc5322ParseList(row.text, std::string(row.separators))));
}

INSTANTIATE_TEST_SUITE_P(
    Rules, CutAddressList,
    testing::Values(
        CutRow{"Blanks", " ", "<1@a.example> <2@b.example>", {"1@a.example|a.example|", "2@b.example|b.example|"}},
        CutRow{"FoldedHeader",
               " ",
               "<1@a.example>\r\n\t<2@b.example>\n <3@c.example> ",
               {"1@a.example|a.example|", "2@b.example|b.example|", "3@c.example|c.example|"}},
        CutRow{"NoBlankInBrackets", " ", "<1 2@a.example>", {"1 2@a.example|a.example|"}},
        CutRow{"NoBlankInQuotes", " ", "\"1 2\"@a.example", {"\"1 2\"@a.example|a.example|"}},
        CutRow{"OneAddressOfAPiece", " ", "<1@a.example><2@b.example>", {"1@a.example|a.example|"}},
        CutRow{"BareWords", " ", "a b", {"a||", "b||"}},
        CutRow{"SeparatorsInARow",
               ",;",
               ",,1@a.example;;2@b.example,",
               {"1@a.example|a.example|", "2@b.example|b.example|"}},
        CutRow{"WhiteSpaceAroundIsDropped",
               ",",
               " 1@a.example \r\n, 2@b.example",
               {"1@a.example|a.example|", "2@b.example|b.example|"}},
        CutRow{"UnclosedBracketsHideNothing",
               " ",
               "<1@a.example <2@b.example> <3@c.example",
               {"2@b.example|b.example|", "3@c.example|c.example|"}},
        CutRow{"UnclosedQuoteHidesNothing",
               " ",
               "\"1@a.example 2@b.example",
               {"1@a.example|a.example|", "2@b.example|b.example|"}},
        CutRow{"NoSeparators", "", "1@a.example", {"1@a.example|a.example|"}}, CutRow{"Nothing", " ", "", {}}),
    byRule);

TEST(EmailAddress, ALiteralAsSeparatorsIsNoFlag)
{
    EXPECT_EQ(2u, EmailAddress::rfc5322ParseList("<1@a.example> <2@b.example>", " ").size());
    EXPECT_EQ(1u,
              EmailAddress::rfc5322ParseList("<1@a.example> <2@b.example>", static_cast<char const*>(nullptr)).size());
}

TEST(EmailAddress, IsNullWithoutAnAddress)
{
    EXPECT_TRUE(EmailAddress().isNull());
    EXPECT_TRUE(EmailAddress("").isNull());
    EXPECT_TRUE(EmailAddress("", "Jane").isNull());
    EXPECT_EQ("", EmailAddress("", "Jane").asString());
}

TEST(EmailAddress, IsMadeOfItsPartsAsTheyStand)
{
    EXPECT_EQ("j@a.example|a.example|", shape(EmailAddress("j@a.example")));
    EXPECT_EQ("j@a.example|a.example|Doe, J", shape(EmailAddress("j@a.example", "Doe, J")));
    EXPECT_EQ("\"j@x\"||", shape(EmailAddress("\"j@x\"")));
}

TEST(EmailAddress, IsPrintedWithQuotesWhereTheNameNeedsThem)
{
    auto const printed = [](char const* name) { return EmailAddress("j@a.example", name).asString(); };
    EXPECT_EQ("j@a.example", printed(""));
    EXPECT_EQ("Jane Doe <j@a.example>", printed("Jane Doe"));
    EXPECT_EQ("\"Doe, J.\" <j@a.example>", printed("Doe, J."));
    EXPECT_EQ("\"a \\\"b\\\" \\\\\" <j@a.example>", printed("a \"b\" \\"));
    EXPECT_EQ("\"Jane  Doe \" <j@a.example>", printed("Jane  Doe "));
    EXPECT_EQ("=?utf-8?Q?Doe,_J?= <j@a.example>", printed("=?utf-8?Q?Doe,_J?="));
    EXPECT_EQ("\"=?utf-8?Q?Doe\t?=\" <j@a.example>", printed("=?utf-8?Q?Doe\t?="));
    EXPECT_EQ("J\xc3\xa4n <j@a.example>", printed("J\xc3\xa4n"));
    EXPECT_EQ("\"j\"@a.example", EmailAddress("\"j\"@a.example").asString());
    EXPECT_EQ("<1,2@a.example>", EmailAddress("1,2@a.example").asString());
    EXPECT_EQ("j@[192.0.2.1]", EmailAddress("j@[192.0.2.1]").asString());
    EXPECT_EQ("<j@[192.0.2.1]x>", EmailAddress("j@[192.0.2.1]x").asString());
    EXPECT_EQ("<j@[192.0.2.1;>", EmailAddress("j@[192.0.2.1;").asString());
}

TEST(EmailAddress, ComparesAddressThenNameToTheByte)
{
    EmailAddress const a("a@a.example"), named("a@a.example", "A"), upper("A@a.example");
    EXPECT_TRUE(a == EmailAddress("a@a.example") && a != named && a != upper);
    EXPECT_TRUE(a < named && !(named < a) && upper < a && EmailAddress() < upper);
}

std::string repeated(std::string const& piece, size_t size)
{
    std::string text;
    while (text.size() < size) text += piece;
    return text;
}

// Each would take hours if a partner were looked for again at each opening.
TEST(EmailAddress, MegabytesOfOneCharacterCostLittle)
{
    for (char const* piece : {",", "(", "\""}) {
        std::string const text(10000000, *piece);
        EXPECT_EQ(Shapes(), shapes(EmailAddress::rfc5322ParseList(text, true))) << piece;
        EXPECT_EQ(Shapes(), shapes(EmailAddress::rfc5322ParseList(text, ","))) << piece;
    }
    for (char const* piece : {")",      "()",      "\\\"", "<",  ">",   "<,", "@",  "@[",  ":",  ";",   ".",   ". ",
                              "=?x?q?", "=?x?q? ", "=?x",  "<@", "\"(", "((", "a ", "<a:", "g:", "(\\", "a@[b"}) {
        std::string const text = repeated(piece, 1000000);
        EXPECT_LE(EmailAddress::rfc5322ParseList(text, true).size(), 1u) << piece;
        EXPECT_LE(EmailAddress::rfc5322ParseList(text, ",").size(), 1u) << piece;
        EmailAddress::rfc5322Parse(text, true);
    }
    EXPECT_EQ(100000u, EmailAddress::rfc5322ParseList(repeated("=?x?q?,", 700000), true).size());
    EXPECT_EQ(0u, EmailAddress::rfc5322ParseList(repeated("=?x?q?\?=,", 900000), true).size());
}

} // namespace
} // namespace Velmara
