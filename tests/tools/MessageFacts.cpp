#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <velmara/MediaIn.h>

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
