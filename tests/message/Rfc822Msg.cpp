#include <velmara/Rfc822Msg.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>

#include <unistd.h>

#include <velmara/Rfc822MsgParser.h>

#include "support/HeaderText.h"
#include "support/Shape.h"

namespace Velmara {
namespace {

/// A file that goes with its owner.
class TemporaryFile {
public:
    explicit TemporaryFile(std::string const& text)
        : m_path(testing::TempDir() + "velmara_message_" + std::to_string(::getpid()))
    {
        std::ofstream(m_path, std::ios::binary) << text;
    }
    ~TemporaryFile() { std::remove(m_path.c_str()); }
    std::string const& path() const { return m_path; }

private:
    std::string const m_path;
};

TEST(Rfc822Msg, ReadsTheRootsHeadersAndNothingMore)
{
    Mail mail("A: 1\n\ntext\nmore\n");
    EXPECT_EQ("A[1]", shown(mail.root().headers().headers()));
    EXPECT_EQ(6u, mail.in.tell());
}

TEST(Rfc822Msg, NoInputIsALeafWithNothing)
{
    Mail mail("");
    EXPECT_TRUE(dynamic_cast<MimeRfc822Msg*>(&mail.root()));
    EXPECT_TRUE(mail.root().headers().headers().empty());
    EXPECT_EQ("", textOf(mail.root().body(false)));
}

TEST(Rfc822Msg, HeadersMayBeReadElsewhere)
{
    HeaderContainer headers;
    headers.add(Header("A", "1"));
    BufferMediaIn in(std::string("B: 2\n\ntext\n"));
    Ref<Rfc822Msg> message = Rfc822Msg::parse(headers, in);
    MimePart& root = *message->root();
    EXPECT_EQ("A[1]", shown(root.headers().headers()));
    EXPECT_TRUE(root.source().isNull());
    EXPECT_EQ(0u, root.sourcePosition());
    EXPECT_EQ(0u, root.hlen());
    EXPECT_EQ("B: 2\n\ntext\n", textOf(root.body(false)));
    EXPECT_EQ(11u, root.blen());
}

TEST(Rfc822Msg, AFileLivesAsLongAsTheMessage)
{
    TemporaryFile const file("A: 1\n\ntext\n");
    Ref<Rfc822Msg> message = Rfc822Msg::parse(file.path());
    EXPECT_EQ("leaf[text\n]", contents(*message->root()));
}

TEST(Rfc822Msg, AFileMayHoldTheBodyOnly)
{
    TemporaryFile const file("--b\n\none\n--b--\n");
    HeaderContainer headers;
    headers.add(Header("Content-Type", "multipart/mixed; boundary=b"));
    Ref<Rfc822Msg> message = Rfc822Msg::parse(headers, file.path());
    EXPECT_EQ("multipart(preamble[] leaf[one\n] epilogue[])", contents(*message->root()));
}

TEST(Rfc822Msg, AFileThatCannotBeOpenedIsReported)
{
    try {
        Rfc822Msg::parse(std::string("/nonexistent/message"));
        FAIL();
    } catch (Exception const& failure) {
        EXPECT_EQ("FileMediaIn", failure.message());
        EXPECT_EQ(6, failure.code());
    }
}

TEST(Rfc822Msg, AnEmptyOneHasNeitherRootNorParser)
{
    Rfc822Msg message;
    EXPECT_EQ(nullptr, message.root());
    EXPECT_EQ(nullptr, message.parser());
}

TEST(Rfc822Msg, TakesOverParserAndRoot)
{
    BufferMediaIn in(std::string("A: 1\n\ntext\n"));
    auto* parser = new Rfc822MsgParser(in, 100);
    MimePart* root = parser->createRfc822Msg();
    Rfc822Msg message(parser, root);
    EXPECT_EQ(root, message.root());
    EXPECT_EQ(parser, message.parser());
}

TEST(Rfc822Msg, ARecordMayKeepTheRoot)
{
    Ref<MimePart> kept;
    {
        Mail mail("A: 1\n\ntext\n");
        kept = Ref<MimePart>(mail.message->root(), true);
    }
    EXPECT_EQ("A[1]", shown(kept->headers().headers()));
}

} // namespace
} // namespace Velmara
