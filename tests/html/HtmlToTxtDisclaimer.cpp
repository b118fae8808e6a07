#include <velmara/HtmlToTxtDisclaimer.h>

#include <gtest/gtest.h>

#include "html/Extracts.h"

namespace Velmara {
namespace {

/// What is written, and behind it the character sets that were told.
std::string text(std::string const& html)
{
    auto* recorded = new RecordedImpl;
    MediaOut const output(recorded, false);
    readHtml(html, [&](TextHtmlDoc& document) {
        document.addVisitor(Ref<HtmlDocVisitor>(new HtmlToTxtDisclaimer(&document, output), false));
    });
    EXPECT_EQ(1, recorded->ends);
    return recorded->text + recorded->charset;
}

struct Row {
    char const* rule;
    std::string html, expected;
};
class Disclaimer : public testing::TestWithParam<Row> {};

TEST_P(Disclaimer, IsTextForPeople)
{
    EXPECT_EQ(GetParam().expected, text(GetParam().html));
}

std::string ruleOf(testing::TestParamInfo<Row> const& row)
{
    return row.param.rule;
}

INSTANTIATE_TEST_SUITE_P(
    Breaks, Disclaimer,
    testing::Values(
        Row{"BrEndsALine", "<i>a<br>b", "a\nb"}, Row{"TwoBrAreOneLineFeed", "<i>a<br><br>b", "a\nb"},
        Row{"PEndsALine", "<p>a</p><p>b</p>", "a\nb\n"}, Row{"DivEndsALine", "<div>a</div>b", "a\nb"},
        Row{"BlocksWithinBlocksAreOneLineFeed", "<div><div>a</div></div>b", "a\nb"},
        Row{"ListsEndLines", "<ul><li>a<li>b</ul><dl><dt>c<dd>d</dl>", "a\nb\nc\nd\n"},
        Row{"HeadingsEndLines", "<h1>a</h1><h2>b</h2><h3>c</h3><h4>d</h4><h5>e</h5><h6>f</h6>", "a\nb\nc\nd\ne\nf\n"},
        Row{"H7DoesNot", "<h7>a</h7><i>b", "ab"}, Row{"HrDoesNot", "<i>a<hr>b", "ab"},
        Row{"NamesInAnyCase", "<DIV>a</DIV><I>b", "a\nb"},
        Row{"CellsEndInABlankRowsInALineFeed", "<table><tr><td>a</td><th>b</th></tr></table>", "a b \n"},
        Row{"ALineFeedMayBeFollowedByABlank", "<table><tr><td><p>a</p></td></tr></table>", "a\n \n"},
        Row{"SpanEndsInABlank", "<i><span>a</span>b", "a b"}, Row{"OneBlankIsEnough", "<i><span>a </span>b", "a b"},
        Row{"AnEmptyDocumentIsALineFeedForItsFirstBlock", "<p></p>", "\n"}, Row{"NothingFromNothing", "", ""}),
    ruleOf);

INSTANTIATE_TEST_SUITE_P(
    Text, Disclaimer,
    testing::Values(Row{"HiddenTextIsText", "<i>a<font color=white>b<span style='font-size:0'>c", "abc "},
                    Row{"ALineFeedIsABlank", "<i>a\nb", "a b"},
                    Row{"ABlankAheadOfALineFeedIsEnough", "<i>a \nb", "a b"},
                    Row{"ABlankBehindALineFeedIsDropped", "<i>a\n b", "a b"},
                    Row{"OnlyOneBlankIsDropped", "<i>a\n  b", "a  b"},
                    Row{"EmptyLinesLeaveNoTrace", "<i>a\n\n\nb", "a b"},
                    Row{"ALineOfOneBlankIsDroppedBehindABlank", "<i>a\n \nb", "a b"},
                    Row{"ABlankBehindABlankOfAnotherElementIsDropped", "<i>a <b> c", "a c"},
                    Row{"ABlankBehindALineFeedOfABlockIsKept", "<div>a</div><i> c", "a\n c"},
                    // The line feed at its end makes the node count as ending in other text, so the next blank stays.
                    Row{"ALineFeedAtTheEndOfATextIsForgotten", "<i>a\n<b> c", "a  c"},
                    Row{"CommentsAndScriptsAreNot", "<i>a<!--b--><script>c</script>d", "ad"}),
    ruleOf);

INSTANTIATE_TEST_SUITE_P(
    Links, Disclaimer,
    testing::Values(
        Row{"TheTargetStandsAheadOfTheText", "<i><a href='http://a.example/'>x</a>y", "(http://a.example/)\nx\ny"},
        Row{"ALinkWithoutTextAddsNoSecondLineFeed", "<i><a href='http://a.example/'></a>y", "(http://a.example/)\ny"},
        Row{"ALinkWithoutATargetEndsALine", "<i><a>x</a>y", "x\ny"},
        Row{"ContentIdsLoseTheirScheme", "<i><a href='cid:abc'>x", "(abc)\nx\n"},
        Row{"ContentIdsInCapitalsToo", "<i><a href='CID:abc'>x", "(abc)\nx\n"},
        Row{"TargetsAreNotTrimmed", "<i><a href=' x '>y", "( x )\ny\n"},
        Row{"AnEmptyTargetIsNone", "<i><a href=''>y", "y\n"}, Row{"SrcIsNot", "<i>a<img src='x'>b", "ab"},
        Row{"HrefOfAnyElementThatHasLinks", "<body href=b><img href=i><form href=f><table href=t>",
            "(b)\n(i)\n(f)\n(t)\n"},
        Row{"HrefInAnyCase", "<i><A HREF=x>y", "(x)\ny\n"}),
    ruleOf);

INSTANTIATE_TEST_SUITE_P(Meta, Disclaimer,
                         testing::Values(Row{"DeclaredCharsetIsTold",
                                             "<meta http-equiv=x content='text/html; charset=utf-8'><i>x", "xutf-8;"},
                                         Row{"InTheBodyItIsNot",
                                             "<body><meta http-equiv=x content='text/html; charset=utf-8'>", ""}),
                         ruleOf);

TEST(HtmlToTxtDisclaimer, ATextWithoutContentChangesNothing)
{
    auto* recorded = new RecordedImpl;
    MediaOut const output(recorded, false);
    HtmlToTxtDisclaimer extract(nullptr, output);
    BareNode const empty(XML_TEXT_NODE, "text"), cell(XML_ELEMENT_NODE, "td"), text(XML_TEXT_NODE, "text", " b");
    extract.endTag(cell.node());
    extract.text(empty.node());
    extract.text(text.node()); // behind the blank of the cell, its own is left out
    EXPECT_EQ(" b", recorded->text);
}

TEST(HtmlToTxtDisclaimer, NeedsNoDocument)
{
    auto* recorded = new RecordedImpl;
    MediaOut const output(recorded, false);
    readHtml("<p>a", [&](TextHtmlDoc& document) {
        document.addVisitor(Ref<HtmlDocVisitor>(new HtmlToTxtDisclaimer(nullptr, output), false));
    });
    EXPECT_EQ("a\n", recorded->text);
}

TEST(DisclaimerHrefAttributePatterns, HasOneNameInAnyCase)
{
    StringPattern const& set = DisclaimerHrefAttributePatterns::instance();
    EXPECT_TRUE(set.matches("HRef"));
    for (char const* name : {"", "src", "hrefs", "action"}) EXPECT_FALSE(set.matches(name)) << name;
}

} // namespace
} // namespace Velmara
