#include <velmara/MimePart.h>

#include <gtest/gtest.h>

#include <velmara/ContentEncoding.h>
#include <velmara/MimePartVisitor.h>
#include <velmara/Rfc822MsgParser.h>

#include "support/HeaderText.h"
#include "support/Rule.h"
#include "support/Shape.h"
#include "support/TemporaryFolder.h"

namespace Velmara {
namespace {

std::string multipart(std::string const& boundary, std::string const& text)
{
    return "Content-Type: multipart/mixed; boundary=" + boundary + "\n\n" + text;
}

std::string const twoParts = multipart("b", "before\n--b\nA: 1\n\none\n--b\n\ntwo\n--b--\nbehind\n");

/// What `write` makes of a part. Nobody ends the file or gives it back before it is read.
std::string written(MimePart& part)
{
    TemporaryFolder const folder;
    FileMediaOut out(folder.at("part"));
    part.write(out);
    return folder.read("part");
}

// Kinds.

struct KindRow {
    char const* rule;
    std::string headers;
    bool (*isKind)(MimePart&);
};

template <class Kind> bool is(MimePart& part)
{
    return dynamic_cast<Kind*>(&part) != nullptr;
}

class Kinds : public testing::TestWithParam<KindRow> {};

TEST_P(Kinds, FollowTheType)
{
    EXPECT_TRUE(GetParam().isKind(Mail(GetParam().headers + "\n\n").root()));
}

INSTANTIATE_TEST_SUITE_P(
    Rows, Kinds,
    testing::Values(KindRow{"NoType", "A: 1", is<MimeRfc822Msg>},
                    KindRow{"Multipart", "Content-Type: multipart/x; boundary=b", is<MimeRfc822MPart>},
                    KindRow{"MultipartWithoutBoundary", "Content-Type: multipart/mixed", is<MimeRfc822Msg>},
                    KindRow{"Message", "Content-Type: message/rfc822", is<MimeRfc822SPart>},
                    KindRow{"MessageOfAnySubtype", "Content-Type: message/partial", is<MimeRfc822SPart>},
                    KindRow{"Text", "Content-Type: text/plain", is<MimeRfc822Msg>},
                    KindRow{"Unknown", "Content-Type: x", is<MimeRfc822Msg>}),
    ruleName);

// Fields.

TEST(MimePart, StartsWithoutLengthsAndWithNothing)
{
    MimePreamble part{MediaIn()};
    EXPECT_TRUE(part.source().isNull());
    EXPECT_TRUE(part.headers().headers().empty());
    EXPECT_TRUE(part.attributeMap().empty());
    EXPECT_EQ(0u, part.sourcePosition());
    EXPECT_EQ(0u, part.hlen());
    EXPECT_EQ(0xFFFFFFFFul, part.blen());
}

TEST(MimePart, PositionsAndLengthsCanBeSet)
{
    MimePreamble part{MediaIn()};
    part.sourcePosition(1ul << 40);
    part.hlen(2);
    part.blen(3);
    EXPECT_EQ(1ul << 40, part.sourcePosition());
    EXPECT_EQ(2u, part.hlen());
    EXPECT_EQ(3u, part.blen());
}

TEST(MimePart, TheSourceCanBeReplaced)
{
    MimePreamble part{MediaIn()};
    BufferMediaIn text(std::string("text\n"));
    part.source(text);
    EXPECT_EQ("text\n", textOf(part.body(true)));
}

TEST(MimePart, OneThatMayOnlyBeLookedAtShowsItsSource)
{
    MediaIn media = BufferMediaIn(std::string("text"));
    MimePreamble const part(media);
    MediaIn copy = part.source();
    std::string text;
    copy.read(text);
    EXPECT_EQ("text", text);
}

TEST(MimePart, HeadersAreSharedWithTheGivenContainer)
{
    HeaderContainer headers;
    MediaIn none;
    MimeRfc822SPart part(headers, nullptr, none);
    headers.add(Header("A", "1"));
    EXPECT_EQ("A[1]", shown(part.headers().headers()));
}

// Attributes.

class Attribute : public MPartAttribute {
public:
    explicit Attribute(int type) : m_type(static_cast<Type>(type)) {}
    Type type() const override { return m_type; }

private:
    Type const m_type;
};

Ref<MPartAttribute> attribute(int type)
{
    return Ref<MPartAttribute>(new Attribute(type), false);
}

TEST(Attributes, OneThatWasNeverSetIsNull)
{
    MimePreamble part{MediaIn()};
    EXPECT_EQ(nullptr, part.findAttr(MPartAttribute::TypeText));
    part.setAttr(attribute(MPartAttribute::TypeImage));
    EXPECT_EQ(nullptr, part.findAttr(MPartAttribute::TypeText));
}

TEST(Attributes, TheLastOfATypeIsKept)
{
    MimePreamble part{MediaIn()};
    Ref<MPartAttribute> const first = attribute(7), second = attribute(7);
    part.setAttr(first);
    part.setAttr(second);
    EXPECT_EQ(*second, part.findAttr(MPartAttribute::TypeUri));
    EXPECT_EQ(1u, part.attributeMap().size());
}

TEST(Attributes, TypesOfOthersAreTaken)
{
    MimePreamble part{MediaIn()};
    part.setAttr(attribute(1000));
    EXPECT_TRUE(part.findAttr(static_cast<MPartAttribute::Type>(1000)));
}

TEST(Attributes, AMapIsMergedIn)
{
    MimePreamble part{MediaIn()};
    Ref<MPartAttribute> const old = attribute(1), kept = attribute(3), replaced = attribute(1);
    part.setAttr(old);
    part.setAttr(kept);
    part.attributeMap({{MPartAttribute::TypeText, replaced}, {MPartAttribute::TypeTD, attribute(17)}});
    EXPECT_EQ(3u, part.attributeMap().size());
    EXPECT_EQ(*replaced, part.findAttr(MPartAttribute::TypeText));
    EXPECT_EQ(*kept, part.findAttr(MPartAttribute::TypeImage));
    EXPECT_TRUE(part.findAttr(MPartAttribute::TypeTD));
}

TEST(Attributes, AMapThatWasAskedForEarlyShowsWhatComesLater)
{
    MimePreamble part{MediaIn()};
    MimePart::AttributeMap const& map = part.attributeMap();
    EXPECT_TRUE(map.empty());
    part.setAttr(attribute(3));
    EXPECT_EQ(1u, map.size());
    EXPECT_EQ(&map, &part.attributeMap());
}

TEST(Attributes, ANullOneIsRefused)
{
    MimePreamble part{MediaIn()};
    EXPECT_THROW(part.setAttr(Ref<MPartAttribute>()), Exception);
    EXPECT_TRUE(part.attributeMap().empty());
}

TEST(Attributes, TheTypeNumbersAreStoredByOthers)
{
    EXPECT_EQ(1, MPartAttribute::TypeText);
    EXPECT_EQ(3, MPartAttribute::TypeImage);
    EXPECT_EQ(7, MPartAttribute::TypeUri);
    EXPECT_EQ(17, MPartAttribute::TypeTD);
}

TEST(MimePart, MayBeOfACallersOwnKind)
{
    struct Own : MimePart {
        bool visit(MimePartVisitor*) override { return false; }
        void write(FileMediaOut&) override {}
    } part;
    EXPECT_TRUE(part.source().isNull());
    EXPECT_TRUE(part.headers().headers().empty());
    EXPECT_EQ(&part.headers(), &static_cast<Own const&>(part).headers());
    EXPECT_EQ(0u, part.sourcePosition());
    EXPECT_EQ(0xFFFFFFFFu, part.blen());
}

// Bodies.

TEST(Bodies, OfAContainerIsItsHeaderBlock)
{
    Mail multi(twoParts);
    multi.root().source().setpos(0);
    EXPECT_EQ("Content-Type: multipart/mixed; boundary=b\n\n", textOf(multi.root().body(true)));
    Mail nested("Content-Type: message/rfc822\n\nA: 1\n\ntext\n");
    nested.root().source().setpos(0);
    EXPECT_EQ("Content-Type: message/rfc822\n\n", textOf(nested.root().body(false)));
}

TEST(Bodies, OfPreambleAndEpilogueIsTheirText)
{
    Mail mail(twoParts);
    auto& parts = mail.multipart();
    EXPECT_EQ("before\n", textOf(parts.firstChild()->body(true)));
    parts.parts();
    EXPECT_EQ("behind\n", textOf(mail.child(3).body(true)));
}

TEST(Bodies, OfASkippedPartIsNeverDecoded)
{
    BufferMediaIn in(std::string("Content-Type: multipart/mixed; boundary=b\nContent-Transfer-Encoding: base64\n\n"
                                 "dGV4dA==\n"));
    Rfc822MsgParser parser(in, 0);
    Ref<MimePart> part(parser.createRfc822Msg(), false);
    EXPECT_TRUE(is<MimeSkippedPart>(**part));
    EXPECT_EQ("dGV4dA==\n", textOf(part->body(true)));
    EXPECT_EQ("dGV4dA==\n", textOf(part->body(true)));
}

struct DecodedRow {
    char const* rule;
    std::string headers, text, body;
};

class DecodedBodies : public testing::TestWithParam<DecodedRow> {};

TEST_P(DecodedBodies, FollowTheHeaders)
{
    Mail mail(GetParam().headers + "\n\n" + GetParam().text);
    EXPECT_EQ(GetParam().body, textOf(mail.root().body(true))) << "while it is live";
    EXPECT_EQ(GetParam().body, textOf(mail.root().body(true))) << "read again, with a new decoder";
    EXPECT_EQ(GetParam().text, textOf(mail.root().body(false)));
}

INSTANTIATE_TEST_SUITE_P(
    Rows, DecodedBodies,
    testing::Values(
        DecodedRow{"NoHeaders", "A: 1", "dGV4dA==\n", "dGV4dA==\n"},
        DecodedRow{"Base64", "content-transfer-encoding: BASE64", "dGV4dA==\ndGV4dAo=\n", "texttext\n"},
        DecodedRow{"QuotedPrintable", "Content-Transfer-Encoding: quoted-printable", "a=3D=\nb\n", "a=b\n"},
        DecodedRow{"UUEncode", "Content-Transfer-Encoding: x-uuencode", "begin 644 a\n#0V%T\n`\nend\n", "Cat"},
        DecodedRow{"BinHexByItsType", "Content-Type: application/mac-binhex40",
                   ":!@%!9%9B9(4dH(3!N!8$!*!%DLe$BA4#p3!!:\n", "Cat"},
        DecodedRow{"TheEncodingWins", "Content-Type: application/mac-binhex40\nContent-Transfer-Encoding: base64",
                   "dGV4dA==\n", "text"},
        DecodedRow{"SevenBit", "Content-Transfer-Encoding: 7bit", "a=3D\n", "a=3D\n"},
        DecodedRow{"AnUnknownEncoding", "Content-Transfer-Encoding: x", "a=3D\n", "a=3D\n"},
        DecodedRow{"BrokenBase64ComesRaw", "Content-Transfer-Encoding: base64", "dGV4dA==\n<html>\n", "text<html>\n"}),
    ruleName);

TEST(Bodies, OfAPartWithinAMultipartAreDecoded)
{
    Mail mail(multipart("b", "--b\nContent-Transfer-Encoding: base64\n\ndGV4\ndAo=\n--b\n\nplain\n--b--\n"));
    auto& parts = mail.multipart();
    parts.firstChild();
    EXPECT_EQ("text\n", textOf(parts.nextChild()->body(true)));
    EXPECT_EQ("plain\n", textOf(parts.nextChild()->body(true)));
}

TEST(Bodies, WithoutACodecAreThePlainStream)
{
    Mail mail("A: 1\n\ntext\n");
    EXPECT_EQ(mail.root().body(false).get(), mail.root().body(true).get());
}

TEST(Bodies, ALeafWithoutAStreamHasANullBody)
{
    MediaIn none;
    HeaderContainer headers;
    headers.add(ContentEncoding("base64"), false);
    MimeRfc822Msg part(headers, nullptr, none, none);
    EXPECT_TRUE(part.body(false).isNull());
    EXPECT_TRUE(part.body(true).isNull());
}

// Children.

TEST(Children, AreReachedOneByOne)
{
    Mail mail(twoParts);
    auto& root = mail.multipart();
    std::string walked;
    for (Ref<MimePart> child = root.nextChild(); !child.isNull(); child = root.nextChild())
        walked += contents(**child) + ' ';
    EXPECT_EQ("preamble[before\n] leaf[one\n] leaf[two\n] epilogue[behind\n] ", walked);
    EXPECT_TRUE(root.nextChild().isNull());
}

TEST(Children, PartsGivesThemAllAndParsesOnce)
{
    Mail mail(twoParts);
    auto& parts = mail.multipart().parts();
    ASSERT_EQ(4u, parts.size());
    MimePart* const last = *parts[3];
    EXPECT_EQ(4u, mail.multipart().parts().size());
    EXPECT_EQ(last, *mail.multipart().parts()[3]);
}

TEST(Children, WithoutClosingDelimiterThereAreThree)
{
    EXPECT_EQ(3u, Mail(multipart("b", "--b\n\none\n--b\n\ntwo\n")).multipart().parts().size());
}

TEST(Children, FirstChildStartsOver)
{
    Mail mail(twoParts);
    auto& root = mail.multipart();
    MimePart* const first = *root.firstChild();
    root.nextChild();
    EXPECT_EQ(first, *root.firstChild());
    root.parts();
    EXPECT_EQ(first, *root.firstChild());
    EXPECT_EQ(root.parts()[1].get(), *root.nextChild());
}

TEST(Children, AVisitLeavesTheWalkAlone)
{
    Mail mail(twoParts);
    auto& root = mail.multipart();
    root.firstChild();
    MimePartVisitor visitor;
    root.visit(&visitor);
    EXPECT_EQ(root.parts()[1].get(), *root.nextChild());
}

TEST(Children, AMultipartWithoutParserHasNone)
{
    MediaIn none;
    MimeRfc822MPart part(HeaderContainer(), nullptr, none);
    EXPECT_FALSE(part.hasMoreChild());
    EXPECT_TRUE(part.firstChild().isNull());
}

TEST(Children, ANestedMessageIsMadeOnce)
{
    Mail mail("Content-Type: message/rfc822\n\nA: 1\n\ntext\n");
    MimePart* const child = *mail.nested().child();
    EXPECT_EQ("A[1]", shown(child->headers().headers()));
    EXPECT_EQ(child, *mail.nested().child());
}

TEST(Children, AHandleKeepsAPartWhenTheMessageGoes)
{
    Ref<MimePart> kept;
    {
        Mail mail(twoParts);
        mail.multipart().firstChild();
        kept = mail.multipart().nextChild();
    }
    EXPECT_EQ("A[1]", shown(kept->headers().headers()));
}

// Visits.

class Recorder : public MimePartVisitor {
public:
    void source(MediaIn&) override { calls += "source "; }
    void init(MimePart*) override { calls += "init "; }
    void visitSkippedPart(MimeSkippedPart&) override { calls += "skipped "; }
    void visitRfc822Msg(MimeRfc822Msg&) override { calls += "leaf "; }
    void visitPreamble(MimePreamble&) override { calls += "preamble "; }
    void visitEpilogue(MimeEpilogue&) override { calls += "epilogue "; }
    bool visitMPart(MimeRfc822MPart&) override
    {
        calls += "multipart ";
        return enterMultipart;
    }
    bool visitSPart(MimeRfc822SPart&) override
    {
        calls += "message ";
        return enterMessage;
    }
    void done() override { calls += "done "; }

    std::string calls;
    bool enterMultipart = true, enterMessage = true;
};

std::string const mixed = multipart("o", "--o\n" + multipart("i", "--i\n\none\n--i--\n") +
                                             "--o\nContent-Type: message/rfc822\n\n\ntwo\n--o--\n");

TEST(Visits, GoDepthFirstInTheOrderOfTheMessage)
{
    Mail mail(mixed);
    Recorder recorder;
    EXPECT_TRUE(mail.root().visit(&recorder));
    EXPECT_EQ("multipart preamble multipart preamble leaf epilogue message leaf epilogue ", recorder.calls);
}

TEST(Visits, MayLeaveAMultipartOut)
{
    Mail mail(mixed);
    Recorder recorder;
    recorder.enterMultipart = false;
    EXPECT_FALSE(mail.root().visit(&recorder));
    EXPECT_EQ("multipart ", recorder.calls);
    EXPECT_EQ(43u, mail.in.tell()); // nothing was parsed
}

TEST(Visits, MayLeaveAMessageOut)
{
    Mail mail(mixed);
    Recorder recorder;
    recorder.enterMessage = false;
    EXPECT_TRUE(mail.root().visit(&recorder));
    EXPECT_EQ("multipart preamble multipart preamble leaf epilogue message epilogue ", recorder.calls);
}

TEST(Visits, OfASkippedPartTellSo)
{
    BufferMediaIn in(mixed);
    Rfc822MsgParser parser(in, 0);
    Ref<MimePart> root(parser.createRfc822Msg(), false);
    Recorder recorder;
    EXPECT_TRUE(root->visit(&recorder));
    EXPECT_EQ("skipped ", recorder.calls);
}

TEST(Visits, ByAPlainVisitorEnterEverything)
{
    Mail mail(mixed);
    MimePartVisitor visitor;
    visitor.init(&mail.root());
    visitor.source(mail.in);
    EXPECT_TRUE(mail.root().visit(&visitor));
    visitor.done();
    EXPECT_EQ(4u, mail.multipart().parts().size());
    EXPECT_TRUE(mail.in.tell() > mixed.size() - 7);
}

// Writing.

struct WriteRow {
    char const* rule;
    std::string mail, expected;
};

class Writing : public testing::TestWithParam<WriteRow> {};
class WritingUnread : public Writing {};

TEST_P(Writing, AfterTheParse)
{
    Mail mail(GetParam().mail);
    contents(mail.root());
    EXPECT_EQ(GetParam().expected, written(mail.root()));
    EXPECT_EQ(GetParam().expected, written(mail.root()));
}

TEST_P(WritingUnread, DrivesTheParser)
{
    EXPECT_EQ(GetParam().expected, written(Mail(GetParam().mail).root()));
}

std::string const wellFormed = multipart("b", "--b\nA: 1\n\none\n--b\n\ntwo\n--b--\n");

std::vector<WriteRow> const writeRows = {
    {"ALeafComesAgain", "A: 1\r\n  2\r\n\r\ntext\r\n", "A: 1\r\n  2\r\n\r\ntext\r\n"},
    {"AWellFormedMultipartComesAgain", wellFormed, wellFormed},
    {"PreambleAndEpilogueComeAgain", twoParts, twoParts},
    {"TextBehindDelimitersIsDropped", multipart("b", "--b x\n\none\n--b-- y\n"), multipart("b", "--b\n\none\n--b--\n")},
    {"DelimitersEndWithOneLf", "Content-Type: multipart/mixed; boundary=b\r\n\r\n--b\r\n\r\none\r\n--b--\r\nend\r\n",
     "Content-Type: multipart/mixed; boundary=b\r\n\r\n--b\n\r\none\r\n--b--\nend\r\n"},
    {"AMissingClosingDelimiterIsAdded", multipart("b", "--b\n\none\n"), multipart("b", "--b\n\none\n\n--b--\n")},
    {"AMultipartWithoutDelimitersGetsOne", multipart("b", "text\n"), multipart("b", "text\n\n--b--\n")},
    {"AMessageComesAgain", "Content-Type: message/rfc822\n\nA: 1\n\ntext\n",
     "Content-Type: message/rfc822\n\nA: 1\n\ntext\n"},
    {"NestedPartsComeAgain", mixed, mixed},
};

INSTANTIATE_TEST_SUITE_P(Rows, Writing, testing::ValuesIn(writeRows), ruleName);
INSTANTIATE_TEST_SUITE_P(Rows, WritingUnread, testing::ValuesIn(writeRows), ruleName);

// Where the parser does not stand behind the header block, writing that block leads it astray.
INSTANTIATE_TEST_SUITE_P(
    ParsedOnly, Writing,
    testing::Values(WriteRow{"ALeafWithoutEmptyLineGetsNone", "A: 1\ntext\n", "A: 1\ntext\n"},
                    WriteRow{
                        "AFirstPartWithoutPreambleGetsItsDelimiter",
                        multipart("o", "--o\nContent-Type: multipart/mixed; boundary=i\n--o\nA: 1\n\none\n--o--\n"),
                        multipart("o", "--o\nContent-Type: multipart/mixed; boundary=i\n--i\nA: 1\n\none\n\n"
                                       "--i--\n--o--\n")}),
    ruleName);

TEST(WritingOut, ToANullHandleDoesNotTouchTheParser)
{
    for (std::string const& text :
         {wellFormed, std::string("Content-Type: message/rfc822\n\nA: 1\n\n"), std::string()}) {
        Mail mail(text);
        unsigned long const position = mail.in.tell();
        FileMediaOut none;
        mail.root().write(none);
        EXPECT_EQ(position, mail.in.tell());
    }
    FileMediaOut none;
    MimePreamble{BufferMediaIn(std::string("text"))}.write(none);
    MimeEpilogue{BufferMediaIn(std::string("text"))}.write(none);
    MediaIn media;
    MimeSkippedPart(HeaderContainer(), nullptr, media, media).write(none);
}

TEST(WritingOut, ABodyOfManyBlocksComesWhole)
{
    std::string text = "A: 1\n\n";
    for (int i = 0; i < 30000; ++i) text += "line " + std::to_string(i) + "\n";
    Mail mail(text);
    EXPECT_EQ(text, written(mail.root()));
}

/// Three lines and then a failure.
class FailingText : public MediaInImpl {
public:
    bool atEnd() const override { return false; }
    int peek() const override { return 'x'; }
    using MediaInImpl::read;
    int read(uchar_t*, uint_t) override { return 0; }
    void readline(Buffer& line) override
    {
        if (m_lines++ == 3) throw Exception("medium", 6, nullptr, 0);
        line.length(0);
        line.append(reinterpret_cast<uchar_t const*>("text\n"), 5u);
    }

private:
    int m_lines = 0;
};

TEST(WritingOut, WhatCameBeforeAFailureOfTheSourceIsInTheFile)
{
    TemporaryFolder const folder;
    FileMediaOut out(folder.at("part"));
    MimePreamble preamble{MediaIn(new FailingText, false)};
    EXPECT_THROW(preamble.write(out), Exception);
    EXPECT_EQ("text\ntext\ntext\n", folder.read("part"));
}

TEST(WritingOut, AFullDiskIsTold)
{
    Mail mail(wellFormed);
    FileMediaOut out("/dev/full");
    EXPECT_THROW(mail.root().write(out), Exception);
}

TEST(WritingOut, PartsWithoutASourceWriteNothing)
{
    MediaIn none;
    MimePreamble preamble{none};
    MimeEpilogue epilogue{none};
    MimeRfc822Msg leaf(HeaderContainer(), nullptr, none, none);
    MimeSkippedPart skipped(HeaderContainer(), nullptr, none, none);
    MimeRfc822SPart message(HeaderContainer(), nullptr, none);
    for (MimePart* part :
         {static_cast<MimePart*>(&preamble), static_cast<MimePart*>(&epilogue), static_cast<MimePart*>(&leaf),
          static_cast<MimePart*>(&skipped), static_cast<MimePart*>(&message)})
        EXPECT_EQ("", written(*part));
}

TEST(WritingOut, OfAMultipartWithoutATypeHasADelimiterWithoutABoundary)
{
    MediaIn none;
    MimeRfc822MPart parts(HeaderContainer(), nullptr, none);
    EXPECT_EQ("\n----\n", written(parts));
}

TEST(WritingOut, OnlyTheFirstEpilogueCloses)
{
    MediaIn none;
    MimeRfc822MPart parts(HeaderContainer(), nullptr, none);
    for (std::string const text : {"x", "y"}) parts.parts().emplace_back(new MimeEpilogue{BufferMediaIn(text)}, false);
    EXPECT_EQ("----\nx--\ny", written(parts));
}

TEST(WritingOut, OfHeadersReadElsewhereHasTheBodyOnly)
{
    HeaderContainer headers;
    headers.add(Header("Content-Type", "multipart/mixed; boundary=b"));
    BufferMediaIn in(std::string("--b\n\none\n--b--\n"));
    Ref<Rfc822Msg> message = Rfc822Msg::parse(headers, in);
    EXPECT_EQ("--b\n\none\n--b--\n", written(*message->root()));
}

} // namespace
} // namespace Velmara
