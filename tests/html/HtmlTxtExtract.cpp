#include <velmara/HtmlTxtExtract.h>
#include <velmara/Logger.h>
#include <velmara/Uri.h>

#include <gtest/gtest.h>

#include "html/Extracts.h"

namespace Velmara {
namespace {

/// What comes out of a body.
struct Extract {
    explicit Extract(std::string const& html, bool withLinks = false)
    {
        readHtml(html, [&](TextHtmlDoc& document) {
            MediaOut out(recorded, true);
            document.addVisitor(
                Ref<HtmlDocVisitor>(new HtmlTxtExtract(&document, 7, out, withLinks ? &uris : nullptr), false));
        });
    }
    ~Extract() { MediaOut(recorded, false); }

    /// The links under the identifier of the part, a blank behind each.
    std::string links() const
    {
        std::string text;
        for (Uri const& uri : uris.hrefs(7)) text += uri.asString() + " ";
        return text;
    }

    RecordedImpl* recorded = new RecordedImpl;
    UriContainer uris;
};

struct Row {
    char const* rule;
    char const* html;
    char const* text;
};

class Texts : public testing::TestWithParam<Row> {};

TEST_P(Texts, AreWhatAReaderSees)
{
    EXPECT_EQ(GetParam().text, Extract(GetParam().html).recorded->text);
}

INSTANTIATE_TEST_SUITE_P(
    Bodies, Texts,
    testing::Values(
        Row{"ABreakBeginsALine", "<body>one<br>two</body>", "one\ntwo"},
        Row{"AParagraphBeginsALineAndEndsNone", "<body><p>one</p><p>two</p></body>", "\none\ntwo"},
        Row{"AHeadingAndARuleToo", "<body>a<h1>b</h1><hr>c</body>", "a\nb\nc"},
        Row{"ALineFeedInTextIsABlank", "<body>one\ntwo</body>", "one two"},
        Row{"ABlankAheadOfTheLineFeedIsNotDoubled", "<body>one \ntwo</body>", "one two"},
        Row{"TextOfLineFeedsAloneIsNothing", "<body><b>\n\n\n</b></body>", ""},
        Row{"AnEmptyLineWithinIsNothing", "<body>one\n\ntwo</body>", "one two"},
        Row{"NoLineEndsBehindADiv", "<body><div>one</div><div>two</div></body>", "onetwo"},
        Row{"CellsRunTogetherAndARowEndsALine",
            "<body><table><tr><td>one</td><td>two</td></tr><tr><td>three</td></tr></table></body>", "onetwo\nthree\n"},
        Row{"ALinkEndsInABlank", "<body><a href=x>one</a>two</body>", "one two"},
        Row{"HiddenTextIsLeftOut", "<body>seen<font color=white>not</font></body>", "seen"},
        Row{"AHiddenBreakBeginsNoLine", "<body>seen<font color=white>not<br></font></body>", "seen"},
        Row{"AHiddenLinkStillEndsInABlank", "<body>seen<font color=white><a href=x>not</a></font></body>", "seen "},
        Row{"CommentsAreNoText", "<body>one<!-- two --></body>", "one"},
        Row{"EntitiesAreResolved", "<body>a &amp; b&nbsp;c</body>",
            "a & b\xC2\xA0"
            "c"}),
    [](auto const& row) { return std::string(row.param.rule); });

TEST(HtmlTxtExtract, TheEndOfTheDocumentEndsTheOutputOnce)
{
    EXPECT_EQ(1, Extract("<body>x</body>").recorded->ends);
    EXPECT_EQ(1, Extract("<body>x</body>", true).recorded->ends);
}

TEST(HtmlTxtExtract, ADeclaredCharacterSetIsToldToTheOutput)
{
    char const* html = "<html><head><META HTTP-EQUIV=x CONTENT='text/html; charset=koi8-r'></head><body></body>";
    EXPECT_EQ("koi8-r;", Extract(html).recorded->charset);
}

TEST(HtmlTxtExtract, ADeclarationNeedsBothAttributesAndStandsAheadOfTheBody)
{
    EXPECT_EQ("", Extract("<head><meta content='text/html; charset=koi8-r'></head><body></body>").recorded->charset);
    EXPECT_EQ("", Extract("<head><meta http-equiv='' content='text/html; charset=koi8-r'></head><body></body>")
                      .recorded->charset);
    EXPECT_EQ("", Extract("<body><meta http-equiv=x content='text/html; charset=koi8-r'></body>").recorded->charset);
}

struct LinkRow {
    char const* rule;
    char const* element;
    char const* links;
};

class Links : public testing::TestWithParam<LinkRow> {};

TEST_P(Links, AreCollected)
{
    // Behind the head of the source, so that only the attributes count.
    std::string const html = "<body><!--" + std::string(2100, 'x') + "-->" + GetParam().element + "</body>";
    EXPECT_EQ(GetParam().links, Extract(html, true).links());
}

INSTANTIATE_TEST_SUITE_P(
    Elements, Links,
    testing::Values(LinkRow{"OfALink", "<a href=' http://a.example/x '>x</a>", "http://a.example/x "},
                    LinkRow{"OfAnImage", "<img src=http://a.example/i.png>", "http://a.example/i.png "},
                    LinkRow{"OfAForm", "<form action=http://a.example/f></form>", "http://a.example/f "},
                    LinkRow{"OfABackground", "<table><tr><td background=http://a.example/b>x</td></tr></table>",
                            "http://a.example/b "},
                    LinkRow{"OtherAttributesAreNone", "<a title=http://a.example/x>x</a>", ""},
                    LinkRow{"TheSameLinkOnce", "<a href=http://a.example/x>x</a><a href=http://a.example/x>y</a>",
                            "http://a.example/x "},
                    LinkRow{"AShortValueIsSearchedOnly", "<a href=a:b.c/d>x</a>", ""},
                    LinkRow{"MailWithAnAddress", "<a href=mailto:ann@reader.example>x</a>",
                            "mailto:ann@reader.example "},
                    LinkRow{"MailWithoutAnAddressGoesToTheSnifferToWhichItIsALink", "<a href=mailto:annreader>x</a>",
                            "mailto:annreader "},
                    LinkRow{"AContentIdLeadsNowhere", "<img src=cid:logo-of-the-shop>", ""}),
    [](auto const& row) { return std::string(row.param.rule); });

TEST(HtmlTxtExtract, AHostHiddenInPercentEscapesIsFound)
{
    Extract const extract("<body><!--" + std::string(2100, 'x') + "--><a href=http://%61.example/x>x</a></body>", true);
    ASSERT_EQ(1u, extract.uris.hrefs(7).size());
    EXPECT_EQ("a.example", extract.uris.hrefs(7).front().hostname().asString());
}

TEST(HtmlTxtExtract, TheFirst2048BytesOfTheSourceAreSearchedForLinks)
{
    std::string const link = "http://a.example/x";
    std::string const start = "<body><!-- ";
    Extract const within(start + std::string(2048 - start.size() - link.size() - 1, 'x') + " " + link + " --></body>",
                         true);
    EXPECT_EQ(1u, within.uris.hrefs(0).size() + within.uris.hrefs(7).size());
    Extract const behind(start + std::string(2100, 'x') + " " + link + " --></body>", true);
    EXPECT_EQ(0u, behind.uris.hrefs(0).size() + behind.uris.hrefs(7).size());
}

TEST(HtmlTxtExtract, WithoutAContainerNoLinksAreLookedFor)
{
    EXPECT_EQ("x ", Extract("<body><a href=http://a.example/x>x</a></body>", false).recorded->text);
}

} // namespace
} // namespace Velmara
