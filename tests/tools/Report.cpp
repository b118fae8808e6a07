// The page shows what strangers wrote, so most of these tests ask what cannot happen in it.
#include "report/Page.h"

#include <algorithm>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "facts/Utf8.h"
#include "report/Html.h"
#include "report/HtmlView.h"

namespace VelmaraCommand {
namespace {

using testing::HasSubstr;
using testing::Not;

// ---- escaping ------------------------------------------------------------------------------------

struct EscapeRow {
    char const* rule;
    std::string text, written;
};

class Escaped : public testing::TestWithParam<EscapeRow> {};

TEST_P(Escaped, IsFitForTextAndAttributes)
{
    EXPECT_EQ(GetParam().written, escaped(GetParam().text));
}

INSTANTIATE_TEST_SUITE_P(
    Rows, Escaped,
    testing::Values(EscapeRow{"Markup", "<a b=\"c\" d='e'>&amp;", "&lt;a b=&quot;c&quot; d=&#39;e&#39;&gt;&amp;amp;"},
                    EscapeRow{"OtherTextStays",
                              "Gr\xC3\xBC\xC3\x9F"
                              "e \xF0\x9F\x98\x80 `x`",
                              "Gr\xC3\xBC\xC3\x9F"
                              "e \xF0\x9F\x98\x80 `x`"},
                    EscapeRow{"BytesThatAreNoText", "a\xFF\xC3", "a\xEF\xBF\xBD\xEF\xBF\xBD"},
                    EscapeRow{"MarkupBehindACutSequence", "\xE2\x82<", "\xEF\xBF\xBD\xEF\xBF\xBD&lt;"},
                    EscapeRow{"LongFormOfMarkup", "\xC0\xBC", "\xEF\xBF\xBD\xEF\xBF\xBD"},
                    EscapeRow{"NulIsSeen", std::string("a\0b", 3), "a␀b"},
                    EscapeRow{"EscapeIsSeen", "\x1B[31m", "␛[31m"}, EscapeRow{"DeleteIsSeen", "\x7F", "␡"},
                    EscapeRow{"NextLineIsSeen", "\xC2\x85", "⟨U+0085⟩"},
                    EscapeRow{"OverrideOfDirectionIsSeen",
                              "exe.\xE2\x80\xAE"
                              "gpj",
                              "exe.⟨U+202E⟩gpj"},
                    EscapeRow{"TagCharactersAreSeen", "\xF3\xA0\x81\x81", "⟨U+E0041⟩"},
                    EscapeRow{"NoncharactersAreSeen", "\xEF\xBF\xBE", "⟨U+FFFE⟩"},
                    EscapeRow{"LineEndsBecomeOne", "a\r\nb\tc\nd", "a\nb\tc\nd"},
                    EscapeRow{"LoneReturnIsSeen", "a\rb", "a␍b"}),
    [](auto const& row) { return std::string(row.param.rule); });

TEST(Html, LiteralsAreMarkupAndTextsAreNot)
{
    Html html;
    html << "<b>" << std::string("<b>") << "</b>";
    EXPECT_EQ("<b>&lt;b&gt;</b>", html.asString());
}

TEST(Html, ATextThatIsCutSaysHowMuchIsMissing)
{
    Html html;
    html.beginning("abcdef", 4);
    EXPECT_EQ("abcd <span class=\"cut\">… 2 bytes more left out</span>", html.asString());
}

TEST(Html, TextsThatShouldBeNamesAreCutAnyway)
{
    Html html;
    html << std::string(5000, 'x');
    EXPECT_EQ(std::string(1000, 'x') + "…", html.asString());
}

TEST(Grouped, HasACommaBetweenThousands)
{
    EXPECT_EQ("0", grouped(0));
    EXPECT_EQ("999", grouped(999));
    EXPECT_EQ("1,000", grouped(1000));
    EXPECT_EQ("12,345,678", grouped(12345678));
}

// ---- thumbnails ----------------------------------------------------------------------------------

std::string const _png("\x89PNG\r\n\x1A\n\0\0\0\rIHDR\0\0\1\0\0\0\0\x20", 24);
std::string const _gif("GIF89a\x10\0\x05\1", 10);
std::string const _jpeg("\xFF\xD8\xFF\xE0\0\4ab\xFF\xFF\xC4\0\2\xFF\xC2\0\x11\x08\0\x30\1\2", 22);

struct ImageRow {
    char const* rule;
    std::string bytes;
    char const* type;
    std::uint64_t width, height;
};

class ReadImage : public testing::TestWithParam<ImageRow> {};

TEST_P(ReadImage, TellsFormatAndSizeByTheBytesAlone)
{
    Thumbnail const image = readImage(GetParam().bytes);
    EXPECT_EQ(GetParam().type, image.type);
    EXPECT_EQ(GetParam().width, image.width);
    EXPECT_EQ(GetParam().height, image.height);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, ReadImage,
    testing::Values(ImageRow{"Png", _png, "image/png", 256, 32}, ImageRow{"Gif", _gif, "image/gif", 16, 261},
                    ImageRow{"JpegBehindOtherSegments", _jpeg, "image/jpeg", 258, 48},
                    ImageRow{"PngCutShort", _png.substr(0, 18), "image/png", 0, 0},
                    ImageRow{"GifCutShort", _gif.substr(0, 7), "image/gif", 0, 0},
                    ImageRow{"JpegWithoutAFrame", _jpeg.substr(0, 13), "image/jpeg", 0, 0},
                    ImageRow{"JpegOfPaddingAlone", "\xFF\xD8" + std::string(1000, '\xFF'), "image/jpeg", 0, 0},
                    ImageRow{"Drawing", "<svg xmlns=\"http://www.w3.org/2000/svg\"/>", "", 0, 0},
                    ImageRow{"Nothing", "", "", 0, 0}),
    [](auto const& row) { return std::string(row.param.rule); });

/// A message whose whole body is an image.
struct ImageMail {
    ImageMail(std::string const& declared, std::string const& detected, std::string const& bytes)
        : text("Content-Type: " + declared + "\nContent-Transfer-Encoding: 8bit\n\n" + bytes)
    {
        part.path = "1";
        part.mediaType = declared;
        part.decodedBytes = bytes.size();
        part.type.emplace();
        part.type->detected = detected;
    }
    Thumbnail thumbnail(ThumbnailLimits const& limits = {}) const
    {
        return thumbnailsOf(Velmara::BufferMediaIn(text), {part}, limits)["1"];
    }

    std::string text;
    PartFacts part;
};

TEST(Thumbnails, ShowTheDecodedBytesOfThePart)
{
    Thumbnail const image = ImageMail("image/gif", "image/gif", "GIF89a\x10\x01\x05\x01").thumbnail();
    EXPECT_EQ("R0lGODlhEAEFAQ==", image.base64);
    EXPECT_EQ("", image.whyNone);
}

TEST(Thumbnails, AreOfTheTypeThatTheBytesHaveWhateverIsDeclared)
{
    EXPECT_EQ("image/gif", ImageMail("image/svg+xml", "image/gif", "GIF89a\x10\x01\x05\x01").thumbnail().type);
}

struct LeftOutRow {
    char const* rule;
    std::string declared, detected, bytes;
    ThumbnailLimits limits;
    char const* why;
};

class LeftOut : public testing::TestWithParam<LeftOutRow> {};

TEST_P(LeftOut, SaysWhy)
{
    LeftOutRow const& row = GetParam();
    Thumbnail const image = ImageMail(row.declared, row.detected, row.bytes).thumbnail(row.limits);
    EXPECT_EQ(row.why, image.whyNone);
    EXPECT_EQ("", image.base64);
}

std::string const _smallGif = "GIF89a\x10\x01\x05\x01";

INSTANTIATE_TEST_SUITE_P(
    Rows, LeftOut,
    testing::Values(
        LeftOutRow{"Drawing",
                   "image/svg+xml",
                   "image/svg+xml",
                   "<svg/>",
                   {},
                   "only PNG, GIF and JPEG are shown, and this is image/svg+xml"},
        LeftOutRow{"DrawingSaidToBeAnImage",
                   "image/png",
                   "image/svg+xml",
                   "<svg/>",
                   {},
                   "only PNG, GIF and JPEG are shown, and this is image/svg+xml"},
        LeftOutRow{"NameAlone",
                   "image/png",
                   "image/png",
                   "<html>",
                   {},
                   "only PNG, GIF and JPEG are shown, and it begins like none of them"},
        LeftOutRow{"TooLarge", "image/gif", "image/gif", _smallGif, {9, 100, 1 << 20}, "it is larger than 9 bytes"},
        LeftOutRow{"NoRoomLeft",
                   "image/gif",
                   "image/gif",
                   _smallGif,
                   {100, 9, 1 << 20},
                   "the images ahead of it fill the room for images"},
        LeftOutRow{"UnfoldsIntoTooMuch",
                   "image/gif",
                   "image/gif",
                   _smallGif,
                   {100, 100, 1000},
                   "it unfolds into more than 1,000 pixels"},
        LeftOutRow{"Damaged", "image/gif", "image/gif", "GIF89a", {}, "its width and height cannot be read"},
        LeftOutRow{"Empty", "image/gif", "image/gif", "", {}, "it is empty"}),
    [](auto const& row) { return std::string(row.param.rule); });

TEST(Thumbnails, PartsThatAreNoImagesHaveNone)
{
    ImageMail const mail("text/html", "text/html", "<img src=x>");
    EXPECT_TRUE(thumbnailsOf(Velmara::BufferMediaIn(mail.text), {mail.part}).empty());
}

// ---- the page ------------------------------------------------------------------------------------

PartFacts _part(std::string const& path, unsigned int depth = 0)
{
    PartFacts part;
    part.path = path;
    part.depth = depth;
    return part;
}

Run _run(Run::View view, std::string const& text)
{
    Run run;
    run.view = view;
    run.text = text;
    return run;
}

ShownImage _image(std::string const& source, bool isContentId)
{
    ShownImage image;
    image.source = source;
    image.isContentId = isContentId;
    return image;
}

std::string _pageOf(MessageFacts const& facts)
{
    return pageOf(facts, {}, "mail.eml");
}

size_t _count(std::string const& text, std::string const& what)
{
    size_t count = 0;
    for (size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1)) ++count;
    return count;
}

/// Facts in which every text is the same.
MessageFacts _factsFullOf(std::string const& text)
{
    MessageFacts facts;
    facts.subject = facts.messageId = facts.date = text;
    facts.from = facts.sender = facts.replyTo = facts.to = facts.cc = {Address{text, text}};
    facts.route = {Hop{{}, text, text, text, text, text, {}}};
    facts.findings = {Finding{text, "1", {1, 2}, text}};
    PartFacts part = _part("1");
    part.headers = {{text, "=?utf-8?Q?x?= " + text}};
    part.mediaType = part.charset = part.encoding = part.disposition = part.name = part.contentId = part.decodedBy =
        text;
    part.type = TypeFacts{text, 7, text, text, true};
    part.signature = SignatureFacts{text, "", text, 1, 2, text};
    part.text = TextFacts{text, text, true, 1, 1, text, {1, 2}, text, 1000000};
    part.boundary = text;
    part.ending = Ending{{1, 2}, text, "1", text, true, false};
    facts.parts = {part};
    part.path = "1.1";
    part.html.emplace();
    part.html->runs = {_run(Run::Visible, text), _run(Run::HiddenByColour, text)};
    part.html->links = {Link{text, text, text, text, {text}}, Link{text, text, "", "", {}}};
    part.html->images = {_image(text, false), _image(text, true)};
    part.html->hiddenBytes = 5;
    facts.parts.push_back(part);
    return facts;
}

TEST(Page, NoTextBecomesMarkupWhereverItStands)
{
    std::string const page =
        pageOf(_factsFullOf("\"'><script>x</script>"), {{"1", {"", 0, 0, "", "\"'><script>"}}}, "\"'><script>");
    EXPECT_EQ(0u, _count(page, "<script"));
    EXPECT_EQ(0u, _count(page, "\"'>"));
    EXPECT_LT(40u, _count(page, "&quot;&#39;&gt;&lt;script&gt;x")) << "the texts are not in the page at all";
}

TEST(Page, IsValidTextWithoutControlsWhateverTheMailHolds)
{
    std::string const page = _pageOf(_factsFullOf(std::string("\xFF\0\x1B\xE2\x80\xAE\xC3", 7)));
    for (std::string_view rest = page; !rest.empty();) {
        Utf8Character const character = firstCharacter(rest);
        ASSERT_NE(0u, character.length) << "at " << page.size() - rest.size();
        ASSERT_TRUE(character.value == '\n' || !steersText(character.value)) << "at " << page.size() - rest.size();
        rest.remove_prefix(character.length);
    }
    EXPECT_THAT(page, HasSubstr("�␀␛⟨U+202E⟩�"));
}

TEST(Page, HasNoOtherLinksThanWithinItself)
{
    std::string const page = _pageOf(_factsFullOf("http://thief.example/"));
    EXPECT_EQ(_count(page, "href="), _count(page, "href=\"#") + 1); // the empty icon is the one
    EXPECT_THAT(page, HasSubstr("<link rel=\"icon\" href=\"data:,\">"));
    for (char const* none : {"src=\"http", "style=\"", "<form", "<script", "<iframe", "<object", "@import", "url("})
        EXPECT_THAT(page, Not(HasSubstr(none)));
}

TEST(Page, PolicyForbidsAllButItsOwnStyleAndImagesWithinIt)
{
    std::string const page = _pageOf({});
    EXPECT_THAT(
        page, testing::ContainsRegex("Content-Security-Policy\" content=\"default-src 'none'; img-src data:; style-src "
                                     "'sha256-[A-Za-z0-9+/]{43}='; form-action 'none'; base-uri 'none'\""));
    EXPECT_LT(page.find("Content-Security-Policy"), page.find("<style>"))
        << "a policy counts only from where it stands";
}

TEST(Page, EveryLinkWithinItHasItsTarget)
{
    MessageFacts facts = _factsFullOf("x");
    facts.parts[0].contentId = "<x>";
    std::string const page = _pageOf(facts);
    for (size_t at = page.find("href=\"#"); at != std::string::npos; at = page.find("href=\"#", at + 1)) {
        std::string const target = page.substr(at + 7, page.find('"', at + 7) - at - 7);
        EXPECT_EQ(1u, _count(page, "id=\"" + target + "\"")) << target;
    }
}

TEST(Page, DeepTreesAreDrawnFlat)
{
    MessageFacts facts;
    std::string path = "1";
    for (unsigned int depth = 0; depth < 101; ++depth, path += ".1") facts.parts.push_back(_part(path, depth));
    std::string const page = _pageOf(facts);
    EXPECT_EQ(101u, _count(page, "<article"));
    EXPECT_EQ(89u, _count(page, "<li class=\"d12\">")); // from there on all look the same
    EXPECT_EQ(0u, _count(page, "<li class=\"d13\">"));
    size_t deepest = 0, open = 0;
    for (size_t at = 0; (at = page.find_first_of('<', at)) != std::string::npos; ++at) {
        if (page.compare(at, 4, "<ol ") == 0 || page.compare(at, 9, "<article ") == 0)
            deepest = std::max(deepest, ++open);
        if (page.compare(at, 5, "</ol>") == 0 || page.compare(at, 10, "</article>") == 0) --open;
    }
    EXPECT_GE(2u, deepest);
}

TEST(Page, LongTextsAreCut)
{
    std::string const page = _pageOf(_factsFullOf(std::string(3 << 20, 'x')));
    EXPECT_GT(400000u, page.size());
    EXPECT_THAT(page, HasSubstr("more left out"));
}

TEST(Page, ManyPartsFillItUpToABound)
{
    MessageFacts facts = _factsFullOf(std::string(5000, '<'));
    PartFacts const part = facts.parts[1];
    for (unsigned int i = 0; i < 3000; ++i) {
        facts.parts.push_back(part);
        facts.parts.back().path = "1." + std::to_string(i);
    }
    std::string const page = _pageOf(facts);
    EXPECT_GT(32u << 20, page.size());
    EXPECT_THAT(page, HasSubstr("The page is full: "));
}

TEST(Page, TheSameFactsGiveTheSameBytes)
{
    EXPECT_EQ(_pageOf(_factsFullOf("x")), _pageOf(_factsFullOf("x")));
}

TEST(Page, SaysThatReadingStoppedAtACap)
{
    MessageFacts facts;
    facts.capped = "parts";
    EXPECT_THAT(_pageOf(facts), HasSubstr("more parts than were to be read"));
}

// ---- what is visible beside what is hidden ---------------------------------------------------------

/// The view with what is between the tags, one "|" for any number of tags.
std::string _textOf(Html const& html)
{
    std::string text;
    bool inTag = false;
    for (char c : html.asString()) {
        if (c == '<' && (text.empty() || text.back() != '|')) text += '|';
        if (c != '>' && !inTag && c != '<') text += c;
        inTag = c == '<' || (inTag && c != '>');
    }
    return text;
}

TEST(View, AHiddenRunStandsBesideTheTextThatItFollows)
{
    Swatches swatches;
    HtmlFacts html;
    html.runs = {_run(Run::Visible, "one"), _run(Run::HiddenBySize, "two"), _run(Run::Visible, "three")};
    std::string const text = _textOf(viewOf(html, swatches));
    EXPECT_THAT(text, HasSubstr("|one|two|Aa|font size 0 |#000000 on #000000, distance 0.0, size 0|three|nothing|"));
}

TEST(View, BlankRunsAreNeitherSeenNorHidden)
{
    Swatches swatches;
    HtmlFacts html;
    html.runs = {_run(Run::HiddenByColour, "\n "), _run(Run::Visible, "a"), _run(Run::Visible, " \r\n\t"),
                 _run(Run::Visible, "b"), _run(Run::HiddenByColour, " ")};
    std::string const text = _textOf(viewOf(html, swatches));
    EXPECT_THAT(text, HasSubstr("|a| |b|nothing|"));
    EXPECT_THAT(text, Not(HasSubstr("Hidden, and why")));
}

TEST(View, APageOfBlanksHasNoText)
{
    Swatches swatches;
    EXPECT_THAT(viewOf(HtmlFacts(), swatches).asString(), HasSubstr("This page has no text."));
}

TEST(Swatches, EachPairOfColoursIsOneRuleOfNumbers)
{
    Swatches swatches;
    VelmaraCommand::Run run;
    run.foreground[0] = 255;
    swatches.of(run);
    swatches.of(run);
    run.background[2] = 300; // a page may state what is no colour
    run.background[1] = -1;
    swatches.of(run);
    EXPECT_EQ(".s0{color:#ff0000;background:#000000}\n.s1{color:#ff0000;background:#0000ff}\n", swatches.rules());
}

TEST(ShareHidden, IsNeverAllOrNothingWhereThereIsBoth)
{
    HtmlFacts html;
    EXPECT_EQ("0 %", shareHidden(html));
    html.hiddenBytes = 1;
    EXPECT_EQ("100 %", shareHidden(html));
    html.visibleBytes = 1000000;
    EXPECT_EQ("1 %", shareHidden(html));
    html.hiddenBytes = 1000000000;
    EXPECT_EQ("99 %", shareHidden(html));
}

TEST(Images, ThoseThatArePartsOfTheMessageAreNamedByThePart)
{
    HtmlFacts html;
    html.images = {_image("<logo@x>", true), _image("http://x/", false)};
    std::string const list = imagesOf(html, {{"logo@x", "1.2"}}).asString();
    EXPECT_THAT(list, HasSubstr("is <a href=\"#p1.2\">part 1.2</a>"));
    EXPECT_THAT(list, HasSubstr("not loaded"));
}

} // namespace
} // namespace VelmaraCommand
