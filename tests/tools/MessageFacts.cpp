#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>

#include <velmara/MediaIn.h>

#include "facts/Findings.h"
#include "facts/MessageFacts.h"

using namespace VelmaraCommand;
using Velmara::BufferMediaIn;

namespace {

MessageFacts _factsOf(std::string const& mail, Limits const& limits = {}, Wanted const& wanted = {})
{
    return factsOf(BufferMediaIn(mail.data(), mail.size()), limits, wanted);
}

PartFacts const& _part(MessageFacts const& facts, std::string const& path)
{
    for (PartFacts const& part : facts.parts)
        if (part.path == path) return part;
    ADD_FAILURE() << "no part " << path;
    return facts.parts.front();
}

std::string _cut(std::string const& mail, Span const& span)
{
    return mail.substr(span.begin, span.end - span.begin);
}

std::string _mixed(std::string const& rest)
{
    return "Subject: =?iso-8859-1?Q?Caf=E9?=\r\nContent-Type: multipart/mixed; boundary=b\r\n\r\n" + rest;
}

} // namespace

TEST(MessageFacts, HeadersAreDecodedAndTheDateIsRead)
{
    MessageFacts const facts = _factsOf("From: =?utf-8?B?SsO8cmdlbg==?= <j@a.example>\nTo: b@a.example, c@a.example\n"
                                        "Subject: =?iso-8859-1?Q?Caf=E9?=\nMessage-ID: <1@a.example>\n"
                                        "Date: Mon, 1 Jan 2024 00:00:00 +0000\n\nx");
    EXPECT_EQ("Caf\xC3\xA9", facts.subject);
    EXPECT_EQ("1@a.example", facts.messageId);
    EXPECT_EQ(1704067200, facts.time);
    ASSERT_EQ(1u, facts.from.size());
    EXPECT_EQ("J\xC3\xBCrgen", facts.from[0].displayName);
    EXPECT_EQ("j@a.example", facts.from[0].address);
    EXPECT_EQ(2u, facts.to.size());
}

TEST(MessageFacts, PlacesOfPartsAreExact)
{
    std::string const mail =
        _mixed("before\r\n--b\r\nContent-Type: text/plain\r\n\r\none\r\n--b \r\n\r\ntwo\r\n--b--\r\nbehind");
    MessageFacts const facts = _factsOf(mail);
    EXPECT_EQ(mail.size(), facts.bytes);
    EXPECT_EQ("before\r\n", _cut(mail, _part(facts, "1.0").body));
    EXPECT_EQ("Content-Type: text/plain\r\n\r\n", _cut(mail, _part(facts, "1.1").header));
    EXPECT_EQ("one\r\n", _cut(mail, _part(facts, "1.1").body));
    EXPECT_EQ("two\r\n", _cut(mail, _part(facts, "1.2").body));
    EXPECT_EQ("behind", _cut(mail, _part(facts, "1.3").body));
    EXPECT_EQ(PartKind::Epilogue, _part(facts, "1.3").kind);
    EXPECT_EQ(mail.size(), _part(facts, "1").body.end);
}

TEST(MessageFacts, BodyBehindADelimiterThatEndsTheHeaderBlockBeginsBehindIt)
{
    std::string const mail = _mixed("--b\nX: y\n--b\nbody\n--b--\n");
    MessageFacts const facts = _factsOf(mail);
    EXPECT_EQ("X: y\n", _cut(mail, _part(facts, "1.1").header));
    EXPECT_EQ("body\n", _cut(mail, _part(facts, "1.1").body));
}

TEST(MessageFacts, LineThatEndsAPartIsKnownWithItsDelimiter)
{
    struct Row {
        char const *line, *delimiter;
        bool closing, exact;
    };
    for (Row const& row :
         {Row{"--b", "--b", false, true}, Row{"--b \t", "--b", false, true}, Row{"--bc", "--b", false, false},
          Row{"--b x", "--b", false, false}, Row{"--b--", "--b--", true, true}, Row{"--b--x", "--b--", true, false}}) {
        std::string const mail = _mixed(std::string("--b\n\none\n") + row.line + "\r\ntwo");
        MessageFacts const facts = _factsOf(mail);
        auto const& ending = _part(facts, "1.1").ending;
        ASSERT_TRUE(ending) << row.line;
        EXPECT_EQ(row.line, ending->text);
        EXPECT_EQ(std::string(row.line) + "\r\n", _cut(mail, ending->line));
        EXPECT_EQ("1", ending->path);
        EXPECT_EQ(row.delimiter, ending->delimiter);
        EXPECT_EQ(row.closing, ending->closing) << row.line;
        EXPECT_EQ(row.exact, ending->exact) << row.line;
    }
    EXPECT_FALSE(_part(_factsOf(_mixed("--b\n\none\n")), "1.1").ending);
}

TEST(MessageFacts, DelimiterOfAnOuterMultipartIsToldFromThatOfTheInner)
{
    MessageFacts const facts =
        _factsOf(_mixed("--b\nContent-Type: multipart/mixed; boundary=c\n\n--c\n\nx\n--c--\n--c\ntext\n--b--\n"));
    EXPECT_EQ("1.1", _part(facts, "1.1.1").ending->path);
    EXPECT_EQ("1", _part(facts, "1.1.2").ending->path) << "a closed multipart has no delimiter any more";
}

TEST(MessageFacts, EachBodyIsDecodedOnce)
{
    MessageFacts const facts = _factsOf("Content-Type: text/plain; charset=iso-8859-1\n"
                                        "Content-Transfer-Encoding: Quoted-Printable\n\ncaf=E9\n");
    PartFacts const& part = _part(facts, "1");
    EXPECT_EQ("quoted-printable", part.decodedBy);
    EXPECT_EQ(5u, part.decodedBytes);
    EXPECT_EQ("caf\xC3\xA9\n", part.text->text);
    EXPECT_EQ("iso-8859-1", part.text->charset);
    EXPECT_EQ(0u, part.text->undecodable);
}

TEST(MessageFacts, BytesWithoutACharacterAreCounted)
{
    MessageFacts const facts = _factsOf("Content-Type: text/plain; charset=utf-8\n\na\xFF\xFE"
                                        "b\n");
    EXPECT_EQ(2u, _part(facts, "1").text->undecodable);
    EXPECT_EQ("a\xEF\xBF\xBD\xEF\xBF\xBD"
              "b\n",
              _part(facts, "1").text->text);
}

TEST(MessageFacts, TextIsCutBetweenCharacters)
{
    Wanted wanted;
    wanted.textBytes = 2;
    MessageFacts const facts = _factsOf("Content-Type: text/plain; charset=utf-8\n\na\xC3\xA9z", {}, wanted);
    EXPECT_EQ("a", _part(facts, "1").text->text);
    EXPECT_EQ(4u, _part(facts, "1").text->textBytes);
}

TEST(MessageFacts, PageIsReadOnceForTextLinksAndTags)
{
    MessageFacts const facts =
        _factsOf("Content-Type: text/html; charset=utf-8\n\n<body>Hi <a href='http://a.example/'>b"
                 "</a><span style='font-size:0'>gone</span></body>");
    PartFacts const& part = _part(facts, "1");
    EXPECT_NE(std::string::npos, part.text->text.find("Hi b"));
    EXPECT_EQ(std::string::npos, part.text->text.find("gone"));
    ASSERT_EQ(1u, part.html->links.size());
    EXPECT_EQ("a.example", part.html->links[0].host);
    EXPECT_EQ(32u, part.signature->tagTokens.size());
}

TEST(MessageFactsLimits, BytesEndTheMessageEarly)
{
    Limits limits;
    limits.bytes = 10;
    MessageFacts const facts = _factsOf("A: b\n\n1234567890", limits);
    EXPECT_EQ("bytes", facts.capped);
    EXPECT_EQ(10u, facts.bytes);
    EXPECT_EQ("1234", _part(facts, "1").text->text);
    limits.bytes = 16;
    EXPECT_EQ("", _factsOf("A: b\n\n1234567890", limits).capped) << "as long as the limit is whole";
}

TEST(MessageFactsLimits, PartsBeyondTheLimitAreNotRead)
{
    Limits limits;
    limits.parts = 3;
    std::string const mail = _mixed("--b\n\n1\n--b\n\n2\n--b--\n");
    MessageFacts const facts = _factsOf(mail, limits);
    EXPECT_EQ("parts", facts.capped);
    EXPECT_EQ(3u, facts.parts.size());
    limits.parts = 5;
    EXPECT_EQ("", _factsOf(mail, limits).capped);
}

TEST(MessageFactsLimits, LinesOfHeadersBeyondTheLimitAreNotRead)
{
    Limits limits;
    limits.items = 3;
    MessageFacts const facts = _factsOf("A: 1\nB: 2\n 3\nC: 4\n\ntext", limits);
    EXPECT_EQ("items", facts.capped);
    EXPECT_EQ(13u, facts.bytes);
    ASSERT_EQ(1u, facts.parts.size());
    EXPECT_EQ(2u, facts.parts[0].headers.size());
    limits.items = 4;
    EXPECT_EQ("", _factsOf("A: 1\nB: 2\n 3\nC: 4\n\ntext", limits).capped);
}

TEST(MessageFactsLimits, HeadersOfAllPartsCountTogether)
{
    Limits limits;
    limits.items = 5; // two stand in front
    std::string const mail = _mixed("--b\nA: 1\n\n1\n--b\nB: 2\nC: 3\nD: 4\n\n2\n--b--\n");
    EXPECT_EQ("items", _factsOf(mail, limits).capped);
    limits.items = 6;
    EXPECT_EQ("", _factsOf(mail, limits).capped);
}

TEST(MessageFactsLimits, ALongHeaderCountsAsMany)
{
    Limits limits;
    limits.items = 100;
    MessageFacts const facts = _factsOf("A: " + std::string(1000000, 'x') + "\n\ntext", limits);
    EXPECT_EQ("items", facts.capped);
    EXPECT_LT(facts.bytes, 20000u);
    EXPECT_EQ("", _factsOf("A: " + std::string(10000, 'x') + "\n\ntext", limits).capped);
}

TEST(MessageFactsLimits, NoPartFollowsTooManyLinks)
{
    Limits limits;
    limits.items = 5;
    std::string const page =
        "--b\nContent-Type: text/html\n\n<a href=http://a.example/>1</a><a href=http://b.example/>2</a>"
        "<a href=http://c.example/>3</a><a href=http://d.example/>4</a><a href=http://e.example/>5</a>\n";
    MessageFacts const facts = _factsOf(_mixed(page + "--b\n\n1\n--b--\n"), limits);
    EXPECT_EQ("items", facts.capped);
    EXPECT_EQ(5u, _part(facts, "1.1").html->links.size());
    EXPECT_EQ(3u, facts.parts.size()) << "the multipart, its preamble and the page";
}

namespace {

/// Gives a line again and again, slowly.
class SlowLines : public Velmara::MediaInImpl {
public:
    bool atEnd() const override { return false; }
    int peek() const override { return 'x'; }
    using MediaInImpl::read;
    int read(Velmara::uchar_t* bytes, Velmara::uint_t n) override
    {
        std::fill(bytes, bytes + n, static_cast<unsigned char>('x'));
        bytes[n - 1] = '\n';
        return static_cast<int>(n);
    }
};

} // namespace

TEST(MessageFactsLimits, TimeEndsAnEndlessMessage)
{
    Limits limits;
    limits.time = std::chrono::milliseconds(50);
    MessageFacts const facts = factsOf(Velmara::MediaIn(new SlowLines, false), limits);
    EXPECT_EQ("time", facts.capped);
    ASSERT_EQ(1u, facts.parts.size());
    EXPECT_FALSE(facts.parts[0].bodyLengthKnown);
}

TEST(MessageFactsJson, HoldsTheDocumentedFields)
{
    Json const json = jsonOf(_factsOf(_mixed("--b\nContent-Type: text/html\n\n<b>x</b>\n--b--\n")));
    EXPECT_EQ("Caf\xC3\xA9", json["subject"]);
    Json const& part = json["parts"][2];
    EXPECT_EQ("1.1", part["path"]);
    EXPECT_EQ("leaf", part["kind"]);
    EXPECT_EQ("text/html", part["mediaType"]);
    EXPECT_EQ("x", part["html"]["runs"][0]["text"]);
    EXPECT_EQ(part["header"][1], part["body"][0]);
}

// ---- findings -----------------------------------------------------------------------------------

namespace {

/// A message in which a code is found at some bytes of a part, and one that differs little and has none.
struct FindingRow {
    char const *rule, *code, *path;
    std::string found;
    std::string where; // the bytes that it names; "" for none
    std::string notFound;
};

void PrintTo(FindingRow const& row, std::ostream* out)
{
    *out << row.rule;
}

std::string _plain(std::string const& headers, std::string const& body = "text\n")
{
    return headers + "\n" + body;
}

std::string _parts(std::string const& first, std::string const& behind = "--b--\n")
{
    return _mixed("--b\n" + first + behind);
}

std::string _html(std::string const& page)
{
    return "Content-Type: text/html; charset=utf-8\n\n<body>" + page + "</body>\n";
}

std::string _nested(size_t depth)
{
    std::string mail;
    for (size_t i = 0; i < depth; ++i) mail += "Content-Type: message/rfc822\n\n";
    return mail + "\nx\n";
}

std::string const _nul(1, '\0');

std::vector<FindingRow> _findingRows()
{
    return {
        {"LineOfAMailboxEndsTheHeaders", "mailbox-line", "1", "From a@b Mon Jan 1\nSubject: x\n\ny",
         "From a@b Mon Jan 1\n", "From: a@b\nSubject: x\n\ny"},
        {"LineWithoutColonEndsTheHeaders", "header-without-colon", "1", "A: b\nno header\nC: d\n\ny", "no header\n",
         "A: b\n continued\nC: d\n\ny"},
        {"DelimiterEndsTheHeaders", "delimiter-in-header", "1.1", _parts("X: y\n", "--b\n\nz\n--b--\n"), "--b\n",
         _parts("X: y\n\n")},
        {"SecondContentType", "duplicate-content-type", "1",
         _plain("Content-Type: text/plain\nX: y\nContent-Type: text/html\n"), "Content-Type: text/html\n",
         _plain("Content-Type: text/plain\nX: Content-Type: text/html\n")},
        {"SecondSubject", "duplicate-header", "1", _plain("Subject: a\nSUBJECT: b\n c\nX: d\n"), "SUBJECT: b\n c\n",
         _plain("Subject: a\nReceived: b\nReceived: c\n")},
        {"SecondBoundary", "duplicate-parameter", "1",
         "Content-Type: multipart/mixed; boundary=b; boundary=c\n\n--b\n\nx\n--b--\n",
         "Content-Type: multipart/mixed; boundary=b; boundary=c\n\n", _parts("\nx\n")},
        {"TwoNames", "name-conflict", "1",
         _plain("Content-Type: text/plain; name=a.txt\nContent-Disposition: attachment; filename=b.exe\n"),
         "Content-Type: text/plain; name=a.txt\nContent-Disposition: attachment; filename=b.exe\n\n",
         _plain("Content-Type: text/plain; name=a.txt\nContent-Disposition: attachment; filename=a.txt\n")},
        {"NameThatTurnsTheDirection", "turned-name", "1",
         _plain("Content-Disposition: attachment; filename=\"a\xE2\x80\xAE"
                "fdp.exe\"\n"),
         "Content-Disposition: attachment; filename=\"a\xE2\x80\xAE"
         "fdp.exe\"\n\n",
         _plain("Content-Disposition: attachment; filename=\"a\xE2\x80\x9A"
                "fdp.exe\"\n")},
        {"ContainerBeyondTheDepthLimit", "depth-limit", "1" /* 100 times ".1" behind it */, _nested(101), "\nx\n",
         _nested(100)},
        {"MultipartWithoutBoundary", "no-boundary", "1", _plain("Content-Type: multipart/mixed\n"),
         "Content-Type: multipart/mixed\n\n", _parts("\nx\n")},
        {"BoundaryThatNeverComes", "no-parts", "1", _mixed("x\n"), "x\n", _parts("\nx\n")},
        {"ClosingDelimiterThatNeverComes", "unclosed-multipart", "1", _parts("\nx\n", ""), "", _parts("\nx\n")},
        {"InnerBoundaryBeginsTheOuter", "overlapping-boundaries", "1.1",
         _parts("Content-Type: multipart/mixed; boundary=bc\n\n--bc\n\nx\n--bc--\n"),
         "Content-Type: multipart/mixed; boundary=bc\n\n",
         _parts("Content-Type: multipart/mixed; boundary=c\n\n--c\n\nx\n--c--\n")},
        {"EncodingOfAContainer", "encoded-container", "1",
         "Content-Type: message/rfc822\nContent-Transfer-Encoding: base64\n\nA: b\n\nx",
         "Content-Type: message/rfc822\nContent-Transfer-Encoding: base64\n\n",
         "Content-Type: message/rfc822\nContent-Transfer-Encoding: 8bit\n\nA: b\n\nx"},
        {"EncodingThatIsNone", "unknown-encoding", "1", _plain("Content-Transfer-Encoding: 7-bit\n"),
         "Content-Transfer-Encoding: 7-bit\n\n", _plain("Content-Transfer-Encoding: 7bit\n")},
        {"TextAheadOfTheFirstDelimiter", "preamble-text", "1.0", _mixed("\nbuy\nnow\n--b\n\nx\n--b--\n"), "buy\nnow\n",
         _mixed("\nThis is a multi-part message in MIME format...\r\n--b\n\nx\n--b--\n")},
        {"HeadersAheadOfTheFirstDelimiter", "preamble-headers", "1.0",
         _mixed("--x\ncontent-type: text/html\n--b\n\nx\n--b--\n"), "content-type: text/html\n",
         _mixed("the content-type: text/html\n--b\n\nx\n--b--\n")},
        {"TextBehindTheClosingDelimiter", "epilogue-text", "1.2", _parts("\nx\n", "--b--\n\nbuy\n"), "buy\n",
         _parts("\nx\n", "--b--\n \r\n\n")},
        {"HeadersBehindTheClosingDelimiter", "epilogue-headers", "1.2",
         _parts("\nx\n", "--b--\n--b\nContent-Transfer-Encoding: base64\n\nx"), "Content-Transfer-Encoding: base64\n",
         _parts("\nx\n", "--b--\nContents: none\n")},
        {"ByteThatIsNotOfBase64", "foreign-base64", "1", _plain("Content-Transfer-Encoding: base64\n", "QUJD\nQU-D\n"),
         "-", _plain("Content-Transfer-Encoding: base64\n", "QUJD\nQUI=\n")},
        {"NulInABody", "nul-byte", "1", _plain("A: b\n", "x" + _nul + "y" + _nul), _nul,
         _plain("Content-Transfer-Encoding: binary\n", "x" + _nul)},
        {"NulInAHeader", "nul-byte", "1", _plain("A: b" + _nul + "c\nD: e\n"), "A: b" + _nul + "c\n",
         _plain("A: b0c\n")},
        {"CharsetThatNobodyKnows", "unknown-charset", "1", _plain("Content-Type: text/plain; charset=klingon\n"),
         "Content-Type: text/plain; charset=klingon\n\n", _plain("Content-Type: text/plain; charset=latin1\n")},
        {"BytesThatTheCharsetLacks", "undecodable-text", "1",
         _plain("Content-Type: text/plain; charset=utf-8\n", "a\xFF"), "a\xFF",
         _plain("Content-Type: text/plain; charset=utf-8\n", "a\xC3\xA9")},
        {"ContentThatIsNotWhatIsDeclared", "type-mismatch", "1",
         _plain("Content-Type: image/png\n", "%PDF-1.4 and more\n"), "%PDF-1.4 and more\n",
         _plain("Content-Type: application/pdf\n", "%PDF-1.4 and more\n")},
        {"TextInTheColourOfItsBackground", "hidden-text", "1", _html("<font color=white>x</font>"),
         "<body><font color=white>x</font></body>\n", _html("<font color=black>x</font>")},
        {"LineThatBeginsWithADelimiter", "delimiter-by-prefix", "1.1", _parts("\nx\n", "--bcd\n\ny\n--b--\n"),
         "--bcd\n", _parts("\nx\n", "--b \t\n\ny\n--b--\n")},
        {"TextBehindADelimiter", "text-behind-delimiter", "1.1", _parts("\nx\n", "--b buy now\n\ny\n--b--\n"),
         "--b buy now\n", _parts("\nx\n", "--b\t\n\ny\n--b--\n")},
        {"LinkThatShowsAnotherHost", "host-mismatch", "1",
         _html("<a href='http://thief.example/'>www.bank.example</a>"),
         "<body><a href='http://thief.example/'>www.bank.example</a></body>\n",
         _html("<a href='http://bank.example/'>www.bank.example</a>")},
        {"NameThatIsAnotherAddress", "display-name-address", "1",
         _plain("From: \"boss@bank.example\" <x@thief.example>\n"), "From: \"boss@bank.example\" <x@thief.example>\n\n",
         _plain("From: \"boss@bank.example\" <x@BANK.example>\n")},
        {"SubjectThatTurnsTheDirection", "turned-header", "1", _plain("Subject: =?utf-8?Q?a=E2=80=AEb?=\n"),
         "Subject: =?utf-8?Q?a=E2=80=AEb?=\n\n", _plain("Subject: =?utf-8?Q?a=E2=80=9Ab?=\n")},
    };
}

/// Their paths and bytes, for one code.
std::vector<std::pair<std::string, std::string>> _found(std::string const& mail, std::string const& code)
{
    std::vector<std::pair<std::string, std::string>> found;
    for (Finding const& finding : _factsOf(mail).findings)
        if (finding.code == code) found.emplace_back(finding.path, _cut(mail, finding.where));
    return found;
}

class MessageFindings : public testing::TestWithParam<FindingRow> {};

} // namespace

TEST_P(MessageFindings, AreAtTheirPlaceAndNowhereElse)
{
    FindingRow const& row = GetParam();
    auto const found = _found(row.found, row.code);
    ASSERT_EQ(1u, found.size());
    EXPECT_EQ(row.where, found[0].second);
    std::string path = found[0].first;
    if (std::string(row.code) == "depth-limit") path = path.substr(0, 1);
    EXPECT_EQ(row.path, path);
    EXPECT_TRUE(_found(row.notFound, row.code).empty());
}

INSTANTIATE_TEST_SUITE_P(Codes, MessageFindings, testing::ValuesIn(_findingRows()),
                         [](auto const& row) { return std::string(row.param.rule); });

TEST(Findings, EachCodeHasARowHereAndInTheManual)
{
    std::ifstream manual("docs/command.md");
    std::string const text{std::istreambuf_iterator<char>(manual), {}};
    std::vector<FindingRow> const rows = _findingRows();
    for (std::string const& code : findingCodes()) {
        EXPECT_NE(std::string::npos, text.find("| `" + code + "` |")) << code;
        EXPECT_TRUE(std::any_of(rows.begin(), rows.end(), [&](FindingRow const& row) { return row.code == code; }))
            << code;
    }
}

TEST(Findings, OrdinaryMailHasNone)
{
    EXPECT_TRUE(_factsOf(_parts("Content-Type: text/plain; charset=utf-8\n\nGood morning\n")).findings.empty());
    EXPECT_TRUE(_factsOf("Subject: x\n\nGood morning\n").findings.empty());
    EXPECT_TRUE(_factsOf("").findings.empty());
}

TEST(Findings, AreInTheOrderOfTheParts)
{
    std::string paths;
    for (Finding const& finding : _factsOf(_mixed("buy\n--b\nno header\n\nx\n--bc\n\ny\n")).findings)
        paths += finding.path + ":" + finding.code + " ";
    EXPECT_EQ("1:unclosed-multipart 1.0:preamble-text 1.1:header-without-colon 1.1:delimiter-by-prefix ", paths);
}

TEST(Findings, AreNotMadeWhereNobodyWantsThem)
{
    Wanted wanted;
    wanted.findings = false;
    EXPECT_TRUE(_factsOf(_mixed("x\n"), {}, wanted).findings.empty());
}
