// A buffer of several documents: the passes that get a piece of the rest must fire the events of passes
// that get all of it. The first byte of the input chooses the character set and how often the rest is
// repeated, since pieces are only taken beyond some kilobytes.
#include <cstdint>
#include <cstdlib>
#include <string>

#include <libxml/tree.h>
#include <velmara/HtmlParser.h>

using namespace Velmara;

namespace {

constexpr size_t longest = 7000; // pieces of two sizes

/// The events in one line.
class Events : public HTML::Builder {
public:
    void foundTag(xmlNode const* node) override
    {
        add('<', node->name);
        for (xmlAttr const* attribute = node->properties; attribute; attribute = attribute->next) {
            add(' ', attribute->name);
            if (attribute->children) add('=', attribute->children->content);
        }
    }
    void foundText(xmlNode const* node) override { add('\'', node->content); }
    void foundCdata(xmlNode const* node) override { add('[', node->content); }
    void foundComment(xmlNode const* node) override { add('!', node->content); }
    void endTag(xmlNode const*) override { seen += ')'; }

    std::string seen;

private:
    void add(char kind, unsigned char const* text)
    {
        seen += kind;
        if (text) seen += reinterpret_cast<char const*>(text);
    }
};

/// As long as few passes suffice: libxml2's position can let passes overlap without end in sight.
bool wholePasses(Events& builder, std::string const& html, char const* charset, bool ignoreEncoding)
{
    size_t offset = 0;
    for (int pass = 0; offset < html.size(); ++pass) {
        if (pass == 60 || builder.seen.size() > 4000000) return false;
        HTML::Parser parser(builder, ignoreEncoding);
        parser.parse(html.data() + offset, static_cast<unsigned>(html.size() - offset), charset);
        if (parser.eof() || parser.gcount() == 0) break;
        offset += parser.gcount();
    }
    return true;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, size_t size)
{
    static char const* const charsets[] = {nullptr,       "utf-8",       "iso-8859-1", "utf-16le",
                                           "windows-874", "iso-2022-jp", "x-none",     "koi8-r"};
    if (size == 0) return 0;
    char const* charset = charsets[data[0] & 7];
    bool const ignoreEncoding = data[0] & 8;
    std::string const text(reinterpret_cast<char const*>(data + 1), size - 1);
    std::string html = text;
    for (int times = data[0] >> 4; times > 0 && html.size() + text.size() * 8 <= longest; --times)
        for (int i = 0; i < 8; ++i) html += text;
    Events expected, builder;
    if (!wholePasses(expected, html, charset, ignoreEncoding)) return 0;
    HTML::Parser::parseAll(builder, ignoreEncoding, html.data(), static_cast<unsigned>(html.size()), charset);
    if (builder.seen != expected.seen) std::abort();
    return 0;
}
