#include <velmara/HtmlTxtExtract.h>

#include <gtest/gtest.h>
#include <velmara/Logger.h>
#include <velmara/Uri.h>

#include "html/Extracts.h"

namespace Velmara {
namespace {

/// What a document gives, with links if there is a container for them.
struct Extract {
    Extract(std::string const& html, UriContainer* uris) : output(recorded, false)
    {
        readHtml(html, [&](TextHtmlDoc& document) {
            document.addVisitor(Ref<HtmlDocVisitor>(new HtmlTxtExtract(&document, 7, output, uris), false));
        });
    }
    RecordedImpl* recorded = new RecordedImpl;
    MediaOut output; // owns it
};

/// The links of a document, each in angle brackets.
std::string links(std::string const& html, unsigned long id = 7)
{
    UriContainer uris;
    Extract(html, &uris);
    std::string all;
    for (Uri const& uri : uris.hrefs(id)) all += "<" + uri.asString() + ">";
    return all;
}

struct Row {
    char const* rule;
    std::string html, expected;
};
std::string ruleOf(testing::TestParamInfo<Row> const& row)
{
    return row.param.rule;
}

class ExtractedText : public testing::TestWithParam<Row> {};

TEST_P(ExtractedText, IsWhatAReaderSees)
{
    EXPECT_EQ(GetParam().expected, Extract(GetParam().html, nullptr).recorded->text);
}

INSTANTIATE_TEST_SUITE_P(
    Rules, ExtractedText,
    testing::Values(Row{"NothingFromNothing", "", ""}, Row{"BrIsALineFeed", "<i>one<br>two</i>", "one\ntwo"},
                    Row{"PIsALineFeedAtItsStart", "<p>one</p><p>two</p>", "\none\ntwo"},
                    Row{"HeadingsAndRulesAre", "<h1>a</h1><hr><h6>b</h6>", "\na\n\nb"},
                    Row{"ALineFeedIsABlank", "<p>one\ntwo", "\none two"},
                    Row{"ALineThatEndsInABlankGetsNoOther", "<p>one \ntwo", "\none two"},
                    Row{"ABlankAheadOfTheSecondLineStays", "<p>one\n two", "\none  two"},
                    Row{"ACarriageReturnIsNoBlank", "<p>one\r\ntwo", "\none\r two"},
                    Row{"EmptyLinesLeaveNoTrace", "<p>one\n\n\ntwo", "\none two"},
                    Row{"OnlyLineFeedsGiveNothing", "<p>a<b>\n\n</b>c", "\nac"},
                    Row{"ALineFeedAtTheEndIsABlank", "<p>one\n<b>two", "\none two"},
                    Row{"BlanksAreKept", "<p>  a   b  <b>c", "\n  a   b  c"},
                    Row{"DivIsNoBreak", "<div>a</div><div>b</div>", "ab"},
                    Row{"CellsRunTogetherAndARowEndsALine",
                        "<table><tr><td>a</td><td>b</td></tr><tr><td>c</td></tr></table>d", "ab\nc\nd"},
                    Row{"ABlankBehindALink", "<i><a>x</a>y</i>", "x y"},
                    Row{"ABlankBehindAreaAndBase", "<body><area>x<base>y", " x y"},
                    Row{"HiddenTextIsNot", "<i>a<font color=white>b", "a"},
                    Row{"AHiddenBrIsNot", "<i>a<font color=white><br>b<font color=black>c", "ac"},
                    Row{"AHiddenRowEndsNoLine", "<table><tr><td>a<font color=white></td></tr></table>", "a"},
                    Row{"TheBlankBehindAHiddenLinkIs", "<i>a<font color=white><a>b</a><font color=black>c", "a c"},
                    Row{"CommentsAndScriptsAreNot", "<i>a<!--b--><script>c</script><style>d</style>e", "ae"},
                    Row{"TitleIs", "<title>a</title><i>b", "ab"},
                    Row{"EntitiesAreDecoded", "<i>&lt;&auml;&#x20ac;", "<\xc3\xa4\xe2\x82\xac"},
                    Row{"FurtherDocumentsFollow", "<p>a</p></html><p>b", "\na\nb"}),
    ruleOf);

/// The character sets that were told, each with a semicolon.
class DeclaredCharset : public testing::TestWithParam<Row> {};

TEST_P(DeclaredCharset, IsToldToTheOutput)
{
    EXPECT_EQ(GetParam().expected, Extract(GetParam().html, nullptr).recorded->charset);
}

INSTANTIATE_TEST_SUITE_P(
    Rules, DeclaredCharset,
    testing::Values(
        Row{"DeclaredCharsetIsTold", "<meta http-equiv=Content-Type content='text/html; charset=utf-8'><i>x", "utf-8;"},
        Row{"InAnyOrderAndCase", "<META CONTENT='text/html; charset=utf-8' HTTP-EQUIV=x>", "utf-8;"},
        Row{"HttpEquivMayBeAnything", "<meta http-equiv=refresh content='5; url=x'>", ";"},
        Row{"WithoutHttpEquivNothing", "<meta content='text/html; charset=utf-8'>", ""},
        Row{"WithAnEmptyHttpEquivNothing", "<meta http-equiv='' content='text/html; charset=utf-8'>", ""},
        Row{"WithoutContentNothing", "<meta http-equiv=Content-Type charset=utf-8>", ""},
        Row{"InTheBodyNothing", "<body><meta http-equiv=Content-Type content='text/html; charset=utf-8'>x", ""}),
    ruleOf);

class ExtractedLinks : public testing::TestWithParam<Row> {};

TEST_P(ExtractedLinks, AreUnderTheIdentifier)
{
    EXPECT_EQ(GetParam().expected, links(GetParam().html));
}

/// Pushes links beyond the head of the source, which is searched anyhow.
std::string const far(2048, ' ');

INSTANTIATE_TEST_SUITE_P(
    Attributes, ExtractedLinks,
    testing::Values(
        Row{"HrefOfA", far + "<a href='http://a.example/x'>", "<http://a.example/x>"},
        Row{"HrefOfAreaAndBase", far + "<base href='http://b.example/'><area href='http://a.example/'>",
            "<http://b.example/><http://a.example/>"},
        Row{"SrcOfImg", far + "<img src='http://a.example/x.png'>", "<http://a.example/x.png>"},
        Row{"SrcOfEmbedAndFrame", far + "<embed src='http://a.example/'><frame src='http://b.example/'>",
            "<http://a.example/><http://b.example/>"},
        Row{"ActionOfForm", far + "<form action='http://a.example/x'>", "<http://a.example/x>"},
        Row{"BackgroundOfTd", far + "<table><td background='http://a.example/x'>", "<http://a.example/x>"},
        Row{"BackgroundOfBody", far + "<body background='http://a.example/x'>", "<http://a.example/x>"},
        Row{"NamesInAnyCase", far + "<A HREF='http://a.example/x'>", "<http://a.example/x>"},
        Row{"OtherAttributesAreNot", far + "<a title='http://a.example/x'><img longdesc='http://a.example/'>", ""},
        Row{"OtherElementsAreNot", far + "<script src='http://a.example/x'></script><div href='http://a.example/x'>",
            ""},
        Row{"HiddenLinksAre", far + "<font color=white><a href='http://a.example/x'>", "<http://a.example/x>"},
        Row{"TwiceTheSameIsOnce", far + "<a href='http://a.example/x'></a><a href='http://a.example/x'>",
            "<http://a.example/x>"},
        Row{"ValuesAreTrimmed", far + "<a href=' \t\r\nhttp://a.example/x\n '>", "<http://a.example/x>"},
        Row{"TextBehindTheHeadIsNotSearched", far + "http://a.example/x", ""}),
    ruleOf);

INSTANTIATE_TEST_SUITE_P(
    Values, ExtractedLinks,
    testing::Values(
        Row{"ShortValuesAreSniffed", far + "<a href='ftp://a.b'>", "<ftp://a.b>"},
        Row{"ShortValuesMayHoldNothing", far + "<a href='x'>", ""},
        Row{"AValueThatBeginsWithNoLetterIsSniffed", far + "<a href='//www.a.example/x'>", "<http://www.a.example/x>"},
        Row{"AValueWithoutAColonIsSniffed", far + "<a href='www.a.example/x'>", "<http://www.a.example/x>"},
        Row{"AValueWithoutADotMayHoldNothing", far + "<a href='javascript:go(1)'>", ""},
        Row{"AValueWithoutASlashMayHoldNothing", far + "<a href='about:blank.1'>", ""},
        Row{"MailtoWithAnAddress", far + "<a href='mailto:x@a.example'>", "<mailto:x@a.example>"},
        Row{"MailtoInCapitals", far + "<a href='MAILTO:x@a.example'>", "<MAILTO:x@a.example>"},
        Row{"MailtoWithoutAnAddressGoesToTheSnifferToWhichItIsALink", far + "<a href='mailto:no%body'>",
            "<mailto:no%body>"},
        Row{"AContentIdLeadsNowhere", far + "<img src=cid:logo-of-the-shop>", ""},
        Row{"APercentSignMayHideTheDot", far + "<a href='http://a%2eexample'>", "<http://a%2eexample>"},
        Row{"AUriBehindOtherTextIsSniffed", far + "<a href='go to http://a.example/x now'>", "<http://a.example/x>"},
        Row{"AUriWithoutAHostIsSniffed", far + "<a href='irc:///x.y/ http://a.example/z'>", "<http://a.example/z>"},
        Row{"AnEmptyValueIsNone", far + "<a href=''><a href>", ""}),
    ruleOf);

TEST(HtmlTxtExtract, OtherIdentifiersGetNothing)
{
    EXPECT_EQ("", links(far + "<a href='http://a.example/x'>", 0));
}

TEST(HtmlTxtExtract, UrisInTheFirst2048BytesOfTheSourceAreLinks)
{
    std::string const uri = "http://a.example/x";
    // The search at the end goes under the identifier that was selected last, by a link of the document.
    std::string const link = "<a href=http://b.example/>";
    EXPECT_EQ("<http://b.example/><http://a.example/x>", links(link + "<!-- " + uri + " -->"));
    std::string const ahead = link + std::string(2048 - link.size() - uri.size(), ' ');
    EXPECT_EQ("<http://b.example/><http://a.example/x>", links(ahead + uri));
    EXPECT_EQ("<http://b.example/><http://a.example/>", links(ahead + " " + uri));
}

TEST(HtmlTxtExtract, WithoutABodyTheHeadOfTheSourceGoesUnderThePresentIdentifier)
{
    EXPECT_EQ("<http://a.example/x>", links("<body>http://a.example/x", 7));
    EXPECT_EQ("<http://a.example/x>", links("<title>http://a.example/x</title>", 0));
    EXPECT_EQ("", links("<title>http://a.example/x</title>", 7));
}

TEST(HtmlTxtExtract, BareNamesInTheSourceAreNoLinks)
{
    EXPECT_EQ("", links("a.example/x"));
    EXPECT_EQ("<http://www.a.example/x>", links("www.a.example/x"));
}

TEST(HtmlTxtExtract, AValueThatIsNoUriIsLoggedAndSniffed)
{
    std::string log;
    Logger::setSink([&](unsigned int id, std::string const& message) { log += std::to_string(id) + "|" + message; });
    std::string const found = links(far + "<a href='x%y www.a.example/z'>");
    Logger::setSink(nullptr);
    EXPECT_EQ("50331648|7\x01"
              "HtmlTxtExtract::href: Error parsing URI x%y www.a.example/z",
              log);
    EXPECT_EQ("<http://www.a.example/z>", found);
}

TEST(HtmlTxtExtract, WithoutAContainerOnlyTheTextIsMade)
{
    Extract const extract("<p><a href='http://a.example/x'>x</a><img src='y'>", nullptr);
    EXPECT_EQ("\nx ", extract.recorded->text);
}

TEST(HtmlTxtExtract, TheEndOfTheDocumentEndsTheOutputOnce)
{
    UriContainer uris;
    EXPECT_EQ(1, Extract("<p>x</html><p>y", nullptr).recorded->ends);
    EXPECT_EQ(1, Extract("<p>x</html><p>y", &uris).recorded->ends);
}

TEST(HtmlTxtExtract, NodesWithoutContentAndWhatIsNoElementGiveNothing)
{
    auto* recorded = new RecordedImpl;
    MediaOut const output(recorded, false);
    TextHtmlDoc document(true);
    UriContainer uris;
    HtmlTxtExtract extract(&document, 7, output, &uris);
    extract.text(BareNode(XML_TEXT_NODE, "text").node());
    extract.endTag(nullptr);
    extract.endTag(BareNode(XML_COMMENT_NODE, "a").node());
    BareNode link(XML_COMMENT_NODE, "a");
    link.attribute("href", "http://a.example/");
    extract.href(link.node());
    BareNode empty(XML_ELEMENT_NODE, "a");
    empty.attribute("href", nullptr);
    extract.href(empty.node());
    EXPECT_EQ("", recorded->text);
    EXPECT_TRUE(uris.hrefs(7).empty());
}

TEST(HtmlTxtExtract, AHostHiddenInPercentEscapesIsFound)
{
    UriContainer uris;
    Extract(far + "<a href=http://%61.example/x>x</a>", &uris);
    ASSERT_EQ(1u, uris.hrefs(7).size());
    EXPECT_EQ("a.example", uris.hrefs(7).front().hostname().asString());
}

TEST(HrefAttributePatterns, HasFourNamesInAnyCase)
{
    StringPattern const& set = HrefAttributePatterns::instance();
    for (char const* name : {"href", "ACTION", "Src", "background"}) EXPECT_TRUE(set.matches(name)) << name;
    for (char const* name : {"", "hrefs", "bgcolor", "data-src"}) EXPECT_FALSE(set.matches(name)) << name;
}

} // namespace
} // namespace Velmara
