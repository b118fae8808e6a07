#include <gtest/gtest.h>

#include <velmara/MediaIn.h>

#include "facts/HtmlReading.h"

using namespace VelmaraCommand;

namespace {

HtmlReading _read(std::string const& page, HtmlWanted const& wanted = {})
{
    return readHtml(Velmara::BufferMediaIn(page.data(), page.size()), wanted);
}

} // namespace

TEST(HtmlReading, OneWalkGivesTextRunsLinksImagesAndTags)
{
    HtmlReading const reading =
        _read("<body>a <a href='http://x.example/'>b</a><img src='http://y.example/i.png' width=3></body>");
    EXPECT_EQ("a b ", reading.text);
    EXPECT_EQ(2u, reading.facts.runs.size());
    ASSERT_EQ(2u, reading.facts.links.size());
    EXPECT_EQ("a", reading.facts.links[0].element);
    EXPECT_EQ("b", reading.facts.links[0].text);
    EXPECT_EQ("img", reading.facts.links[1].element);
    ASSERT_EQ(1u, reading.facts.images.size());
    EXPECT_EQ(3, reading.facts.images[0].width);
    EXPECT_EQ(32u, reading.tagTokens.size());
}

TEST(HtmlReading, TagsAndNotWordsMakeTheSignatureOfTags)
{
    EXPECT_EQ(_read("<p>one</p><b>two</b>").tagTokens, _read("<p>three</p><b>four</b>").tagTokens);
    EXPECT_NE(_read("<p>one</p><b>two</b>").tagTokens, _read("<b>one</b><p>two</p>").tagTokens);
}

TEST(HtmlReading, WhatIsNotWantedIsLeftOut)
{
    HtmlWanted wanted;
    wanted.runs = wanted.links = wanted.images = false;
    HtmlFacts const facts = _read("<a href='http://x.example/'>b</a><img src='http://y.example/i.png'>", wanted).facts;
    EXPECT_TRUE(facts.runs.empty());
    EXPECT_TRUE(facts.links.empty());
    EXPECT_TRUE(facts.images.empty());
    EXPECT_EQ(1u, facts.visibleBytes);
}

TEST(HtmlReading, DeclarationOfTheDocumentIsHeededUnlessToldOtherwise)
{
    std::string const page = "<meta http-equiv=Content-Type content='text/html; charset=koi8-r'><body>\xC4</body>";
    EXPECT_EQ("\xD0\xB4", _read(page).text);
    EXPECT_EQ("koi8-r", _read(page).declaredCharset);
    HtmlWanted wanted;
    wanted.heedDeclaration = false;
    EXPECT_NE("\xD0\xB4", _read(page, wanted).text);
}

TEST(HtmlReading, OnlyTheFirstLinksOfAnElementHaveItsText)
{
    std::string value;
    for (char c = 'a'; c < 'm'; ++c) value += std::string("x http://") + c + ".example/ ";
    std::vector<Link> const links = _read("<a href='" + value + "'>www.other.example</a>").facts.links;
    ASSERT_EQ(13u, links.size()) << "the text itself is a link of the source";
    EXPECT_EQ("www.other.example", links[7].text);
    EXPECT_EQ(std::vector<std::string>{"www.other.example"}, links[7].otherHosts);
    EXPECT_EQ("", links[8].text) << "or the text would grow with the square of the page";
}

TEST(HtmlReading, TextThatShowsAsNothingIsNotCounted)
{
    HtmlFacts const facts = _read("<span style='font-size:0'>&nbsp;&zwnj; \n</span>").facts;
    EXPECT_EQ(0u, facts.hiddenBytes);
    EXPECT_TRUE(isBlank("\xC2\xA0\xE2\x80\x8C \n\f"));
    EXPECT_FALSE(isBlank("\xC2\xA0x"));
    EXPECT_FALSE(isBlank("\xFF"));
}

TEST(HtmlReading, WhiteSpaceOfTheSourceIsOneBlank)
{
    EXPECT_EQ(" a b c ", folded("\r\n a\t\f b\n\nc\n"));
    EXPECT_EQ("a\vb\xC2\xA0", folded("a\vb\xC2\xA0"));
    EXPECT_TRUE(isLayout(" \t\r\n\f"));
    EXPECT_FALSE(isLayout(" \xC2\xA0"));
}
