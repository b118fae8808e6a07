// The text of a message. What must hold for any input: no carriage return is left, the same message
// gives the same text, whether it goes to an attribute or to a medium, and a message without HTML has no
// more text than bytes.
#include <cstdint>
#include <cstdlib>
#include <string>

#include <velmara/Velmara.h>

using namespace Velmara;

namespace {

std::string textOf(Buffer const& buffer)
{
    return std::string(reinterpret_cast<char const*>(buffer.data()), buffer.length());
}

template <class Collect> std::string collected(uint8_t const* data, size_t size, Collect collect)
{
    BufferMediaIn in(data, size);
    Ref<Rfc822Msg> const message = Rfc822Msg::parse(in);
    return collect(message->root());
}

std::string throughAttribute(MimePart* root)
{
    BayesianVisitor visitor;
    visitor.init(root);
    root->visit(&visitor);
    visitor.done();
    return textOf(find_MimeRfc822Msg_Text_buffer(Ref<MimePart>(root, true), MPartAttribute::TypeText));
}

std::string throughMedium(MimePart* root)
{
    Buffer text;
    BufferMediaOut const end(text);
    FilterCRLFMediaOut const out(end);
    BayesianVisitor visitor(out);
    visitor.init(root);
    root->visit(&visitor);
    visitor.done();
    if (root->findAttr(MPartAttribute::TypeText)) std::abort();
    return textOf(text);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, size_t size)
{
    if (size > 20000) return 0;
    std::string const text = collected(data, size, throughAttribute);
    if (text != collected(data, size, throughMedium)) std::abort();
    if (text.find('\r') != std::string::npos) std::abort();
    return 0;
}
