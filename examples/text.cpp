// The text of a mail as its reader sees it, in UTF-8: plain parts converted from their character sets, of
// HTML parts only what is visible.
//
//     text FILE...
#include <iostream>
#include <string>

#include <velmara/Velmara.h>

using namespace Velmara;

namespace {

std::string stringOf(Buffer const& bytes)
{
    return std::string(reinterpret_cast<char const*>(bytes.data()), bytes.length());
}

/// Bytes that the character set has no character for come out as U+FFFD.
std::string ofPlain(std::string const& body, std::string const& charset)
{
    return stringOf(VmaraConv::toUtf8(charset, body.data(), static_cast<unsigned int>(body.size()), 0, true, true));
}

/// White text on white ground and the like is left out; the parser gives UTF-8.
std::string ofHtml(std::string const& body, std::string const& charset)
{
    Buffer text;
    TextHtmlDoc document(false);
    document.characterSet(charset);
    auto* extract = new HtmlTxtExtract(&document, 0, BufferMediaOut(text), nullptr);
    document.addVisitor(Ref<HtmlDocVisitor>(extract, false));
    BufferMediaIn in(body);
    document.parse(&in);
    return stringOf(text);
}

class TextPrinter : public MimePartVisitor {
public:
    void visitRfc822Msg(MimeRfc822Msg& part) override
    {
        ContentType type(part.headers().find(ContentType::htype));
        bool const isText = type.isNull() || type.mediatype() == ContentType::MediaTypeText; // none declared: text
        if (!isText) return;
        std::string const charset = type.isNull() || type.charset().empty() ? "us-ascii" : type.charset();
        std::string body;
        part.body(true).read(body);
        bool const isHtml = !type.isNull() && type.subtype() == ContentType::SubTypeHtml;
        std::cout << (isHtml ? ofHtml(body, charset) : ofPlain(body, charset)) << '\n';
    }
};

} // namespace

int main(int argc, char** argv)
{
    int status = 0;
    for (int i = 1; i < argc; ++i) {
        try {
            std::cout << "==== " << argv[i] << '\n';
            TextPrinter printer;
            Rfc822Msg::parse(argv[i])->root()->visit(&printer);
        } catch (Exception const& failure) {
            std::cerr << failure.asString() << '\n';
            status = 2;
        }
    }
    return status;
}
