#include <velmara/BayesianVisitor.h>
#include <velmara/Rfc822Msg.h>

#include <gtest/gtest.h>

#include <string>

namespace Velmara {
namespace {

std::string _text(Buffer const& buffer)
{
    return std::string(reinterpret_cast<char const*>(buffer.data()), buffer.length());
}

/// The text that is collected from a mail.
std::string _collected(std::string const& mail)
{
    BufferMediaIn in(mail);
    Ref<Rfc822Msg> message = Rfc822Msg::parse(in);
    Ref<MimePart> const root(message->root(), true);
    BayesianVisitor visitor;
    visitor.init(message->root());
    message->root()->visit(&visitor);
    visitor.done();
    return _text(find_MimeRfc822Msg_Text_buffer(root, MPartAttribute::TypeText));
}

struct Row {
    char const* rule;
    char const* mail;
    char const* text;
};

class Collected : public testing::TestWithParam<Row> {};

TEST_P(Collected, IsWhatAPersonWouldRead)
{
    EXPECT_EQ(GetParam().text, _collected(GetParam().mail));
}

INSTANTIATE_TEST_SUITE_P(
    Mails, Collected,
    testing::Values(Row{"APartWithoutATypeIsText", "Subject: x\n\nhello\n", "hello\n"},
                    Row{"PlainText", "Content-Type: text/plain\n\nhello\n", "hello\n"},
                    Row{"CarriageReturnsAreTakenOut", "Content-Type: text/plain\r\n\r\na\r\nb\rc\r\n", "a\nbc\n"},
                    Row{"TransferEncodingsAreUndone",
                        "Content-Type: text/plain\nContent-Transfer-Encoding: base64\n\nQUJD\n", "ABC"},
                    Row{"HtmlAsAReaderSeesIt",
                        "Content-Type: text/html\n\n<body>one<br>two<font color=white>three</font></body>\n",
                        "one\ntwo"},
                    Row{"OtherTextIsLeftOut", "Content-Type: text/enriched\n\nhello\n", ""},
                    Row{"AttachmentsAreLeftOut", "Content-Type: application/pdf\n\nhello\n", ""},
                    Row{"TextsFollowEachOtherAndNothingElseGoesIn",
                        "Content-Type: multipart/alternative; boundary=b\n\npreamble\n--b\n\nplain\n--b\nContent-Type: "
                        "text/html\n\n"
                        "<body>rich</body>\n--b--\nepilogue\n",
                        "plain\nrich"},
                    Row{"NestedMessagesGoIn", "Content-Type: message/rfc822\n\nSubject: inner\n\nhello\n", "hello\n"}),
    [](auto const& row) { return std::string(row.param.rule); });

class OneMessage : public testing::Test {
protected:
    OneMessage() : m_in(std::string("\nhello\n")), message(Rfc822Msg::parse(m_in)), root(message->root(), true) {}

private:
    BufferMediaIn m_in;

protected:
    Ref<Rfc822Msg> message;
    Ref<MimePart> root;
};

TEST_F(OneMessage, TheAttributeIsOfTypeOneWithItsFlagSet)
{
    BayesianVisitor visitor;
    visitor.init(message->root());
    auto* text = dynamic_cast<MPartText*>(root->findAttr(MPartAttribute::TypeText));
    ASSERT_NE(nullptr, text);
    EXPECT_EQ(1, text->type());
    EXPECT_EQ(1, text->flag);
    EXPECT_EQ("", text->label);
    EXPECT_EQ(65536u, text->text.size());
}

TEST_F(OneMessage, ASecondInitKeepsTheFirstAttribute)
{
    BayesianVisitor visitor;
    visitor.init(message->root());
    MPartAttribute* const first = root->findAttr(MPartAttribute::TypeText);
    visitor.init(message->root());
    EXPECT_EQ(first, root->findAttr(MPartAttribute::TypeText));
}

TEST_F(OneMessage, AVisitorWithAMediumAttachesNothing)
{
    Buffer collected;
    BayesianVisitor visitor{BufferMediaOut(collected)};
    visitor.init(message->root());
    message->root()->visit(&visitor);
    EXPECT_EQ(nullptr, root->findAttr(MPartAttribute::TypeText));
    EXPECT_EQ("hello\n", _text(collected));
}

struct OtherText : MPartAttribute {
    Type type() const override { return TypeText; }
};

TEST_F(OneMessage, WithoutTextTheBufferIsEmptyAndNothingThrows)
{
    EXPECT_TRUE(find_MimeRfc822Msg_Text_buffer(Ref<MimePart>(), MPartAttribute::TypeText).isEmpty());
    EXPECT_TRUE(find_MimeRfc822Msg_Text_buffer(root, MPartAttribute::TypeText).isEmpty());
    root->setAttr(Ref<MPartAttribute>(new OtherText, false));
    EXPECT_TRUE(find_MimeRfc822Msg_Text_buffer(root, MPartAttribute::TypeText).isEmpty());
}

TEST(MPartUriContainer, IsAnAttributeOfTypeSeven)
{
    MPartUriContainer uris;
    EXPECT_EQ(7, uris.type());
    uris.add(Uri("http://a.example/"), true);
    EXPECT_EQ(1u, uris.hrefs(0).size());
}

} // namespace
} // namespace Velmara
