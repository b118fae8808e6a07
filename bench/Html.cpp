// What an HTML body costs: the whole way, from bytes to text, links, tag tokens and images, beside what
// libxml2 alone takes to parse the same bytes and to walk the tree. VELMARA_HTML names a folder of HTML
// files; without it generated newsletters stand in. The other measures are of input that must stay linear.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <string>
#include <vector>

#include <libxml/HTMLparser.h>
#include <velmara/Velmara.h>

#include "bench/Inputs.h"

using namespace Velmara;

namespace {

std::string newsletter(size_t rows)
{
    std::string const row =
        "<tr><td bgcolor=\"#f0f0f0\" style=\"font-size:14px;color:#333333\"><a href=\"http://shop.example/item?id=42\">"
        "<img src=\"cid:item@shop.example\" width=\"120\" height=\"80\"></a></td>\n<td><p class=\"t\">A thing that "
        "everybody should have, <b>now</b> at a price of <font color=\"red\">12&euro;</font>.<br>\nMore of it "
        "<span style=\"font-size:12px\">here</span>.</p></td></tr>\n";
    return "<html><head><title>News</title></head>\n<body bgcolor=\"white\" text=\"black\">\n<table>" +
           repeated(rows, row) + "</table></body></html>\n";
}

std::vector<std::string> loadBodies()
{
    if (char const* folder = std::getenv("VELMARA_HTML")) return filesBelow(folder);
    std::vector<std::string> bodies;
    for (size_t rows = 1; rows < 120; rows += 4) bodies.push_back(newsletter(rows));
    return bodies;
}

std::vector<std::string> const& bodies()
{
    static std::vector<std::string> const loaded = loadBodies();
    return loaded;
}

void add(TextHtmlDoc& document, HtmlDocVisitor* visitor)
{
    document.addVisitor(Ref<HtmlDocVisitor>(visitor, false));
}

/// Text, links, tag tokens and images of one body.
size_t analyse(std::string const& html)
{
    TextHtmlDoc document(true);
    Buffer text;
    BufferMediaOut out(text);
    UriContainer uris;
    TDProperties tokens;
    ImageProperties images(0);
    add(document, new HtmlTxtExtract(&document, 0, out, &uris));
    add(document, new HtmlTagExtract(&tokens, "utf-8"));
    add(document, new HtmlImageExtract(&document, 0, &images));
    document.write(reinterpret_cast<unsigned char const*>(html.data()), static_cast<unsigned>(html.size()));
    document.end();
    return text.length();
}

/// What libxml2 writes to standard error all the same.
void silent(void*, char const*, ...)
{}

size_t nodesBelow(xmlNode const* root)
{
    size_t n = 0;
    for (xmlNode const* node = root; node;) {
        ++n;
        if (node->children && node->type != XML_ENTITY_REF_NODE) {
            node = node->children;
            continue;
        }
        while (node != root && !node->next) node = node->parent;
        if (node == root) break;
        node = node->next;
    }
    return n;
}

/// One pass of libxml2 by itself; gives how far it came, as it counts.
size_t parseBare(char const* html, size_t size)
{
    htmlParserCtxtPtr const context =
        htmlCreatePushParserCtxt(nullptr, nullptr, nullptr, 0, nullptr, XML_CHAR_ENCODING_NONE);
    htmlCtxtUseOptions(context, HTML_PARSE_RECOVER | HTML_PARSE_NOERROR | HTML_PARSE_NOWARNING | HTML_PARSE_NOBLANKS |
                                    HTML_PARSE_IGNORE_ENC);
    htmlParseChunk(context, html, static_cast<int>(size), 1);
    xmlNode const* root = context->myDoc ? xmlDocGetRootElement(context->myDoc) : nullptr;
    benchmark::DoNotOptimize(nodesBelow(root));
    xmlParserInput const* input = context->input;
    size_t const consumed = !root ? 0 : input->cur < input->end ? static_cast<size_t>(input->cur - input->base) : size;
    if (context->myDoc) xmlFreeDoc(context->myDoc);
    htmlFreeParserCtxt(context);
    return consumed;
}

/// As many passes as the body has documents, so that both do the same work.
size_t parseAllBare(std::string const& html)
{
    size_t offset = 0, consumed = 1;
    for (; offset < html.size() && consumed > 0; offset += consumed)
        consumed = parseBare(html.data() + offset, html.size() - offset);
    return offset;
}

template <class Work> void overBodies(benchmark::State& state, std::vector<std::string> const& texts, Work work)
{
    pconfig = pconfig ? pconfig : new Config;
    xmlSetGenericErrorFunc(nullptr, silent);
    for (auto _ : state)
        for (std::string const& html : texts) benchmark::DoNotOptimize(work(html));
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * bytesOf(texts)));
}

void Html_TextLinksTagsImages(benchmark::State& state)
{
    overBodies(state, bodies(), analyse);
}
BENCHMARK(Html_TextLinksTagsImages);

void Html_BareParserAndWalk(benchmark::State& state)
{
    overBodies(state, bodies(), parseAllBare);
}
BENCHMARK(Html_BareParserAndWalk);

void Html_WalkWithoutVisitors(benchmark::State& state)
{
    overBodies(state, bodies(), [](std::string const& html) {
        HTML::Builder builder;
        HTML::Parser::parseAll(builder, true, html.data(), static_cast<unsigned>(html.size()), nullptr);
        return html.size();
    });
}
BENCHMARK(Html_WalkWithoutVisitors);

void Html_ManyDocumentsInOne(benchmark::State& state)
{
    overBodies(state, {repeated(static_cast<size_t>(state.range(0)), "<p>a</p></html>")}, analyse);
}
BENCHMARK(Html_ManyDocumentsInOne)->Arg(100)->Arg(1000)->Arg(10000);

void Html_ManyAttributesOfOneTag(benchmark::State& state)
{
    std::string tag = "<p";
    for (int64_t i = 0; i < state.range(0); ++i) tag += " a" + std::to_string(i);
    overBodies(state, {tag + ">x"}, analyse);
}
BENCHMARK(Html_ManyAttributesOfOneTag)->Arg(1000)->Arg(5000)->Arg(20000);

void Html_DeepDocument(benchmark::State& state)
{
    overBodies(state, {repeated(250, "<div>") + repeated(static_cast<size_t>(state.range(0)), "<b>x</b>")}, analyse);
}
BENCHMARK(Html_DeepDocument)->Arg(1000)->Arg(10000);

} // namespace

BENCHMARK_MAIN();
