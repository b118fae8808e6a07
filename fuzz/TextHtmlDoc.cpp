// All visitors on one document. What must hold for any input:
//   - each visitor gives alone, whatever the cuts of the writes, what it gives beside all others on one write;
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

enum Visitors { Text, Disclaimer, Tags, Images, VisitorCount };
constexpr unsigned allVisitors = (1u << VisitorCount) - 1;

struct Result {
    std::string of[VisitorCount]; // texts and links, the disclaimer, tokens, images
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

/// `visitors` has a bit for each that looks.
Result read(std::string const& html, bool ignoreEncoding, size_t step, unsigned visitors)
{
    Result result; // outlives the document, which counts into it
    TextHtmlDoc document(ignoreEncoding);
    Buffer text, disclaimer;
    BufferMediaOut textOut(text), disclaimerOut(disclaimer);
    UriContainer uris;
    TDProperties tokens;
    ImageProperties images(0);
    if (visitors & 1u << Text) add(document, new HtmlTxtExtract(&document, 1, textOut, &uris));
    if (visitors & 1u << Disclaimer) add(document, new HtmlToTxtDisclaimer(&document, disclaimerOut));
    if (visitors & 1u << Tags) add(document, new HtmlTagExtract(&tokens, "utf-8"));
    if (visitors & 1u << Images) add(document, new HtmlImageExtract(&document, 1, &images));
    add(document, new Hidden(document, result.hidden));
    write(document, html, step);
    document.end();

    result.of[Text] = textOf(text) + "|";
    for (unsigned long id : {0ul, 1ul})
        for (Uri const& uri : uris.hrefs(id)) result.of[Text] += uri.asString() + " ";
    result.of[Disclaimer] = textOf(disclaimer);
    if (tokens.descriptors().size() != (visitors >> Tags & 1)) std::abort();
    for (Ref<TD> const& found : tokens.descriptors()) {
        std::wstring const& all = found->tokens();
        result.of[Tags].append(reinterpret_cast<char const*>(all.data()), all.size() * sizeof(wchar_t));
        if (all.size() > 201) std::abort();
    }
    for (Ref<ImageSummary> const& image : images.images())
        result.of[Images] += image->cid.value + std::to_string(image->textLine) + (image->firstInRun ? "f" : "n");
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

// The first byte chooses whether the document's own character set counts, the cuts, and who looks alone.
extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, size_t size)
{
    static Config* const config = pconfig = new Config;
    (void)config;
    if (size == 0 || size > 20000) return 0;
    std::string const html(reinterpret_cast<char const*>(data + 1), size - 1);
    bool const ignoreEncoding = data[0] & 1;
    unsigned const step = data[0] / 2 % 32 + 1, alone = data[0] / 64 % VisitorCount;
    Result const all = read(html, ignoreEncoding, html.size() + 1, allVisitors);
    Result const cut = read(html, ignoreEncoding, step, 1u << alone);
    if (all.of[alone] != cut.of[alone] || all.hidden != cut.hidden) std::abort();
    if (all.hidden > 0 && !canHide(html)) std::abort();
    return 0;
}
