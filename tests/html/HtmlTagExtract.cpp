#include <velmara/Config.h>
#include <velmara/HtmlTagExtract.h>

#include <gtest/gtest.h>

#include "html/Extracts.h"

namespace Velmara {
namespace {

/// A table that gives each name the next number.
class HtmlTagExtractTest : public testing::Test {
protected:
    HtmlTagExtractTest() { pconfig = &m_config; }
    ~HtmlTagExtractTest() override { pconfig = nullptr; }

    std::wstring numbersOf(std::initializer_list<char const*> names)
    {
        std::wstring numbers;
        for (char const* name : names) numbers += static_cast<wchar_t>(m_config.getHtmlTagIdx(name));
        return numbers;
    }
    void read(std::string const& html)
    {
        readHtml(html, [&](TextHtmlDoc& document) {
            document.addVisitor(Ref<HtmlDocVisitor>(new HtmlTagExtract(&properties, "utf-8"), false));
        });
    }

    TDProperties properties;

private:
    Config m_config;
};

TEST_F(HtmlTagExtractTest, TakesElementsAndTheNamesOfTheirAttributesInOrder)
{
    read("<html><body bgcolor=red text=blue><a href=x>y</a></body></html>");
    ASSERT_EQ(1u, properties.descriptors().size());
    EXPECT_EQ(numbersOf({"html", "body", "bgcolor", "text", "a", "href"}), properties.descriptors()[0]->tokens());
}

TEST_F(HtmlTagExtractTest, LeavesBreaksAndSpansOutWithTheirAttributes)
{
    read("<html><body><BR clear=all><span class=x>y</span><b>z</b></body></html>");
    EXPECT_EQ(numbersOf({"html", "body", "b"}), properties.descriptors()[0]->tokens());
}

TEST_F(HtmlTagExtractTest, TheSameBuildWithOtherWordsGivesTheSameTokens)
{
    read("<html><body><p align=left>one</p></body></html>");
    read("<html><body><p align=right>two three</p></body></html>");
    EXPECT_EQ(properties.descriptors()[0]->tokens(), properties.descriptors()[1]->tokens());
}

TEST_F(HtmlTagExtractTest, WhatIsNoElementOrHasNoNameIsLeftOut)
{
    HtmlTagExtract extract(&properties, "utf-8");
    extract.tags(nullptr);
    extract.tags(BareNode(XML_TEXT_NODE, "text", "x").node());
    extract.tags(BareNode(XML_ELEMENT_NODE).node());
    EXPECT_EQ(L"", properties.descriptors()[0]->tokens());
    BareNode element(XML_ELEMENT_NODE, "b");
    element.attribute(nullptr, "x");
    extract.tags(element.node());
    EXPECT_EQ(numbersOf({"b"}), properties.descriptors()[0]->tokens());
    element.attribute("class", nullptr);
    extract.tags(element.node());
    EXPECT_EQ(numbersOf({"b", "b", "class"}), properties.descriptors()[0]->tokens());
}

TEST_F(HtmlTagExtractTest, WithoutPropertiesItIsSilent)
{
    HtmlTagExtract(nullptr, "utf-8").tags(BareNode(XML_ELEMENT_NODE, "b").node());
    EXPECT_EQ(numbersOf({"first"}), L"\1"); // "b" got no number
}

TEST_F(HtmlTagExtractTest, TheFifthIsSilent)
{
    for (int i = 0; i < 5; ++i) read("<html><body><b>x</b></body></html>");
    ASSERT_EQ(4u, properties.descriptors().size());
    for (Ref<TD> const& descriptor : properties.descriptors()) EXPECT_EQ(3u, descriptor->tokens().size());
}

} // namespace
} // namespace Velmara
