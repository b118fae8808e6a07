// What the parser is spared, and what it is kept from, must not show in its trees:
//   - the tree is that of libxml2 alone, and each node of it knows the one before;
//   - of a document with too many attributes, the tree is that of the whole less what is too much; an attribute that is
//     there twice counts twice.
// Half of the bytes stand for pieces of markup.
#include <velmara/HtmlParser.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <string>
#include <vector>

#include "html/AttributeLimit.h"
#include "tests/html/Events.h"
#include "tests/html/LibxmlTree.h"

using namespace Velmara;
using namespace Velmara::HTML;

namespace {

// A piece a line would fill pages.
// clang-format off
constexpr char const* pieces[] = {
    "<", "<p", " a", " b=", " c='", " d=\"", "'", "\"", ">", "/>", "</p>", "<!--", "-->", "--!>", "<!", "<!DOCTYPE",
    " PUBLIC ", " SYSTEM ", "<?", "<?i ", "<script", "</script", "<style>", "</style", "<t ", "<table>", "<body>",
    "</body>", "</html>", "<html ", "<html/>", "<head>", " ", "\n", "&", "&zz;", "&#65;", "<meta ", "<!---->",
    "<!----> ", "<?x>", " <hr>", "x", "<b>y ", "</b", " e f g h i", "=", "/", "<a id=q ", " name=q",
    "<!DOCTYPE html PUBLIC '-//W3C//DTD HTML 4.01//EN'>"};
// clang-format on

std::string documentOf(std::uint8_t const* data, std::size_t n)
{
    std::string html;
    for (std::size_t i = 0; i < n && html.size() < 4000; ++i)
        if (data[i] < 0x80)
            html += static_cast<char>(data[i]);
        else
            html += pieces[(data[i] - 0x80) % std::size(pieces)];
    return html;
}

void checkTree(std::string const& html)
{
    HTMLContext context(true);
    xmlNode const* const root = context.parse(html.data(), static_cast<unsigned>(html.size()));
    if (!root) return;
    if (dumped(root->doc) != treeOfLibxml(html) || !pointsBack(root->doc)) std::abort();
}

/// Events, and the names of the attributes of each element.
struct Attributes : Events {
    explicit Attributes(std::string const& html)
    {
        Parser parser(*this, true);
        parser.parse(html.data(), static_cast<unsigned>(html.size()), "utf-8");
    }
    void foundTag(xmlNode const* node) override
    {
        Events::foundTag(node);
        names.emplace_back();
        for (xmlAttr const* attribute = node->properties; attribute; attribute = attribute->next)
            names.back().emplace_back(reinterpret_cast<char const*>(attribute->name));
    }
    std::vector<std::vector<std::string>> names;
};

void checkLimit(std::string const& html)
{
    constexpr std::size_t limit = 2;
    AttributeLimit const result(html, limit);
    Attributes const whole(html), limited(result.blanked.empty() ? html : result.blanked);
    if (whole.seen != limited.seen || whole.names.size() != limited.names.size()) std::abort();
    for (std::size_t i = 0; i < whole.names.size(); ++i) {
        auto const &all = whole.names[i], &some = limited.names[i];
        if (some.size() > limit || some.size() > all.size() || !std::equal(some.begin(), some.end(), all.begin()))
            std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t n)
{
    std::string const html = documentOf(data, n);
    checkTree(html);
    checkLimit(html);
    return 0;
}
