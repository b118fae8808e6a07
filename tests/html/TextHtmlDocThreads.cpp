#include <velmara/Velmara.h>

#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "semantics/DictionaryFiles.h"
#include "support/Collected.h"

namespace Velmara {
namespace {

using std::string;

/// Asks for colours and sizes by name and number, styles, links, images and tags that nobody has seen.
string _html(int number)
{
    string const n = std::to_string(number);
    return "<html><body bgcolor=white><p style='font-size: " + n + "px; color: red'>Visible &eacute; " + n +
           "<font color=white size=1>hidden</font><a href='http://a" + n + ".example/'>link</a><x-tag" + n +
           " class=c style='font-size: small'>new</x-tag" + n + "><img src='cid:i" + n +
           "@b.example' width=10 height='5%'>Disclaimer: none</body></html>";
}

string _textOf(Buffer const& buffer)
{
    return string(reinterpret_cast<char const*>(buffer.data()), buffer.length());
}

/// All that the visitors make of a document.
string _read(string const& html)
{
    TextHtmlDoc document(false);
    Buffer text, disclaimer;
    BufferMediaOut textOut(text), disclaimerOut(disclaimer);
    UriContainer uris;
    TDProperties tokens;
    ImageProperties images(0);
    for (HtmlDocVisitor* visitor : {static_cast<HtmlDocVisitor*>(new HtmlTxtExtract(&document, 1, textOut, &uris)),
                                    static_cast<HtmlDocVisitor*>(new HtmlToTxtDisclaimer(&document, disclaimerOut)),
                                    static_cast<HtmlDocVisitor*>(new HtmlTagExtract(&tokens, "utf-8")),
                                    static_cast<HtmlDocVisitor*>(new HtmlImageExtract(&document, 1, &images))})
        document.addVisitor(Ref<HtmlDocVisitor>(visitor, false));
    document.write(bytes(html));
    document.end();
    string all = _textOf(text) + '|' + _textOf(disclaimer) + '|';
    for (Uri const& uri : uris.hrefs(1)) all += uri.asString() + ' ';
    for (Ref<ImageSummary> const& image : images.images()) all += image->cid.value + ' ';
    return all + std::to_string(tokens.descriptors()[0]->tokens().size());
}

std::vector<string> _readAll()
{
    std::vector<string> all;
    for (int number = 0; number < 40; ++number) all.push_back(_read(_html(number)));
    return all;
}

// The threads come first, so that they build the shared tables together.
TEST(TextHtmlDocThreads, DocumentsOfManyThreadsAreReadLikeThoseOfOne)
{
    DictionaryFiles const files;
    Config config;
    config.readDict(files.dir());
    pconfig = &config;
    std::vector<std::vector<string>> results(8);
    std::vector<std::thread> threads;
    for (std::vector<string>& result : results) threads.emplace_back([&result] { result = _readAll(); });
    for (std::thread& thread : threads) thread.join();
    std::vector<string> const alone = _readAll();
    EXPECT_NE(string::npos, alone[7].find("http://a7.example/")) << alone[7];
    for (std::vector<string> const& result : results) EXPECT_EQ(alone, result);
    pconfig = nullptr;
}

} // namespace
} // namespace Velmara
