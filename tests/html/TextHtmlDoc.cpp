#include <velmara/TextHtmlDoc.h>

#include <gtest/gtest.h>
#include <libxml/tree.h>

#include <stdexcept>

#include "support/SmallStack.h"

namespace Velmara {
namespace {

/// Text that is visible as it stands, hidden text in braces.
class Seen : public HtmlDocVisitor {
public:
    explicit Seen(TextHtmlDoc& document) : m_document(document) {}
    void text(xmlNode const* node) override
    {
        std::string const content = reinterpret_cast<char const*>(node->content);
        text_ += m_document.isVisible() ? content : "{" + content + "}";
    }
    std::string text_;

private:
    TextHtmlDoc& m_document;
};

/// The calls for everything but texts, in order.
class Calls : public HtmlDocVisitor {
public:
    void meta(xmlNode const* n) override { add("meta", n); }
    void node(xmlNode const* n) override { add("node", n); }
    void href(xmlNode const* n) override { add("href", n); }
    void image(xmlNode const* n) override { add("image", n); }
    void form(xmlNode const* n) override { add("form", n); }
    void ignore(xmlNode const* n) override { add("ignore", n); }
    void background(xmlNode const* n) override { add("background", n); }
    void tags(xmlNode const* n) override { add("tags", n); }
    void cdata(xmlNode const* n) override { add("cdata", n); }
    void comment(xmlNode const* n) override { add("comment", n); }
    void endTag(xmlNode const* n) override { add("end", n); }
    void done() override { calls += "done"; }
    std::string calls;

private:
    void add(char const* call, xmlNode const* n)
    {
        std::string const name = n->name ? reinterpret_cast<char const*>(n->name) : "-";
        calls.append(call).append(":").append(name).append(" ");
    }
};

template <class Visitor> void run(TextHtmlDoc& document, Visitor* visitor, std::string const& html)
{
    Ref<HtmlDocVisitor> const handle(visitor, true);
    document.addVisitor(handle);
    document.write(reinterpret_cast<unsigned char const*>(html.data()), static_cast<unsigned>(html.size()));
    document.end();
}

std::string seen(std::string const& html)
{
    TextHtmlDoc document(false);
    Ref<Seen> visitor(new Seen(document), false);
    run(document, visitor.get(), html);
    return visitor->text_;
}

std::string calls(std::string const& html)
{
    TextHtmlDoc document(false);
    Ref<Calls> visitor(new Calls, false);
    run(document, visitor.get(), html);
    return visitor->calls;
}

/// The calls within a `body`, without those of `html` and `body` themselves.
std::string callsInBody(std::string const& html)
{
    std::string const all = calls("<body>" + html), start = "node:html tags:html background:body tags:body ";
    std::string const end = "end:body end:html done";
    EXPECT_EQ(start, all.substr(0, start.size()));
    EXPECT_EQ(end, all.substr(all.size() - end.size()));
    return all.substr(start.size(), all.size() - start.size() - end.size());
}

struct Row {
    char const* rule;
    char const* html;
    char const* expected;
};
std::string ruleOf(testing::TestParamInfo<Row> const& row)
{
    return row.param.rule;
}

class VisibleText : public testing::TestWithParam<Row> {};

TEST_P(VisibleText, IsWhatAReaderSees)
{
    EXPECT_EQ(GetParam().expected, seen(GetParam().html));
}

INSTANTIATE_TEST_SUITE_P(
    Colours, VisibleText,
    testing::Values(Row{"BlackOnWhiteAtFirst", "<p>a", "a"},
                    Row{"BodyOfOneColourHidesAll", "<body bgcolor=#112233 text=#112233>a<p>b", "{a}{b}"},
                    Row{"HiddenUntilTheNextColour", "<body bgcolor=red text=red>a<font color=blue>b", "{a}b"},
                    Row{"FontOfTheBackgroundIsHiddenBeyondItsEnd", "<p>a<font color=white>b</font>c", "a{b}{c}"},
                    Row{"FontAgainstTheBackgroundOfTheBody", "<body bgcolor=navy><font color=navy>a<font color=white>b",
                        "{a}b"},
                    Row{"TheThreeDigitFormReadsAsWhite", "<font color=#000>a", "{a}"},
                    Row{"AnUnknownWordReadsAsWhite", "<font color=inherit>a", "{a}"},
                    Row{"AnEmptyColourReadsAsWhite", "<font color=''>a", "{a}"},
                    Row{"NearlyTheSameColourIsHidden", "<font color=#f8f8f8>a", "{a}"},
                    Row{"TableSetsTheBackground", "<table bgcolor=black><tr><td>a", "{a}"},
                    Row{"RowSetsTheBackground", "<table><tr bgcolor=black><td>a", "{a}"},
                    Row{"CellSetsTheBackground", "<table><tr><td bgcolor=black>a", "{a}"},
                    Row{"HeadCellSetsTheBackground", "<table><tr><th bgcolor=black>a", "{a}"},
                    Row{"CellSetsBothColours", "<table><tr><td bgcolor=black color=white>a", "a"},
                    Row{"ABackgroundOutlivesItsCell", "<table><tr><td bgcolor=black>a</td></tr></table>b", "{a}{b}"},
                    Row{"AttributesInAnyCase", "<BODY BgColor=BLACK>a", "{a}"},
                    Row{"BackgroundColorIsAnAttributeToo", "<body background-color=black>a", "{a}"},
                    Row{"ColorIsTextOfABody", "<body color=white>a", "{a}"},
                    Row{"OtherElementsSetNoBackground", "<div bgcolor=black><p bgcolor=black>a", "a"},
                    Row{"OtherElementsSetNoStyle", "<div style='color:white'><p style='color:white'>a", "a"},
                    Row{"AColourWithoutAValueIsNone", "<body bgcolor>a", "a"},
                    Row{"AFontColourWithoutAValueIsNone", "<font color>a", "a"}),
    ruleOf);

INSTANTIATE_TEST_SUITE_P(
    Styles, VisibleText,
    testing::Values(Row{"SpanOfWhiteTextIsHidden", "<span style='color:white'>a</span>b", "{a}{b}"},
                    Row{"SpanOfRgbText", "<span style='color: rgb(255,255,255)'>a", "{a}"},
                    Row{"StyleInAnyCase", "<span STYLE='COLOR:White'>a", "{a}"},
                    Row{"BackgroundAloneSetsBothColours", "<span style='background-color:red'>a", "{a}"},
                    Row{"BlackBackgroundAloneIsHidden", "<body style='background-color:black'>a", "{a}"},
                    Row{"WhiteBackgroundAloneIsHidden", "<span style='background-color:white'>a", "{a}"},
                    Row{"BackgroundAheadOfColourSetsBothAlike", "<span style='background-color:black;color:white'>a",
                        "{a}"},
                    Row{"ColourAheadOfBackgroundIsFound", "<span style='color:white;background-color:black'>a", "a"},
                    Row{"BorderColorCountsAsColour", "<span style='border-color:white'>a", "{a}"},
                    Row{"OnlyTheFirstColourCounts", "<span style='color:black;color:white'>a", "a"},
                    Row{"ABlankAheadOfTheColonIsNotFound", "<span style='color :white'>a", "a"},
                    Row{"TheValueEndsAtASemicolon", "<span style='color:  white ;x'>a", "{a}"},
                    Row{"ImportantIsPartOfTheValue", "<span style='color:black!important'>a", "a"},
                    Row{"FontElementsHaveStyles", "<font style='color:white'>a", "{a}"},
                    Row{"StyleOfABodyIsTakenAheadOfItsColours",
                        "<body bgcolor=black style='color:white;background-color:white'>a", "a"},
                    Row{"AnEmptyStyleIsNone", "<span style=''>a", "a"},
                    Row{"AStyleWithoutAValueIsNone", "<span style>a", "a"}),
    ruleOf);

INSTANTIATE_TEST_SUITE_P(
    Sizes, VisibleText,
    testing::Values(
        Row{"SizeZeroIsHidden", "<span style='font-size:0'>a", "{a}"},
        Row{"FivePixelsAreHidden", "<span style='font-size:5px'>a", "{a}"},
        Row{"SixPixelsAreNot", "<span style='font-size:6px'>a", "a"},
        Row{"OneEmIsHidden", "<span style='font-size:1em'>a", "{a}"},
        Row{"XSmallIsHidden", "<span style='font-size:x-small'>a", "{a}"},
        Row{"InheritIsHidden", "<span style='font-size:inherit'>a", "{a}"},
        Row{"SmallIsNot", "<span style='font-size:small'>a", "a"},
        Row{"SmallerFromOneIsHidden", "<font size=1><span style='font-size:smaller'>a", "{a}"},
        Row{"FontOfSizeZeroReadsAsOne", "<font size=0>a", "a"},
        Row{"HiddenBeyondTheEnd", "<span style='font-size:0'>a</span>b", "{a}{b}"},
        Row{"ALaterSizeDoesNotBringTheTextBack", "<span style='font-size:0'>a</span><font size=4>b", "{a}{b}"},
        Row{"TheNextColourAfterALaterSizeDoes", "<span style='font-size:0'>a</span><font size=4>b<font color=black>c",
            "{a}{b}c"},
        Row{"AColourWhileTheSizeIsZeroDoesNot", "<span style='font-size:0'>a</span><font color=blue>b", "{a}{b}"},
        Row{"AnUnseenSizeOfZeroIsRememberedAllTheSame", "<span style='font-size:0'></span><font size=4>b", "{b}"}),
    ruleOf);

INSTANTIATE_TEST_SUITE_P(
    Classes, VisibleText,
    testing::Values(
        Row{"ClassBehindAStyleShowsTheText", "<span style='color:white' class=x>a", "a"},
        Row{"ClassAheadOfAStyleShowsTheText", "<span class=x style='color:white'>a", "a"},
        Row{"IdShowsTheText", "<span id=x style='color:white'>a", "a"},
        Row{"ClassOfAnotherElementDoesNot", "<font color=white class=x>a", "{a}"},
        Row{"ClassBringsBackBlackOnWhite", "<body bgcolor=black text=black>a<span class=x>b", "{a}b"},
        // The colour comes first and still sees a size of 0; the size that follows does not clear that.
        Row{"OneClassAloneDoesNotUndoASizeOfZero", "<span style='font-size:0'>a</span><span class=x>b", "{a}{b}"},
        Row{"TheNextColourBehindItDoes", "<span style='font-size:0'>a</span><span class=x></span><font color=red>b",
            "{a}b"},
        Row{"AClassWithAnotherAttributeDoes", "<span style='font-size:0'>a</span><span class=x title=y>b", "{a}b"},
        Row{"AttributesAheadOfTheClassDoNotCount", "<span style='font-size:0'>a</span><span title=y class=x>b",
            "{a}{b}"}),
    ruleOf);

/// The size that text has at the end, seen through "smaller": so many of them hide it.
class SizeAtTheEnd : public testing::TestWithParam<Row> {};

TEST_P(SizeAtTheEnd, IsFoundByMakingItSmaller)
{
    std::string html = GetParam().html, expected;
    for (int i = 0; i < 8; ++i) html += "<span style='font-size:smaller'>" + std::to_string(i);
    int const size = std::stoi(GetParam().expected);
    for (int i = 0; i < 8; ++i) {
        std::string const digit = std::to_string(i);
        expected += i + 1 < size ? digit : "{" + digit + "}";
    }
    EXPECT_EQ(expected, seen(html));
}

INSTANTIATE_TEST_SUITE_P(
    Rules, SizeAtTheEnd,
    testing::Values(Row{"AtFirst", "<p>", "3"}, Row{"Big", "<big>", "4"}, Row{"BigIsNotUndone", "<big></big>", "4"},
                    Row{"BigBig", "<big><big>", "5"}, Row{"BigAtSix", "<font size=6><big>", "7"},
                    Row{"BigAtSevenPushesNothing", "<font size=7><big>", "7"}, Row{"Small", "<small>", "2"},
                    Row{"SmallAtTwo", "<font size=2><small>", "1"},
                    Row{"SmallAtOnePushesNothing", "<font size=1><small>", "1"},
                    Row{"SpanWithAClassIsThree", "<font size=7><span class=x>", "3"},
                    Row{"SpanWithAStyleAndAClassIsThree", "<span style='font-size:20px' class=x>", "3"},
                    Row{"FontSize", "<font size=5>", "5"},
                    Row{"FontSizeWithoutAValue", "<font size=5><font size>", "5"},
                    Row{"FontRelative", "<font size=+1>", "4"}, Row{"FontStyle", "<font style='font-size:20px'>", "6"},
                    Row{"BodyStyle", "<body style='font-size:22px'>", "7"}, Row{"H1HasNoSize", "<h1></h1>", "3"}),
    ruleOf);

class CallsOfElements : public testing::TestWithParam<Row> {};

TEST_P(CallsOfElements, AreForTheirKindThenForTags)
{
    EXPECT_EQ(GetParam().expected, callsInBody(GetParam().html));
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, CallsOfElements,
    testing::Values(
        Row{"A", "<a></a>", "href:a tags:a end:a "}, Row{"Area", "<area>", "href:area tags:area end:area "},
        Row{"Base", "<base>", "href:base tags:base end:base "}, Row{"Big", "<big></big>", "tags:big end:big "},
        Row{"Embed", "<embed></embed>", "image:embed tags:embed end:embed "},
        Row{"Font", "<font></font>", "tags:font end:font "},
        Row{"Form", "<form></form>", "form:form tags:form end:form "},
        Row{"Frame", "<frame>", "image:frame tags:frame end:frame "},
        Row{"Img", "<img>", "image:img tags:img end:img "},
        Row{"MetaInTheBodyIsSilent", "<meta name=x>", "tags:meta end:meta "},
        Row{"Small", "<small></small>", "tags:small end:small "}, Row{"Br", "<br>", "ignore:br tags:br end:br "},
        Row{"P", "<p></p>", "ignore:p tags:p end:p "}, Row{"H1", "<h1></h1>", "ignore:h1 tags:h1 end:h1 "},
        Row{"H6", "<h6></h6>", "ignore:h6 tags:h6 end:h6 "}, Row{"HrToo", "<hr>", "ignore:hr tags:hr end:hr "},
        Row{"AnyTwoLettersWithAnH", "<hz></hz>", "ignore:hz tags:hz end:hz "},
        Row{"TwoLettersWithAnHBehind", "<xh></xh>", "node:xh tags:xh end:xh "},
        Row{"HAlone", "<h></h>", "node:h tags:h end:h "}, Row{"Pre", "<pre></pre>", "node:pre tags:pre end:pre "},
        Row{"ATdWithoutAttributes", "<td></td>", "background:td tags:td end:td "},
        Row{"Table", "<table></table>", "background:table tags:table end:table "},
        Row{"Th", "<th></th>", "background:th tags:th end:th "},
        Row{"Tr", "<tr></tr>", "background:tr tags:tr end:tr "}, Row{"Span", "<span></span>", "tags:span end:span "},
        Row{"Div", "<div></div>", "node:div tags:div end:div "},
        Row{"Comment", "<!--x-->", "comment:comment end:comment "},
        Row{"Script", "<script>x</script>", "node:script tags:script cdata:- end:- end:script "}),
    ruleOf);

TEST(TextHtmlDoc, MetaIsHeardAheadOfTheBodyOnly)
{
    EXPECT_EQ("node:html tags:html node:head tags:head meta:meta tags:meta end:meta end:head background:body tags:body "
              "tags:meta end:meta end:body end:html done",
              calls("<head><meta name=x></head><body><meta name=y></body>"));
}

TEST(TextHtmlDoc, ABodyOfAnEarlierDocumentSilencesMetaToo)
{
    std::string const first = "node:html tags:html background:body tags:body ignore:p tags:p ";
    EXPECT_EQ(first + "end:text end:p end:body end:html node:html tags:html node:head tags:head tags:meta end:meta "
                      "end:head end:html done",
              calls("<p>a</html><meta name=x>"));
}

TEST(TextHtmlDoc, TheViewRunsOnIntoAFurtherDocument)
{
    EXPECT_EQ("{a}{b}", seen("<font color=white>a</html><p>b"));
}

TEST(TextHtmlDoc, VisitorsAreCalledInTheirOrder)
{
    struct Named : HtmlDocVisitor {
        Named(std::string& l, char n) : log(l), name(n) {}
        void text(xmlNode const*) override { log += name; }
        void done() override { log += static_cast<char>(name - 'a' + 'A'); }
        std::string& log;
        char name;
    };
    std::string log;
    TextHtmlDoc document(false);
    for (char name : {'b', 'a'}) document.addVisitor(Ref<HtmlDocVisitor>(new Named(log, name), false));
    document.addVisitor(Ref<HtmlDocVisitor>());
    document.write(reinterpret_cast<unsigned char const*>("<p>x"), 4);
    document.end();
    EXPECT_EQ("baBA", log);
}

TEST(TextHtmlDoc, ASecondEndParsesAgain)
{
    TextHtmlDoc document(false);
    Ref<Seen> visitor(new Seen(document), false);
    run(document, visitor.get(), "<p>a<font color=white>b");
    document.end();
    EXPECT_EQ("a{b}{a}{b}", visitor->text_);
}

TEST(TextHtmlDoc, WithoutBytesOnlyDoneIsCalled)
{
    EXPECT_EQ("done", calls(""));
}

TEST(TextHtmlDoc, StartsAsACopyOfABuffer)
{
    Buffer html("<p>a", 4, true);
    TextHtmlDoc document(html, false);
    html.at(3, 'b');
    Ref<Seen> visitor(new Seen(document), false);
    run(document, visitor.get(), "c");
    EXPECT_EQ("ac", visitor->text_);
    EXPECT_EQ(5u, document.html().length());
}

TEST(TextHtmlDoc, AnEmptyDocumentHasRoomFor4096Bytes)
{
    EXPECT_EQ(4096u, TextHtmlDoc(false).html().size());
    EXPECT_EQ(0u, TextHtmlDoc(false).html().length());
}

TEST(TextHtmlDoc, ReadsAStreamToItsEnd)
{
    std::string const html = "<p>" + std::string(5000, 'x');
    BufferMediaIn in(html);
    TextHtmlDoc document(false);
    Ref<Seen> visitor(new Seen(document), false);
    document.addVisitor(Ref<HtmlDocVisitor>(visitor.get(), true));
    document.parse(&in);
    EXPECT_EQ(html.substr(3), visitor->text_);
    EXPECT_TRUE(in.atEnd());
}

/// Gives at most seven bytes a call, none where none are asked for, and an answer that means nothing.
class SmallBlocks : public MediaInImpl {
public:
    explicit SmallBlocks(std::string const& text) : m_rest(text) {}
    using MediaInImpl::read;
    bool atEnd() const override { return m_rest.empty(); }
    int peek() const override { return -1; }
    int read(uchar_t*, uint_t) override { return 0; }
    int read(Buffer& block, uint_t n) override
    {
        std::string const piece = m_rest.substr(0, n < 7 ? n : 7);
        block.append(reinterpret_cast<uchar_t const*>(piece.data()), static_cast<uint_t>(piece.size()));
        m_rest.erase(0, piece.size());
        return 0;
    }

private:
    std::string m_rest;
};

TEST(TextHtmlDoc, ReadsAStreamOfACallerUntilABlockIsEmpty)
{
    MediaIn in(new SmallBlocks("<p>more than one block</p>"), false);
    TextHtmlDoc document(false);
    document.parse(&in);
    EXPECT_EQ("<p>more than one block</p>",
              std::string(reinterpret_cast<char const*>(document.html().data()), document.html().length()));
}

TEST(TextHtmlDoc, Holds150000Bytes)
{
    for (unsigned n : {149999u, 150000u, 150001u, 400000u}) {
        std::string const html(n, 'x');
        TextHtmlDoc written(false), read(false);
        written.write(reinterpret_cast<unsigned char const*>(html.data()), n);
        BufferMediaIn in(html);
        read.parse(&in);
        Buffer bytes(html.data(), n, false);
        TextHtmlDoc copied(bytes, false);
        unsigned const kept = n < 150000 ? n : 150000;
        EXPECT_EQ(kept, written.html().length());
        EXPECT_EQ(kept, read.html().length());
        EXPECT_EQ(kept, copied.html().length());
        EXPECT_TRUE(in.atEnd());
    }
}

TEST(TextHtmlDoc, EndsADecoderChain)
{
    MediaOut out(new TextHtmlDoc(false), false);
    Buffer const bytes("<p>a", 4, false);
    out.write(bytes);
    out.end();
    EXPECT_EQ(0u, out.tell());
}

TEST(TextHtmlDoc, TheCharacterSetThatWasToldWins)
{
    TextHtmlDoc document(false);
    document.characterSet("koi8-r");
    Ref<Seen> visitor(new Seen(document), false);
    run(document, visitor.get(), "<p>\xc1");
    EXPECT_EQ("\xd0\xb0", visitor->text_);
}

TEST(TextHtmlDoc, ADeclaredCharacterSetIsHeededUnlessIgnored)
{
    std::string const html = "<meta charset=koi8-r><p>\xc1</p>";
    EXPECT_EQ("\xd0\xb0", seen(html));
    TextHtmlDoc ignoring(true);
    Ref<Seen> visitor(new Seen(ignoring), false);
    run(ignoring, visitor.get(), html);
    EXPECT_EQ("\xc3\x81", visitor->text_);
}

TEST(TextHtmlDoc, AnExceptionOfAVisitorPasses)
{
    struct Thrower : HtmlDocVisitor {
        void tags(xmlNode const*) override { throw std::runtime_error("tags"); }
    };
    TextHtmlDoc document(false);
    EXPECT_THROW(run(document, Ref<Thrower>(new Thrower, false).get(), "<p>a"), std::runtime_error);
}

TEST(TextHtmlDoc, ColoursTellWhetherTextIsVisibleThen)
{
    RgbColour const white(255, 255, 255), black(0, 0, 0);
    TextHtmlDoc document(false);
    EXPECT_TRUE(document.isVisible());
    EXPECT_FALSE(document.colour(nullptr, nullptr));
    EXPECT_TRUE(document.isVisible());
    EXPECT_FALSE(document.colour(&white, nullptr));
    EXPECT_TRUE(document.colour(nullptr, &black));
    EXPECT_FALSE(document.colour(&black, nullptr));
    EXPECT_TRUE(document.colour(TextHtmlDoc::Colour(black, white)));
    EXPECT_FALSE(document.fontsize(0));
    EXPECT_FALSE(document.fontsize(3));
    EXPECT_TRUE(document.colour(TextHtmlDoc::Colour(black, white)));
}

TEST(TextHtmlDoc, ColoursAreBlackUnlessTold)
{
    TextHtmlDoc::Colour const colour;
    EXPECT_TRUE(RgbColour(0, 0, 0) == colour.foreground);
    EXPECT_TRUE(RgbColour(0, 0, 0) == colour.background);
    EXPECT_FALSE(colour.isVisible());
}

TEST(TextHtmlDoc, TellsTheColoursAndTheSizeInForce)
{
    TextHtmlDoc document(true);
    EXPECT_EQ(RgbColour(0, 0, 0), document.presentColour().foreground);
    EXPECT_EQ(RgbColour(255, 255, 255), document.presentColour().background);
    EXPECT_EQ(3u, document.presentFontSize());
    document.colour(TextHtmlDoc::Colour(RgbColour(1, 2, 3), RgbColour(4, 5, 6)));
    document.fontsize(0);
    EXPECT_EQ(RgbColour(1, 2, 3), document.presentColour().foreground);
    EXPECT_EQ(RgbColour(4, 5, 6), document.presentColour().background);
    EXPECT_EQ(0u, document.presentFontSize());
}

TEST(TextHtmlDoc, AStyleMustBeAText)
{
    TextHtmlDoc document(false);
    xmlNode element{};
    element.type = XML_ELEMENT_NODE;
    document.parseStyle(nullptr);
    document.parseStyle(&element);
    element.type = XML_TEXT_NODE;
    document.parseStyle(&element);
    EXPECT_TRUE(document.isVisible());
}

TEST(TextHtmlDoc, NeedsLittleStack)
{
    std::string html, text;
    for (int i = 0; i < 10000; ++i) html += "<div><span class=x style='color:red;font-size:12px'>";
    onSmallStack([&] { text = seen(html + "x"); });
    EXPECT_EQ("", text); // too deep: the rest is gone
}

/// Those of the names that a set has.
std::string matched(StringPattern const& set, std::vector<std::string> const& names)
{
    std::string found;
    for (std::string const& name : names)
        if (set.matches(name)) found += name + ' ';
    return found;
}

TEST(BodyOrTablePattern, HasFiveNamesInAnyCase)
{
    EXPECT_EQ("body TABLE tr Th td ", matched(BodyOrTablePattern::instance(),
                                              {"body", "TABLE", "tr", "Th", "td", "tbody", "t", "tables", "", "div"}));
}

TEST(ReplaceWithLF, HasEveryNameOfTwoLettersThatBeginsWithH)
{
    EXPECT_EQ("br P h1 H6 hr hX ", matched(ReplaceWithLF::instance(),
                                           {"br", "P", "h1", "H6", "hr", "hX", "h", "h10", "pre", "bra", "th", ""}));
}

} // namespace
} // namespace Velmara
