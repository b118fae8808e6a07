#include <velmara/HtmlToTxtDisclaimer.h>

#include <gtest/gtest.h>

#include "html/Extracts.h"

namespace Velmara {
namespace {

struct Row {
    char const* rule;
    char const* html;
    char const* text;
};

class Twins : public testing::TestWithParam<Row> {};

TEST_P(Twins, AreTextForPeople)
{
    auto* recorded = new RecordedImpl;
    MediaOut out(recorded, false);
    readHtml(GetParam().html, [&](TextHtmlDoc& document) {
        document.addVisitor(Ref<HtmlDocVisitor>(new HtmlToTxtDisclaimer(&document, out), false));
    });
    EXPECT_EQ(GetParam().text, recorded->text);
    EXPECT_EQ(1, recorded->ends);
}

INSTANTIATE_TEST_SUITE_P(
    Bodies, Twins,
    testing::Values(Row{"TwoBreaksGiveOneLineFeed", "<body>one<br><br>two</body>", "one\ntwo"},
                    Row{"BlocksEndLines", "<body><div>one</div><p>two</p></body>", "one\ntwo\n"},
                    Row{"ACellEndsInABlankAndARowInALineFeed",
                        "<body><table><tr><td>one</td><td>two</td></tr></table></body>", "one two \n"},
                    Row{"ASpanEndsInABlank", "<body><span>one</span>two</body>", "one two"},
                    Row{"HiddenTextIsKept", "<body><font color=white>one</font></body>", "one"},
                    Row{"ATargetStandsAheadOfItsText", "<body><a href=http://a.example>one</a></body>",
                        "(http://a.example)\none\n"},
                    Row{"ALinkWithoutTextAddsNoSecondLineFeed", "<body>x<a href=y></a>z</body>", "x(y)\nz"},
                    Row{"AContentIdLosesItsScheme", "<body><a href=CID:abc></a></body>", "(abc)\n"},
                    Row{"ImagesAreNoTargets", "<body><img src=x.png>one</body>", "one"},
                    Row{"ALineFeedInTextIsABlank", "<body>one\ntwo</body>", "one two"},
                    Row{"ABlankBehindABlankIsDropped", "<body><span>one</span> two</body>", "one two"},
                    Row{"ALineThatBeginsWithABlankLosesItBehindAnother", "<body>one\n two</body>", "one two"}),
    [](auto const& row) { return std::string(row.param.rule); });

TEST(HtmlToTxtDisclaimer, ADeclaredCharacterSetIsToldToTheOutput)
{
    auto* recorded = new RecordedImpl;
    MediaOut out(recorded, false);
    readHtml("<head><meta http-equiv=x content='text/html; charset=koi8-r'></head><body></body>",
             [&](TextHtmlDoc& document) {
                 document.addVisitor(Ref<HtmlDocVisitor>(new HtmlToTxtDisclaimer(nullptr, out), false));
             });
    EXPECT_EQ("koi8-r;", recorded->charset);
}

} // namespace
} // namespace Velmara
