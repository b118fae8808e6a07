// A buffer of several documents: the passes that get a piece of the rest must fire the events of passes
// that get all of it. The first byte of the input chooses the character set and what stands behind the
// rest, since pieces are only taken beyond some kilobytes.
#include <cstdint>
#include <cstdlib>
#include <string>

#include <libxml/tree.h>
#include <velmara/HtmlParser.h>

#include "fuzz/Writes.h"

using namespace Velmara;

namespace {

constexpr size_t longest = 9000; // pieces of two sizes
constexpr int mostPasses = 4;    // more tell nothing new, and every one gets all of the rest

/// Ends a parse whose events are not looked at any more.
struct Enough {};

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
    size_t wanted = 100000;

private:
    void add(char kind, unsigned char const* text)
    {
        seen += kind;
        if (text) seen += reinterpret_cast<char const*>(text);
        if (seen.size() > wanted) throw Enough();
    }
};

/// False if there is more: libxml2's position can let passes overlap without end in sight.
bool wholePasses(Events& builder, std::string const& html, char const* charset, bool ignoreEncoding)
{
    size_t offset = 0;
    for (int pass = 0; offset < html.size(); ++pass) {
        if (pass == mostPasses) return false;
        HTML::Parser parser(builder, ignoreEncoding);
        parser.parse(html.data() + offset, static_cast<unsigned>(html.size() - offset), charset);
        if (parser.eof() || parser.gcount() == 0) break;
        offset += parser.gcount();
    }
    return true;
}

/// True if it comes to its end before `enough` tells that no more is wanted.
template <class Parse> bool whole(Parse parse)
{
    try {
        return parse();
    } catch (Enough const&) {
        return false;
    }
}

/// What is long costs so much more that few inputs may be.
std::string document(uint8_t const* data, size_t size)
{
    std::string const text(reinterpret_cast<char const*>(data + 1), size - 1);
    unsigned const kind = data[0] >> 4u;
    std::string html = text;
    if (kind == 15 && Writes::oneIn(128, data, size)) { // pieces end anywhere
        size_t const most = Writes::oneIn(1024, data, size) ? longest : 4400;
        while (!text.empty() && html.size() + text.size() <= most) html += text;
    } else if (kind >= 12 && Writes::oneIn(16, data, size)) // in one long text
        html += text + std::string(4400, "\nx->"[kind % 4]) + text + text;
    return html;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, size_t size)
{
    static char const* const charsets[] = {nullptr,       "utf-8",       "iso-8859-1", "utf-16le",
                                           "windows-874", "iso-2022-jp", "x-none",     "koi8-r"};
    if (size == 0) return 0;
    char const* charset = charsets[data[0] & 7];
    bool const ignoreEncoding = data[0] & 8;
    std::string const html = document(data, size);
    Events expected, builder;
    bool const ended = whole([&] { return wholePasses(expected, html, charset, ignoreEncoding); });
    builder.wanted = expected.seen.size();
    bool const same = whole([&] {
        HTML::Parser::parseAll(builder, ignoreEncoding, html.data(), static_cast<unsigned>(html.size()), charset);
        return true;
    });
    if (ended && !same) std::abort();
    if (builder.seen.compare(0, expected.seen.size(), expected.seen) != 0) std::abort();
    return 0;
}
