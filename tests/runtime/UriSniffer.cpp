#include <velmara/Uri.h>

#include <gtest/gtest.h>

namespace Velmara {
namespace {

using Texts = std::vector<std::string>;

Texts sniffed(std::string const& text, bool bareNames)
{
    UriContainer found;
    UriSniffer::search(found, text, 0, bareNames);
    Texts texts;
    for (Uri const& uri : found.hrefs(0)) texts.push_back(uri.asString());
    return texts;
}

struct Row {
    char const* rule;
    std::string text;
    Texts uris;
};
class UriSnifferText : public testing::TestWithParam<Row> {};

TEST_P(UriSnifferText, GivesItsUris)
{
    EXPECT_EQ(GetParam().uris, sniffed(GetParam().text, false));
}

auto const byRule = [](auto const& row) { return std::string(row.param.rule); };

INSTANTIATE_TEST_SUITE_P(
    Beginnings, UriSnifferText,
    testing::Values(Row{"Scheme", "see http://a.example/x now", {"http://a.example/x"}},
                    Row{"AnyCase", "HTTP://A.EXAMPLE/X", {"HTTP://A.EXAMPLE/X"}},
                    Row{"BackSlashes", "http:\\\\a.example\\x", {"http:\\\\a.example\\x"}},
                    Row{"OneSlashOfAWebScheme", "http:/a.example", {"http:/a.example"}},
                    Row{"NoSlashIsText", "http:a.example", {}},
                    Row{"UnknownScheme", "git+ssh://a.example/x", {"git+ssh://a.example/x"}},
                    Row{"UnknownSchemeNeedsTwoSlashes", "note:/a.example key:value", {}},
                    Row{"UnknownSchemeOfOneLetter", "c://a.example", {}},
                    Row{"UnknownSchemeOf40LettersAtMost",
                        "x" + std::string(40, 'y') + "://a.example",
                        {std::string(40, 'y') + "://a.example"}},
                    Row{"SchemeBehindOtherLetters", "seehttp://a.example/", {"http://a.example/"}},
                    Row{"SchemeBehindAnotherColon", "URL:http://a.example/", {"http://a.example/"}},
                    Row{"SchemeBehindBrackets", "(<http://a.example/>)", {"http://a.example/"}},
                    Row{"Mail", "mailto:b@c.example", {"mailto:b@c.example"}},
                    Row{"MailWithSubject", "<mailto:b@c.example?subject=help>", {"mailto:b@c.example?subject=help"}},
                    Row{"SchemeAloneIsText", "mailto: http:// https: x", {}},
                    Row{"News", "news:alt.test", {"news:alt.test"}},
                    Row{"Www", "see www.a.example/x", {"http://www.a.example/x"}},
                    Row{"WwwInAnyCase", "WWW.a.example", {"http://WWW.a.example"}},
                    Row{"WwwBehindLetters", "xwww.a.example", {}}, Row{"WwwInAPath", "x/www.a.example", {}},
                    Row{"WwwOfAMailAddress", "b@www.a.example", {}}, Row{"WwwAlone", "www. www.. www.!", {}},
                    Row{"WwwOfALetterBeyondAscii", "www.\xc3\xa4.example", {"http://www.\xc3\xa4.example"}},
                    Row{"WwwOfAnEscape", "www.%61.example", {"http://www.%61.example"}},
                    Row{"WwwBehindChineseText", "\xe7\x9c\x8bwww.a.example", {"http://www.a.example"}},
                    Row{"BareNameNeedsTheFlag", "a.example/x 192.0.2.1", {}},
                    Row{"HostThatReachesNothing", "http://a..b..c%/ http://256.1.1.1/ irc:///x", {}},
                    Row{"SameUriOnce", "http://a.example http://a.example", {"http://a.example"}}),
    byRule);

INSTANTIATE_TEST_SUITE_P(
    Ends, UriSnifferText,
    testing::Values(
        Row{"WhiteSpace", "http://a.example/x\ty\nhttp://b.example\r\n", {"http://a.example/x", "http://b.example"}},
        Row{"Control", std::string("http://a.example/\0x", 19), {"http://a.example/"}},
        Row{"Attribute",
            "<a href=\"http://a.example/x\">http://b.example</a>",
            {"http://a.example/x", "http://b.example"}},
        Row{"AttributeInSingleQuotes", "<a href='http://a.example/x'>", {"http://a.example/x"}},
        Row{"AttributeWithoutQuotes", "<a href=http://a.example/x>", {"http://a.example/x"}},
        Row{"StyleSheet", "url(http://a.example/x.png);", {"http://a.example/x.png"}},
        Row{"Punctuation",
            "http://a.example/x. http://b.example/y?! (http://c.example),",
            {"http://a.example/x", "http://b.example/y", "http://c.example"}},
        Row{"BracketsWithPartnersStay", "http://a.example/x_(y)", {"http://a.example/x_(y)"}},
        Row{"BracketsWithoutPartnersGo", "[http://a.example/x_(y))]", {"http://a.example/x_(y)"}},
        Row{"PunctuationInsideStays", "http://a.example/x.y,z!w'v", {"http://a.example/x.y,z!w'v"}},
        Row{"QuotesInPairsStay", "http://a.example/'x'", {"http://a.example/'x'"}},
        Row{"UnicodeQuotes", "\xe2\x80\x9chttp://a.example/x\xe2\x80\x9d", {"http://a.example/x"}},
        Row{"IdeographicSpace", "http://a.example/x\xe3\x80\x80y", {"http://a.example/x"}},
        Row{"NoBreakSpace", "http://a.example/x\xc2\xa0y", {"http://a.example/x"}},
        Row{"IdeographicFullStopIsADot",
            "http://a\xe3\x80\x82"
            "example/",
            {"http://a\xe3\x80\x82"
             "example/"}},
        Row{"International",
            "http://b\xc3\xbc"
            "cher.example/\xc3\xa4",
            {"http://b\xc3\xbc"
             "cher.example/\xc3\xa4"}},
        Row{"SeparatorAheadOfAnother",
            "http://a.example/x,http://b.example;www.c.example|mailto:d@e.example",
            {"http://a.example/x", "http://b.example", "http://www.c.example", "mailto:d@e.example"}},
        Row{"SeparatorAlone", "http://a.example/x,y;z", {"http://a.example/x,y;z"}},
        Row{"UriInAQueryBelongsToIt", "http://a.example/?u=http://b.example", {"http://a.example/?u=http://b.example"}},
        Row{"CutUtf8", "http://a.example/\xe3\x80", {"http://a.example/\xe3\x80"}}),
    byRule);

class UriSnifferName : public testing::TestWithParam<Row> {};

TEST_P(UriSnifferName, IsFoundWithoutAScheme)
{
    EXPECT_EQ(GetParam().uris, sniffed(GetParam().text, true));
}

INSTANTIATE_TEST_SUITE_P(
    BareNames, UriSnifferName,
    testing::Values(Row{"Name", "a.example", {"http://a.example"}},
                    Row{"NameAndPath", "a.example/x?y#z", {"http://a.example/x?y#z"}},
                    Row{"NameAndPort", "a.example:80/x", {"http://a.example:80/x"}},
                    Row{"NameAndLabel", "a.example:b", {}},
                    Row{"NameInASentence", "Go to a.example.", {"http://a.example"}},
                    Row{"OneLabel", "localhost/x", {}}, Row{"Address", "192.0.2.1/x", {"http://192.0.2.1/x"}},
                    Row{"Number", "1.5 192.0.2 3221225985", {}}, Row{"OneLetterAtTheEnd", "e.g i.e", {}},
                    Row{"EmptyLabel", "a..example .a.example .example", {}}, Row{"OnlyDots", "....", {}},
                    Row{"SignInTheLastLabel", "a.b_c a.bc_", {}},
                    Row{"HyphenInTheLastLabel", "a.xn--p1ai", {"http://a.xn--p1ai"}},
                    Row{"EscapedName", "%61.example/x", {"http://%61.example/x"}},
                    Row{"EscapedDot", "a%2eexample", {"http://a%2eexample"}}, Row{"EscapedNonsense", "100%.of", {}},
                    Row{"International",
                        "b\xc3\xbc"
                        "cher.example",
                        {"http://b\xc3\xbc"
                         "cher.example"}},
                    Row{"MailAddress", "b@c.example b.c@d.example", {}},
                    Row{"ContentIdIsAnAddress", "cid:image001.png@01D.ABC", {}}, Row{"NameInAPath", "x/a.example", {}},
                    Row{"NameAsAParameter", "x=a.example", {"http://a.example"}},
                    Row{"PageScheme", "//a.example/x", {"http://a.example/x"}},
                    Row{"PageSchemeWithBackSlashes", "\\/\\a.example\\x", {"http://a.example\\x"}},
                    Row{"PageSchemeWithAUser", "//bank.example@a.example/x", {"http://bank.example@a.example/x"}},
                    Row{"PageSchemeNeedsTwoSlashes", "/a.example/x", {}},
                    Row{"SchemeStillCounts", "http://a.example/ b.example", {"http://a.example/", "http://b.example"}},
                    Row{"SchemeInItsQuery", "a.example/?u=http://b.example", {"http://a.example/?u=http://b.example"}}),
    byRule);

TEST(UriSniffer, BeginsWhereItIsTold)
{
    UriContainer found;
    std::string const text = "http://a.example http://b.example";
    UriSniffer::search(found, text, 16, false);
    ASSERT_EQ(1u, found.hrefs(0).size());
    EXPECT_EQ("http://b.example", found.hrefs(0).front().asString());
    UriSniffer::search(found, text, text.size(), false);
    UriSniffer::search(found, text, ~0ul, false);
    EXPECT_EQ(1u, found.hrefs(0).size());
}

TEST(UriSniffer, AddsUnderTheCurrentIdentifierAndReadsBuffers)
{
    UriContainer found;
    found.currentId(42);
    std::string const text = "x http://a.example/ y";
    UriSniffer::search(found, Buffer(text.data(), static_cast<unsigned int>(text.size()), true), false);
    EXPECT_EQ(1u, found.hrefs(42).size());
    EXPECT_EQ(0u, found.hrefs(0).size());
    UriSniffer::search(found, Buffer(), true);
}

std::string repeated(std::string const& piece, size_t size)
{
    std::string text;
    while (text.size() < size) text += piece;
    return text;
}

// Each would take minutes if a character were looked at once for each beginning before it.
TEST(UriSniffer, MegabytesOfBeginningsCostLittle)
{
    for (char const* piece :
         {"http://",  "www.",           ".",   "a.", "a:",   "://",    "http:/",    "mailto:",  "(",  "a.b", "//",
          "\xe3\x80", "www.a.example,", "%2e", "-.", "a.b,", "x://a,", "\xc3\xa4.", "http://)", "/a."})
        for (bool const bareNames : {false, true}) {
            std::string const text = repeated(piece, 2000000);
            UriContainer found;
            UriSniffer::search(found, text, 0, bareNames);
            EXPECT_LE(found.hrefs(0).size(), 2u) << piece;
        }
}

} // namespace
} // namespace Velmara
