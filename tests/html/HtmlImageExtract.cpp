#include <libxml/tree.h>
#include <velmara/HtmlImageExtract.h>

#include <gtest/gtest.h>

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
        Row{"ASourceOfOneByteIsNone", "<body><img src=a><img width=3></body>", ""},
        Row{"FramesAndEmbeddedObjectsAreImages", "<body><embed src=ab></body>", "ab 0x0 0 first;"},
        Row{"ABackgroundIsNone", "<body background=ab.png><table background=cd.png><tr><td>x</td></tr></table></body>",
            ""}),
    [](auto const& row) { return std::string(row.param.rule); });

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
    for (std::string name : {"table", "background", "SRC"}) {
        std::string attributeName = "Background", value = "a.gif";
        xmlNode node{}, text{};
        xmlAttr attribute{};
        text.type = XML_TEXT_NODE;
        text.content = reinterpret_cast<xmlChar*>(value.data());
        attribute.type = XML_ATTRIBUTE_NODE;
        attribute.name = reinterpret_cast<xmlChar const*>(attributeName.c_str());
        attribute.children = &text;
        node.type = XML_ELEMENT_NODE;
        node.name = reinterpret_cast<xmlChar const*>(name.c_str());
        node.properties = &attribute;
        TextHtmlDoc document(false);
        ImageProperties properties(0);
        HtmlImageExtract(&document, 0, &properties).background(&node);
        EXPECT_EQ(name == "table" ? 0u : 1u, properties.images().size()) << name;
    }
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

TEST(ImageSummary, StartsWithoutAnything)
{
    ImageSummary const image;
    EXPECT_EQ(CID::TypeNone, image.cid.type);
    EXPECT_EQ("", image.cid.value);
    EXPECT_EQ(0, image.width + image.height + image.textLine);
    EXPECT_FALSE(image.firstInRun);
}

} // namespace
} // namespace Velmara
