// All visitors on one document. What must hold for any input:
//   - how the bytes were cut when they were written does not matter;
//   - with no colour, size, class or style named, all text is visible;
//   - the tokens of tags and the images are bounded by what the source can hold.
#include <cstdint>
#include <cstdlib>
#include <string>

#include <velmara/Velmara.h>

using namespace Velmara;

namespace {

/// Counts the texts that are hidden.
class Hidden : public HtmlDocVisitor {
public:
    Hidden(TextHtmlDoc& document, int& count) : m_document(document), m_count(count) {}
    void text(_xmlNode const*) override { m_count += !m_document.isVisible(); }

private:
    TextHtmlDoc& m_document;
    int& m_count;
};

struct Result {
    std::string all; // texts, links, images and tokens
    int hidden = 0;
};

void add(TextHtmlDoc& document, HtmlDocVisitor* visitor)
{
    document.addVisitor(Ref<HtmlDocVisitor>(visitor, false));
}

void write(TextHtmlDoc& document, std::string const& html, size_t step)
{
    auto const* bytes = reinterpret_cast<unsigned char const*>(html.data());
    for (size_t at = 0; at < html.size(); at += step)
        document.write(bytes + at, static_cast<unsigned>(html.size() - at < step ? html.size() - at : step));
}

std::string textOf(Buffer const& buffer)
{
    return std::string(reinterpret_cast<char const*>(buffer.data()), buffer.length());
}

Result read(std::string const& html, bool ignoreEncoding, size_t step)
{
    TextHtmlDoc document(ignoreEncoding);
    Buffer text, disclaimer;
    BufferMediaOut textOut(text), disclaimerOut(disclaimer);
    UriContainer uris;
    TDProperties tokens;
    ImageProperties images(0);
    Result result;
    add(document, new HtmlTxtExtract(&document, 1, textOut, &uris));
    add(document, new HtmlToTxtDisclaimer(&document, disclaimerOut));
    add(document, new HtmlTagExtract(&tokens, "utf-8"));
    add(document, new HtmlImageExtract(&document, 1, &images));
    add(document, new Hidden(document, result.hidden));
    write(document, html, step);
    document.end();

    result.all = textOf(text) + "|" + textOf(disclaimer) + "|";
    for (unsigned long id : {0ul, 1ul})
        for (Uri const& uri : uris.hrefs(id)) result.all += uri.asString() + " ";
    for (Ref<ImageSummary> const& image : images.images())
        result.all += image->cid.value + std::to_string(image->textLine) + (image->firstInRun ? "f" : "n");
    for (wchar_t token : tokens.descriptors()[0]->tokens()) result.all += std::to_string(token) + ",";
    if (tokens.descriptors()[0]->tokens().size() > 201) std::abort();
    return result;
}

/// Whether an element or attribute that can hide text may be there.
bool canHide(std::string const& html)
{
    std::string const lower = stringToLower(html);
    for (char const* word : {"color", "text", "size", "style", "small", "&", "charset"})
        if (lower.find(word) != std::string::npos) return true;
    return false;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, size_t size)
{
    static Config* const config = pconfig = new Config;
    (void)config;
    if (size == 0 || size > 20000) return 0;
    std::string const html(reinterpret_cast<char const*>(data + 1), size - 1);
    Result const whole = read(html, data[0] & 1, html.size() + 1), cut = read(html, data[0] & 1, data[0] / 2 + 1);
    if (whole.all != cut.all || whole.hidden != cut.hidden) std::abort();
    if (whole.hidden > 0 && !canHide(html)) std::abort();
    return 0;
}
