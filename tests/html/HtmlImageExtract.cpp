#include <velmara/HtmlImageExtract.h>

#include <gtest/gtest.h>

#include <type_traits>

#include "html/Extracts.h"

namespace Velmara {
namespace {

/// The images of a body, one a line: source, size, lines above, "first" or "next".
std::string _images(std::string const& html)
{
    ImageProperties properties(0);
    readHtml(html, [&](TextHtmlDoc& document) {
        document.addVisitor(Ref<HtmlDocVisitor>(new HtmlImageExtract(&document, 0, &properties), false));
    });
    std::string text;
    for (Ref<ImageSummary> const& image : properties.images())
        text += image->cid.value + " " + std::to_string(image->width) + "x" + std::to_string(image->height) + " " +
                std::to_string(image->textLine) + (image->firstInRun ? " first;" : " next;");
    return text;
}

struct Row {
    char const* rule;
    std::string html;
    char const* images;
};

class Images : public testing::TestWithParam<Row> {};

TEST_P(Images, AreRecorded)
{
    EXPECT_EQ(GetParam().images, _images(GetParam().html));
}

std::string const _longText(240, 'x');

INSTANTIATE_TEST_SUITE_P(
    Bodies, Images,
    testing::Values(
        Row{"TheFirstElement", "<body><img src=ab width=10 height=20></body>", "ab 10x20 0 first;"},
        Row{"TwoWithoutTextBetween", "<body><img src=ab><img src=cd></body>", "ab 0x0 0 first;cd 0x0 0 next;"},
        Row{"TwoCharactersBehindTheFirstEndARun", "<body><img src=ab>xyz<img src=cd></body>",
            "ab 0x0 0 first;cd 0x0 0 first;"},
        Row{"OneCharacterBehindTheFirstDoesNot", "<body><img src=ab>xy<img src=cd></body>",
            "ab 0x0 0 first;cd 0x0 0 next;"},
        Row{"WhiteSpaceDoesNot", "<body><img src=ab>x  \n  <img src=cd></body>", "ab 0x0 0 first;cd 0x0 0 next;"},
        Row{"TextAndABreakMakeLines", "<body>" + _longText + "<br><img src=ab></body>", "ab 0x0 3 first;"},
        Row{"TextWithoutABreakIsNotYetALine", "<body>" + _longText + "<img src=ab></body>", "ab 0x0 0 first;"},
        Row{"ADivIsALine", "<body>" + _longText + "<div><img src=ab></div></body>", "ab 0x0 3 first;"},
        Row{"TwoCharactersAheadOfADivAreDropped", "<body>xy<div><img src=ab></div></body>", "ab 0x0 0 first;"},
        Row{"AParagraphIsNone", "<body>" + _longText + "<p><img src=ab></p></body>", "ab 0x0 0 first;"},
        Row{"ARowIsTwoLines", "<body><table><tr><td><img src=ab></td></tr></table></body>", "ab 0x0 2 first;"},
        Row{"HiddenTextCounts", "<body><font color=white>" + _longText + "</font><br><img src=ab></body>",
            "ab 0x0 3 first;"},
        Row{"AHundredPercentIs600", "<body><img src=ab width=100% height=50%></body>", "ab 600x300 0 first;"},
        Row{"OfAPercentageThreeBytesCount", "<body><img src=ab width=1000%></body>", "ab 600x0 0 first;"},
        Row{"ASizeIsTheNumberAtTheStart", "<body><img src=ab width='12px' height='x'></body>", "ab 12x0 0 first;"},
        Row{"AHugeSizeStaysTheLargestNumber", "<body><img src=ab width=99999999999999999999></body>",
            "ab 2147483647x0 0 first;"},
        Row{"AContentIdIsWrittenAsItsHeader", "<body><img src=cid:abc></body>", "<abc> 0x0 0 first;"},
        Row{"ASourceOfOneByteIsNone", "<body><img src=a><img width=3><img src=''></body>", ""},
        Row{"FramesAndEmbeddedObjectsAreImages", "<body><embed src=ab></body>", "ab 0x0 0 first;"},
        Row{"ABackgroundIsNone", "<body background=ab.png><table background=cd.png><tr><td>x</td></tr></table></body>",
            ""}),
    [](auto const& row) { return std::string(row.param.rule); });

TEST(CID, IsMadeWithTheNumberOfAKindToo)
{
    EXPECT_EQ(CID::TypeUrl, CID("http://a.example/", 2).type);
    EXPECT_EQ(CID::TypeContentId, CID("<a>", CID::TypeContentId).type);
    EXPECT_EQ(0, CID("", 0).type);
}

TEST(ImageProperties, FindsByContentIdInAnyCase)
{
    ImageProperties properties(5);
    HtmlImageExtract extract(nullptr, 0, &properties);
    extract.registerImage("http://a.example/cid:Logo@Shop", 1, 2, false);
    properties.add(Ref<ImageSummary>());
    extract.registerImage("http://a.example/i.png", 3, 4, true);
    EXPECT_EQ(1, properties.find("<logo@shop>")->width);
    EXPECT_EQ(CID::TypeContentId, properties.find("<logo@shop>")->cid.type);
    EXPECT_EQ(CID::TypeUrl, properties.find("HTTP://a.example/i.png")->cid.type);
    EXPECT_TRUE(properties.find("other").isNull());
    EXPECT_EQ(3, properties.type());
    EXPECT_EQ(5, properties.number);
    EXPECT_EQ(0, properties.second);
}

TEST(HtmlImageExtract, ABackgroundIsAlwaysTheFirstInItsRun)
{
    ImageProperties properties(0);
    HtmlImageExtract extract(nullptr, 0, &properties);
    extract.registerImage("ab", 0, 0, false);
    extract.registerImage("cd", 0, 0, true);
    EXPECT_TRUE(properties.images()[1]->firstInRun);
}

// No element of HTML has such a name, but whoever drives the visitor may bring one.
TEST(HtmlImageExtract, OnlyAnElementNamedLikeALinkGivesItsBackground)
{
    for (std::string name : {"table", "background", "SRC"})
        for (std::string attribute : {"Background", "src"}) {
            BareNode element(XML_ELEMENT_NODE, name.c_str());
            element.attribute(attribute.c_str(), "a.gif");
            ImageProperties properties(0);
            HtmlImageExtract(nullptr, 0, &properties).background(element.node());
            EXPECT_EQ(name != "table" && attribute == "Background", !properties.images().empty()) << name << attribute;
        }
}

TEST(HtmlImageExtract, OnlyTextsWithContentCountAsText)
{
    ImageProperties properties(0);
    HtmlImageExtract extract(nullptr, 0, &properties);
    extract.registerImage("ab", 0, 0, false);
    extract.text(BareNode(XML_COMMENT_NODE, "comment", _longText.c_str()).node());
    extract.text(BareNode(XML_TEXT_NODE, "text").node());
    extract.text(BareNode(XML_TEXT_NODE, "text", "").node());
    extract.calcTextLine(0, false);
    extract.registerImage("cd", 0, 0, false);
    EXPECT_EQ(0, extract.textLineBeforeImag());
    EXPECT_FALSE(properties.images()[1]->firstInRun);
}

// The parser's document tells of paragraphs by another call; a caller may tell of them by this one.
TEST(HtmlImageExtract, AParagraphToldAsANodeIsALineLikeADiv)
{
    for (char const* name : {"p", "DIV"}) {
        ImageProperties properties(0);
        HtmlImageExtract extract(nullptr, 0, &properties);
        extract.text(BareNode(XML_TEXT_NODE, "text", "ab").node());
        extract.node(BareNode(XML_ELEMENT_NODE, name).node());
        EXPECT_EQ(0, extract.textLineBeforeImag()) << name;
        extract.text(BareNode(XML_TEXT_NODE, "text", _longText.c_str()).node());
        extract.node(BareNode(XML_ELEMENT_NODE, name).node());
        EXPECT_EQ(3, extract.textLineBeforeImag()) << name;
    }
}

TEST(HtmlImageExtract, ANodeIsNotToldToTheCallForLineBreaks)
{
    struct Breaks : HtmlImageExtract {
        using HtmlImageExtract::HtmlImageExtract;
        void ignore(xmlNode const*) override { ++calls; }
        int calls = 0;
    } extract(nullptr, 0, nullptr);
    for (char const* name : {"b", "div", "BR"}) extract.node(BareNode(XML_ELEMENT_NODE, name).node());
    EXPECT_EQ(0, extract.calls);
    EXPECT_EQ(1, extract.textLineBeforeImag());
}

TEST(HtmlImageExtract, LinesStopAtTheLargestNumber)
{
    HtmlImageExtract extract(nullptr, 0, nullptr);
    extract.calcTextLine(2147483646, false);
    extract.calcTextLine(2, false);
    EXPECT_EQ(2147483647, extract.textLineBeforeImag());
}

TEST(HtmlImageExtract, AfterTheEndNothingIsAdded)
{
    ImageProperties properties(0);
    HtmlImageExtract extract(nullptr, 0, &properties);
    extract.calcTextLine(2, false);
    extract.done();
    extract.registerImage("ab", 0, 0, false);
    extract.done();
    EXPECT_TRUE(properties.images().empty());
    EXPECT_EQ(2, extract.textLineBeforeImag());
}

TEST(ImageSummary, IsCountedOnceAlsoAsTheBaseOfAClassOfSeveral)
{
    struct Fact : ImageSummary, virtual RefImpl {};
    Fact fact;
    ImageSummary& summary = fact;
    EXPECT_EQ(&static_cast<RefImpl&>(fact), &static_cast<RefImpl&>(summary));
    EXPECT_FALSE((std::is_convertible_v<ImageSummary*, NonCopyable*>));
    EXPECT_FALSE(std::is_copy_constructible_v<ImageSummary>);
}

TEST(ImageSummary, StartsWithoutAnything)
{
    ImageSummary const image;
    EXPECT_EQ(CID::TypeNone, image.cid.type);
    EXPECT_EQ("", image.cid.value);
    EXPECT_EQ(0, image.width + image.height + image.textLine);
    EXPECT_FALSE(image.firstInRun);
}

TEST(HtmlSLinkPatterns, HasThreeNamesInAnyCase)
{
    StringPattern const& set = HtmlSLinkPatterns::instance();
    for (char const* name : {"href", "SRC", "Background"}) EXPECT_TRUE(set.matches(name)) << name;
    for (char const* name : {"", "action", "body", "td"}) EXPECT_FALSE(set.matches(name)) << name;
}

} // namespace
} // namespace Velmara
