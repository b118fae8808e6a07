#include <velmara/HtmlParser.h>

#include <gtest/gtest.h>
#include <libxml/tree.h>
#include <libxml/xmlerror.h>

#include <fstream>
#include <iterator>
#include <random>
#include <stdexcept>
#include <vector>

#include "html/Events.h"
#include "html/LibxmlTree.h"
#include "support/SmallStack.h"

namespace Velmara {
namespace HTML {
namespace {

std::string events(std::string const& html, char const* charset = nullptr, bool ignoreEncoding = false)
{
    Events builder;
    Parser::parseAll(builder, ignoreEncoding, html.data(), static_cast<unsigned>(html.size()), charset);
    return builder.seen;
}

/// One pass after the other over all the rest, which is what parseAll comes to.
std::string eventsOfWholePasses(std::string const& html, char const* charset, bool ignoreEncoding)
{
    Events builder;
    for (size_t offset = 0; offset < html.size();) {
        Parser parser(builder, ignoreEncoding);
        parser.parse(html.data() + offset, static_cast<unsigned>(html.size() - offset), charset);
        if (parser.eof() || parser.gcount() == 0) break;
        offset += parser.gcount();
    }
    return builder.seen;
}

std::string repeated(std::string const& text, size_t n)
{
    std::string all;
    for (size_t i = 0; i < n; ++i) all += text;
    return all;
}

TEST(HtmlParser, NothingGivesNoEvent)
{
    EXPECT_EQ("", events(""));
    Events builder;
    Parser::parseAll(builder, false, nullptr, 5, "utf-8");
    Parser::parseAll(builder, false, Buffer(), nullptr);
    EXPECT_EQ("", builder.seen);
}

TEST(HtmlParser, EachNodeIsEntered)
{
    EXPECT_EQ("html(body(p('a'()b('b'())'c'())))", events("<html><body><p>a<b>b</b>c</p></body></html>"));
}

TEST(HtmlParser, ABuilderTakesWhatItWantsAndTheRestIsEmpty)
{
    struct Names : Builder {
        void foundTag(xmlNode const* node) override { names.append(" ").append((char const*)node->name); }
        std::string names;
    } builder;
    builder.beginParsing();
    std::string const html = "<p>a<!--b--><script>c</script><br>";
    Parser::parseAll(builder, false, html.data(), static_cast<unsigned>(html.size()), nullptr);
    builder.endParsing();
    EXPECT_EQ(" html body p script br", builder.names);
}

TEST(HtmlParser, MissingElementsAreAdded)
{
    EXPECT_EQ("html(body(p('a'())))", events("a"));
}

TEST(HtmlParser, EndTagFiresForEveryTypeOfNodeOnce)
{
    EXPECT_EQ("html(body('a'()!b!()br()))", events("<body>a<!--b--><br></body>"));
}

TEST(HtmlParser, CommentsAndScriptsAreEventsOfTheirOwn)
{
    EXPECT_EQ("html(head(script([x<p>]())))", events("<script>x<p></script>"));
}

TEST(HtmlParser, SiblingsOfTheRootAreWalkedToo)
{
    EXPECT_EQ("html(body(p('a'())))!x!()", events("<p>a</p></body></html><!--x-->"));
}

TEST(HtmlParser, ACommentAheadOfTheRootIsNotWalked)
{
    EXPECT_EQ("html(body(p('a'())))", events("<!--x--><p>a</p>"));
}

TEST(HtmlParser, BlankTextOutsideTheBodyDoesNotReachTheBuilder)
{
    EXPECT_EQ("html(head(title('t'()))body(p('a'())))",
              events("<html>\n <head>\n  <title>t</title>\n </head>\n <body><p>a</p></body>\n</html>\n"));
}

TEST(HtmlParser, WhatStandsBehindTheEndIsAFurtherDocument)
{
    EXPECT_EQ("html(body(p('a'())))html(body(p('b'())))", events("<p>a</p></html><p>b</p>"));
}

TEST(HtmlParser, ThreeDocumentsAreThreePasses)
{
    EXPECT_EQ("html(body(p('a'())))html(body(p('b'())))html(body(p('c'())))",
              events("<html><p>a</html><html><p>b</html><html><p>c</html>"));
}

TEST(HtmlParser, WithoutARootTheLoopStops)
{
    // The first pass sees an end tag of nothing and stops with no root, so the second is never made.
    EXPECT_EQ("", events("</html>x<p>a</p>"));
    EXPECT_EQ("", events("<!-- only a comment -->"));
}

TEST(HtmlParser, OnePassTellsHowFarItCame)
{
    std::string const html = "<p>a</p></html><p>b</p>";
    Events builder;
    Parser parser(builder, false);
    EXPECT_FALSE(parser.eof());
    EXPECT_EQ(0u, parser.gcount());
    parser.parse(html.data(), static_cast<unsigned>(html.size()), nullptr);
    EXPECT_FALSE(parser.eof());
    EXPECT_EQ(15u, parser.gcount());
    parser.parse(html.data() + 15, static_cast<unsigned>(html.size() - 15), nullptr);
    EXPECT_TRUE(parser.eof());
    EXPECT_EQ(8u, parser.gcount());
    EXPECT_EQ("html(body(p('a'())))html(body(p('b'())))", builder.seen);
}

TEST(HtmlParser, WithoutARootAPassConsumesNothing)
{
    Events builder;
    Parser parser(builder, false);
    parser.parse("<!--x-->", 8, nullptr);
    EXPECT_FALSE(parser.eof());
    EXPECT_EQ(0u, parser.gcount());
}

TEST(HtmlParser, NearTheEndOfItsInputLibxmlForgetsThatItHasComeFar)
{
    // It looks every 101 characters whether fewer than 500 bytes are left: they are at byte 1619 of 2030.
    // It keeps 80 bytes ahead of that place and counts from there on, up to byte 2022 behind `</html>`.
    std::string const html = "<p>" + std::string(2000, 'x') + "</p><p>y</p></html><i>z</i>";
    Events builder;
    Parser parser(builder, false);
    parser.parse(html.data(), static_cast<unsigned>(html.size()), nullptr);
    EXPECT_FALSE(parser.eof());
    EXPECT_EQ(2022u - (1619u - 80u), parser.gcount());
}

struct CharsetRow {
    char const* rule;
    std::string html;
    char const* charset;
    bool ignoreEncoding;
    std::string expected;
};
class HtmlCharset : public testing::TestWithParam<CharsetRow> {};

TEST_P(HtmlCharset, Decodes)
{
    CharsetRow const& row = GetParam();
    EXPECT_EQ(row.expected, events(row.html, row.charset, row.ignoreEncoding));
}

std::string const declared =
    "<meta http-equiv=\"Content-Type\" content=\"text/html; charset=koi8-r\"><p>\xc1</p>"; // Cyrillic a
std::string const head = "html(head(meta())body(p('";
std::string const tail = "'())))";

INSTANTIATE_TEST_SUITE_P(
    Rules, HtmlCharset,
    testing::Values(CharsetRow{"AKnownNameIsTaken", "<p>\xd0\xb0</p>", "utf-8", false, "html(body(p('\xd0\xb0'())))"},
                    CharsetRow{"AnyNameOfIcuIsTaken", "<p>\xc1</p>", "koi8-r", false, "html(body(p('\xd0\xb0'())))"},
                    CharsetRow{"WhiteSpaceAroundTheNameIsTrimmed", "<p>\xc1</p>", " \tkoi8-r\r\n", false,
                               "html(body(p('\xd0\xb0'())))"},
                    CharsetRow{"WithoutANameLatin1IsTaken", "<p>\xe4</p>", nullptr, false,
                               "html(body(p('\xc3\xa4'())))"},
                    CharsetRow{"AnEmptyNameIsNone", "<p>\xe4</p>", "", false, "html(body(p('\xc3\xa4'())))"},
                    CharsetRow{"TheDocumentsDeclarationIsTaken", declared, nullptr, false, head + "\xd0\xb0" + tail},
                    CharsetRow{"UsAsciiInCapitalsLeavesTheDeclarationInForce", declared, " US-ASCII ", false,
                               head + "\xd0\xb0" + tail},
                    CharsetRow{"AsciiLeavesTheDeclarationInForce", declared, "ascii", false, head + "\xd0\xb0" + tail},
                    CharsetRow{"AnUnknownNameLeavesTheDeclarationInForce", declared, "x-no-such-set", false,
                               head + "\xd0\xb0" + tail},
                    CharsetRow{"AnIgnoredDeclarationDoesNotChangeADecodingGivenFromOutside", declared, "iso-8859-1",
                               true, head + "\xc3\x81" + tail},
                    CharsetRow{"Utf16", std::string("<\0p\0>\0x\0", 8), "utf-16le", false, "html(body(p('x'())))"}),
    [](auto const& row) { return std::string(row.param.rule); });

TEST(HtmlParser, AnIgnoredDeclarationIsNotHeeded)
{
    std::string const html = "<meta charset=koi8-r><p>\xc1</p>";
    EXPECT_EQ(head + "\xd0\xb0" + tail, events(html, nullptr, false));
    EXPECT_EQ(head + "\xc3\x81" + tail, events(html, nullptr, true));
}

TEST(HtmlContext, TellsTheCharacterSetThatLibxmlRecorded)
{
    HTMLContext context(false);
    EXPECT_EQ(XML_CHAR_ENCODING_NONE, context.characterSet());
    context.characterSet(nullptr);
    context.characterSet(" ASCII ");
    context.characterSet("x-no-such-set");
    EXPECT_EQ(XML_CHAR_ENCODING_NONE, context.characterSet());
    EXPECT_EQ("", context.characterSetAsString());
    context.characterSet("utf-8");
    EXPECT_EQ(XML_CHAR_ENCODING_UTF8, context.characterSet());
    EXPECT_EQ("UTF-8", context.characterSetAsString());
}

TEST(HtmlContext, GivesTheRootOrNull)
{
    HTMLContext some(false), none(false);
    xmlNode const* root = some.parse("<p>", 3);
    ASSERT_TRUE(root);
    EXPECT_STREQ("html", reinterpret_cast<char const*>(root->name));
    EXPECT_FALSE(none.parse("", 0));
}

TEST(HtmlContext, TheRootCanBeGivenToLibxml)
{
    HTMLContext context(false);
    xmlNodePtr const root = context.parse("<p>a<i>b</i>", 12);
    xmlChar* text = xmlNodeGetContent(root);
    EXPECT_STREQ("ab", reinterpret_cast<char const*>(text));
    xmlFree(text);
}

TEST(HtmlContext, MoreBytesThanLibxmlCountsGiveNoRoot)
{
    HTMLContext context(false);
    EXPECT_FALSE(context.parse("<p>", 0x80000000u)); // none of them is looked at
}

TEST(HtmlContext, WithoutADocumentNoFileIsWritten)
{
    std::string const name = testing::TempDir() + "velmara_html_none";
    HTMLContext(false).write(name);
    EXPECT_FALSE(std::ifstream(name));
}

/// What stands in a file, which is removed.
std::string taken(std::string const& name)
{
    std::ifstream in(name, std::ios::binary);
    std::string const bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    std::remove(name.c_str());
    return bytes;
}

TEST(HtmlParser, WritesInputAndTreeForDiagnosis)
{
    std::string const raw = testing::TempDir() + "velmara_html_raw",
                      parsed = testing::TempDir() + "velmara_html_parsed";
    Events builder;
    Parser parser(builder, false);
    parser.fnRaw(raw);
    parser.fnParsed(parsed);
    parser.parse("<p>a", 4, nullptr);
    EXPECT_EQ("<p>a", taken(raw));
    EXPECT_NE(std::string::npos, taken(parsed).find("<p>a</p>"));
}

TEST(HtmlParser, AFileThatCannotBeWrittenIsIgnored)
{
    Events builder;
    Parser parser(builder, false);
    parser.fnRaw("/no/such/folder/raw");
    parser.fnParsed("/no/such/folder/parsed");
    parser.parse("<p>a", 4, nullptr);
    EXPECT_EQ("html(body(p('a'())))", builder.seen);
}

TEST(HtmlParser, AnExceptionOfABuilderPasses)
{
    struct Thrower : Builder {
        void foundText(xmlNode const*) override { throw std::runtime_error("text"); }
    } builder;
    EXPECT_THROW(Parser::parseAll(builder, false, "<p>a", 4, nullptr), std::runtime_error);
}

TEST(HtmlParser, NothingReachesStandardError)
{
    testing::internal::CaptureStderr();
    events("<p>\xff\xfe\xff\x00</p>", "utf-8");
    events("\x1b$B\xff\xff<p>", "iso-2022-jp");
    events(std::string("\xd8\x00\xd8\x00", 4), "utf-16");
    events("<p>" + std::string(3000, 'x') + "&#xffffffff;<zzz></p><!--", nullptr);
    events("<meta http-equiv=x content='y;charset=nonsense'>\xe4", nullptr);
    events("<meta charset=utf-16><p>\xe4", nullptr);
    events(repeated("<div>", 300));
    EXPECT_EQ("", testing::internal::GetCapturedStderr());
}

TEST(HtmlParser, AnErrorHandlerOfTheCallerIsNeitherCalledNorLost)
{
    int calls = 0;
    xmlStructuredErrorFunc const mine = [](void* count, xmlErrorPtr) { ++*static_cast<int*>(count); };
    xmlSetStructuredErrorFunc(&calls, mine);
    events("\x1b$B\xff\xff<p>", "iso-2022-jp");
    EXPECT_EQ(0, calls);
    EXPECT_EQ(mine, xmlStructuredError);
    EXPECT_EQ(&calls, xmlStructuredErrorContext);
    xmlSetStructuredErrorFunc(nullptr, nullptr);
}

TEST(HtmlParser, LibxmlStopsBeyond257OpenElementsAndTheRestIsGone)
{
    // `html` and `body` are two of them.
    auto const nested = [](size_t n) { return repeated("<div>", n) + "x" + repeated("</div>", n) + "<p>y</p>"; };
    auto const whole = [](size_t n) {
        return "html(body(" + repeated("div(", n) + "'x'()" + repeated(")", n) + "p('y'())))";
    };
    EXPECT_EQ(whole(254), events(nested(254)));
    EXPECT_EQ(whole(255), events(nested(255)));
    EXPECT_EQ("html(body(" + repeated("div(", 255) + repeated(")", 255) + "))", events(nested(256)));
    EXPECT_EQ("html(body(" + repeated("div(", 255) + repeated(")", 255) + "))", events(nested(100000)));
}

TEST(HtmlParser, NamesOfAnyNumberComeOutAsTheyAre)
{
    // More than one dictionary of the parser takes, at each place where it keeps a name, and one that is still open.
    std::string html = "<outer>", expected = "html(body(outer(";
    for (int i = 0; i < 10000; ++i) {
        std::string const n = std::to_string(i);
        html.append("<t").append(n).append(" a" + n).append("=1>x&zz" + n).append(";</t" + n);
        html.append("></n").append(n).append("><?i" + n).append(">");
        expected.append("t").append(n).append("('x&zz" + n).append(";'()))");
    }
    EXPECT_EQ(expected + "'end'())p('y'())))", events(html + "end</outer><p>y"));
}

TEST(HtmlContext, TheTreeIsThatOfLibxml)
{
    // Ahead of the root and in it, with and without a DTD: what the parser is spared must not show.
    char const* const strict = "<!DOCTYPE html PUBLIC '-//W3C//DTD HTML 4.01//EN'>";
    char const* const pieces[] = {"<!--a-->", "<!--b--> ",    " ",       "<?i>",           "<?i x> ",  "x",
                                  "<p>",      "</p>",         "<table>", "</tr>",          "<body>",   "</body>",
                                  "</html>",  "<!DOCTYPE a>", strict,    "<b>y ",          "<t1 u=v>", "</t1>",
                                  "&zz;",     "<html/>",      "<p/>",    "<a id=b name=c>"};
    std::mt19937 random(7);
    for (int i = 0; i < 3000; ++i) {
        std::string html;
        for (unsigned n = random() % 40; n > 0; --n) html += pieces[random() % std::size(pieces)];
        HTMLContext context(true);
        xmlNode const* const root = context.parse(html.data(), static_cast<unsigned>(html.size()));
        if (!root) continue;
        ASSERT_EQ(treeOfLibxml(html), dumped(root->doc)) << html;
        ASSERT_TRUE(pointsBack(root->doc)) << html;
    }
}

TEST(HtmlParser, ATextBeyondTenMegabytesIsCutAndWhatFollowsIsAFurtherDocument)
{
    struct Lengths : Builder {
        void foundText(xmlNode const* node) override { found.push_back(xmlstrlen(node->content)); }
        std::vector<unsigned> found;
    } lengths;
    // libxml2 gets text in pieces of up to 1000 bytes; the one that does not fit is lost.
    std::string const html = "<p>" + std::string(10500000, 'x') + "</p><b>yz";
    Parser::parseAll(lengths, true, html.data(), static_cast<unsigned>(html.size()), "utf-8");
    EXPECT_EQ((std::vector<unsigned>{10000000, 499000, 2}), lengths.found);
}

TEST(HtmlParser, ADeepAndWideDocumentNeedsLittleStack)
{
    std::string const html = repeated("<div><b>x", 200) + repeated("</div>", 3) + repeated("<p>y</p>", 20000);
    std::string seen;
    onSmallStack([&] { seen = events(html); });
    EXPECT_EQ(events(html), seen);
}

/// The number of attributes of each element.
struct AttributeCounts : Builder {
    void foundTag(xmlNode const* node) override
    {
        size_t n = 0;
        for (xmlAttr const* attribute = node->properties; attribute; attribute = attribute->next) ++n;
        counts += std::to_string(n) + " ";
    }
    void foundText(xmlNode const* node) override { counts += reinterpret_cast<char const*>(node->content); }
    std::string counts;
};

std::string attributeCounts(std::string const& html, char const* charset = nullptr)
{
    AttributeCounts builder;
    Parser::parseAll(builder, false, html.data(), static_cast<unsigned>(html.size()), charset);
    return builder.counts;
}

std::string attributes(size_t n)
{
    std::string all;
    for (size_t i = 0; i < n; ++i) all += " a" + std::to_string(i) + "='>'";
    return all;
}

TEST(HtmlParser, OfATagTheFirst1024AttributesAreSeen)
{
    EXPECT_EQ("0 0 1023 x", attributeCounts("<p" + attributes(1023) + ">x"));
    EXPECT_EQ("0 0 1024 x", attributeCounts("<p" + attributes(1024) + ">x"));
    EXPECT_EQ("0 0 1024 x", attributeCounts("<p" + attributes(1025) + ">x"));
    EXPECT_EQ("0 0 1024 x", attributeCounts("<p" + attributes(20000) + ">x"));
}

TEST(HtmlParser, EachTagMayHaveSoManyAttributes)
{
    EXPECT_EQ("0 0 1000 1000 x", attributeCounts("<p" + attributes(1000) + "><b" + attributes(1000) + ">x"));
}

TEST(HtmlParser, AttributesOfSeveralKindsAreCountedAsLibxmlReadsThem)
{
    std::string values;
    for (int i = 0; i < 512; ++i) values += " a" + std::to_string(i) + " = \"x > y\" b" + std::to_string(i) + "\n\t";
    EXPECT_EQ("0 0 1024 x", attributeCounts("<p " + values + ">x"));
    EXPECT_EQ("0 0 1024 x", attributeCounts("<p " + values + " last=one >x"));
}

TEST(HtmlParser, WhatIsNoTagIsNotCounted)
{
    std::string const words = "<p" + attributes(3000) + " ";
    EXPECT_EQ("0 0 0 x", attributeCounts("<!-- " + words + "--><p>x"));
    EXPECT_EQ("0 0 0 0 0 x", attributeCounts("<script>" + words + "</script><p>x"));
}

TEST(HtmlParser, TagsThatCannotBeCountedHaveABoundAllTheSame)
{
    // 40000 names in a set that is not built on ASCII: what counts is that this comes back at once.
    std::string tag = "<p";
    for (int i = 0; i < 40000; ++i) tag += " a" + std::to_string(i);
    tag += ">x";
    std::string wide;
    for (char c : tag) wide += std::string{c, '\0'};
    std::string const counts = attributeCounts(wide, "utf-16le");
    EXPECT_EQ("0 0 ", counts.substr(0, 4));
    EXPECT_EQ("x", counts.substr(counts.size() - 1));
    EXPECT_GT(5000, std::stoi(counts.substr(4)));
}

/// In EBCDIC, so far as needed.
std::string ebcdic(std::string const& text)
{
    std::string all;
    for (char c : text) {
        std::string const letters = "abcdefghi";
        size_t const letter = letters.find(c);
        if (c >= '0' && c <= '9')
            all += static_cast<char>(0xf0 + (c - '0'));
        else if (letter != std::string::npos)
            all += static_cast<char>(0x81 + letter);
        else
            all += c == '<' ? '\x4c' : c == '>' ? '\x6e' : '\x40';
    }
    return all;
}

TEST(HtmlParser, TagsInASetThatTheDocumentAsksForHaveABoundToo)
{
    std::string tag = "<b";
    for (int i = 0; i < 40000; ++i) tag += " a" + std::to_string(i);
    std::string const html = "<meta http-equiv=Content-Type content='text/html; charset=IBM037'>" + ebcdic(tag + ">d");
    std::string const counts = attributeCounts(html);
    EXPECT_EQ("0 0 2 0 ", counts.substr(0, 8));
    EXPECT_EQ("d", counts.substr(counts.size() - 1));
    EXPECT_GT(5000, std::stoi(counts.substr(8)));
}

struct PassesRow {
    char const* rule;
    std::string html;
    char const* charset;
};
class HtmlPasses : public testing::TestWithParam<PassesRow> {};

TEST_P(HtmlPasses, OverPiecesGiveWhatPassesOverAllTheRestGive)
{
    for (bool ignoreEncoding : {false, true})
        EXPECT_EQ(eventsOfWholePasses(GetParam().html, GetParam().charset, ignoreEncoding),
                  events(GetParam().html, GetParam().charset, ignoreEncoding));
}

std::string const document = "<html><p>a \xe4 b</p></html>";
std::string const longDocument = "<html><p>" + std::string(9000, 'x') + "\xe4</p></html>";
std::string const koi8 = "<meta HTTP-equiv=Content-Type content='text/html; charset=koi8-r'>";

INSTANTIATE_TEST_SUITE_P(
    Rules, HtmlPasses,
    testing::Values(
        PassesRow{"ManySmallDocuments", repeated("<p>a</p></html>", 2000), nullptr},
        PassesRow{"ManySmallDocumentsInAGivenSet", repeated(document, 1000), "koi8-r"},
        PassesRow{"ManySmallDocumentsInWrongUtf8", repeated(document, 1000), "utf-8"},
        PassesRow{"ManySmallDocumentsInUtf8", repeated("<html><p>\xc3\xa4</p></html>", 1000), "utf-8"},
        PassesRow{"ManySmallDocumentsInAGuessedSet", repeated(document, 1000), nullptr},
        PassesRow{"ADeclarationFarBehindIsFound", repeated(document, 500) + koi8 + document, nullptr},
        PassesRow{"ADeclarationBehindANulIsNotFound", repeated(document, 500) + std::string(1, '\0') + koi8 + document,
                  nullptr},
        PassesRow{"NulsAmongDeclarations",
                  repeated(longDocument + koi8 + std::string(1, '\0') + repeated(document, 50), 2), nullptr},
        PassesRow{"ADeclarationIsFoundFromBehindANul",
                  repeated(document, 200) + std::string(1, '\0') + repeated(document, 300) + koi8 + document, nullptr},
        PassesRow{"ANulBehindShortDocumentsThatFollowLongOnes",
                  repeated("<p>" + std::string(4000, 'x') + "</html>", 2) + repeated(document, 100) +
                      std::string(1, '\0') + koi8 + repeated(document, 500),
                  nullptr},
        PassesRow{"ADeclarationInPartsFarApart",
                  repeated(document, 300) + "<i http-equiv>" + repeated(document, 300) + "content" +
                      repeated(document, 300) + "charset=koi8-r" + repeated(document, 300),
                  nullptr},
        PassesRow{"DeclarationsOfSeveralSets",
                  repeated(document, 300) + "charset=koi8-r" + repeated(document, 300) + "content charset=iso-8859-7" +
                      repeated(document, 300) + "http-equiv content charset=windows-1251" + repeated(document, 300),
                  nullptr},
        PassesRow{"ADeclarationOfANameWithSigns",
                  repeated(document, 500) + "http-equiv content charset=iso_8859-5:1988" + repeated(document, 100),
                  nullptr},
        PassesRow{"ADeclarationAtTheVeryEnd", repeated(document, 500) + "http-equiv content charset=koi8-r", nullptr},
        PassesRow{"ARunOfLettersToTheEnd", repeated(document, 20) + std::string(20000, 'x'), nullptr},
        PassesRow{"AnInstructionWhoseNameEndsFarBehind",
                  repeated(document, 3) + "<p>b</p></html><?" + std::string(9000, 'x') + "><p>c</p>", "utf-8"},
        PassesRow{"AnInstructionWhoseNameHasSigns",
                  repeated(document, 3) + "<p>b</p></html><?" + repeated("x_-:.", 1800) + "><p>c</p>", "utf-8"},
        PassesRow{"AnInstructionWhoseNameEndsAtOnce",
                  repeated(document, 3) + "<p>b</p></html><?x " + std::string(9000, 'y') + "><p>c</p>", "utf-8"},
        PassesRow{"AnInstructionWhoseNameDoesNotEnd",
                  repeated(document, 3) + "<p>b</p></html><?" + std::string(9000, 'x'), "utf-8"},
        PassesRow{"AnInstructionWhoseNameEndsFarBehindInAGuessedSet",
                  repeated(document, 3) + "<p>b</p></html><?" + std::string(9000, 'x') + "><p>c</p>", nullptr},
        PassesRow{"LongDocuments", repeated(longDocument, 8), nullptr},
        PassesRow{"LongAndShortDocuments", repeated(longDocument + repeated(document, 50), 4), nullptr},
        PassesRow{"AHaltWithinALaterDocument",
                  repeated("<p>a</p></html>", 1000) + repeated("<div>", 300) + repeated("<p>a</p></html>", 1000),
                  nullptr}),
    [](auto const& row) { return std::string(row.param.rule); });

TEST(HtmlParser, StringsOfLibxmlHaveALengthAndPlaces)
{
    auto const text = reinterpret_cast<unsigned char const*>("abcab");
    EXPECT_EQ(5u, xmlstrlen(text));
    EXPECT_EQ(text + 1, xmlstrstr(text, "bc"));
    EXPECT_EQ(text, xmlstrstr(text, reinterpret_cast<unsigned char const*>("ab")));
    EXPECT_EQ(text, xmlstrstr(text, ""));
    EXPECT_EQ(nullptr, xmlstrstr(text, "ba"));
}

TEST(HtmlNames, MatchWholeInAnyCase)
{
    char const* names[] = {"td", "th", nullptr};
    StringPattern const pattern = stringPatternFactory(names);
    EXPECT_TRUE(pattern.matches("TD"));
    EXPECT_TRUE(pattern.matches("th"));
    EXPECT_FALSE(pattern.matches("t"));
    EXPECT_FALSE(pattern.matches("tdx"));
}

TEST(HtmlNames, WithoutAnArrayOrNamesMatchNothing)
{
    char const* none[] = {nullptr};
    EXPECT_TRUE(stringPatternFactory(nullptr).isNull());
    EXPECT_FALSE(stringPatternFactory(none).matches(""));
}

} // namespace
} // namespace HTML
} // namespace Velmara
