// Whole bodies against what a reader of the rules expects of them: golden/NAME.html beside
// golden/NAME.expected. The expectations are written by hand; a difference is a question to the rules,
// never a reason to copy what came out.
#include <velmara/Config.h>
#include <velmara/HtmlImageExtract.h>
#include <velmara/HtmlTagExtract.h>
#include <velmara/HtmlTxtExtract.h>
#include <velmara/Uri.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <sstream>

#include <gtest/gtest.h>

#include "html/Extracts.h"

namespace Velmara {
namespace {

std::string const _folder = "tests/html/golden/";

std::string _fileText(std::string const& path)
{
    std::ifstream in(path, std::ios::binary);
    EXPECT_TRUE(in) << path;
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

std::vector<std::string> _names()
{
    std::vector<std::string> names;
    for (auto const& entry : std::filesystem::directory_iterator(_folder))
        if (entry.path().extension() == ".html") names.push_back(entry.path().stem());
    std::sort(names.begin(), names.end());
    return names;
}

/// Each line between bars, so that blanks at its ends can be seen.
std::string _framed(std::string const& text)
{
    if (text.empty()) return std::string();
    std::string lines = "|";
    for (char c : text) lines += c == '\n' ? "|\n|" : std::string(1, c);
    return lines + "|\n";
}

/// Tokens are numbers; the names that they stand for are among those expected, or shown as "?".
std::string _tags(std::wstring const& tokens, Config& config, std::string const& expected)
{
    std::istringstream words(expected);
    std::map<wchar_t, std::string> names;
    for (std::string word; words >> word;) names[static_cast<wchar_t>(config.getHtmlTagIdx(word.c_str()))] = word;
    std::string line;
    for (wchar_t token : tokens) line += (line.empty() ? "" : " ") + (names.count(token) ? names[token] : "?");
    return line;
}

std::string _line(ImageSummary const& image)
{
    std::ostringstream line;
    line << (image.cid.type == CID::TypeContentId ? "cid " : "url ") << image.cid.value << ' ' << image.width << 'x'
         << image.height << " above " << image.textLine << (image.firstInRun ? " first\n" : " later\n");
    return line.str();
}

class GoldenBody : public testing::TestWithParam<std::string> {
protected:
    GoldenBody() { pconfig = &m_config; }
    ~GoldenBody() override { pconfig = nullptr; }

    std::string reportOf(std::string const& html, std::string const& expected)
    {
        UriContainer uris;
        TDProperties tags;
        ImageProperties images(0);
        Buffer text;
        readHtml(html, [&](TextHtmlDoc& document) {
            add(document, new HtmlTxtExtract(&document, 7, BufferMediaOut(text), &uris));
            add(document, new HtmlTagExtract(&tags, "utf-8"));
            add(document, new HtmlImageExtract(&document, 7, &images));
        });
        std::string report =
            "text:\n" + _framed(std::string(reinterpret_cast<char const*>(text.data()), text.length()));
        report += "links:\n";
        for (Uri const& uri : uris.hrefs(7)) report += uri.asString() + "\n";
        report += "tags:\n" + _tags(tags.descriptors()[0]->tokens(), m_config, expected) + "\n";
        report += "images:\n";
        for (Ref<ImageSummary> const& image : images.images()) report += _line(*image.get());
        return report;
    }

private:
    static void add(TextHtmlDoc& document, HtmlDocVisitor* visitor)
    {
        document.addVisitor(Ref<HtmlDocVisitor>(visitor, false));
    }

    Config m_config; // gives each name the next number
};

TEST_P(GoldenBody, IsReadAsExpected)
{
    std::string const expected = _fileText(_folder + GetParam() + ".expected");
    EXPECT_EQ(expected, reportOf(_fileText(_folder + GetParam() + ".html"), expected));
}

INSTANTIATE_TEST_SUITE_P(Files, GoldenBody, testing::ValuesIn(_names()), [](auto const& row) {
    std::string name = row.param;
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
});

TEST(GoldenBodies, AreAllThere)
{
    EXPECT_EQ(65u, _names().size());
}

} // namespace
} // namespace Velmara
