#pragma once

#include <string>

#include <velmara/MediaIn.h>
#include <velmara/MediaOut.h>
#include <velmara/TextHtmlDoc.h>

namespace Velmara {

/// Feeds a body to a document whose visitors `add` names.
template <class Add> void readHtml(std::string const& html, Add add)
{
    TextHtmlDoc document(true);
    add(document);
    BufferMediaIn in(html);
    document.parse(&in);
}

/// Keeps what is written, with ends and character sets.
class RecordedImpl : public MediaOutImpl {
public:
    using MediaOutImpl::write;
    void write(uchar_t const* bytes, uint_t n) override { text.append(reinterpret_cast<char const*>(bytes), n); }
    void end() override { ++ends; }
    void characterSet(std::string const& name) override { charset += name + ";"; }

    std::string text, charset;
    int ends = 0;
};

} // namespace Velmara
