// HTML, of any length through all visitors and as a body. The tree is libxml2's, so its own costs are in
// each of these.
#include "hostile/Case.h"
#include "hostile/Work.h"

namespace Velmara::Hostile {

namespace {

void _html(Input const& input, Sink& sink)
{
    readHtml(input, sink);
}

template <char const* charset> void _htmlIn(Input const& input, Sink& sink)
{
    readHtml(input, sink, charset);
}

void _htmlWithItsOwnCharset(Input const& input, Sink& sink)
{
    readHtml(input, sink, nullptr, false);
}

constexpr char _shiftJis[] = "shift_jis", _utf16[] = "utf-16le";

/// ASCII in UTF-16.
std::string _wide(std::string const& text)
{
    std::string wide;
    for (char c : text) {
        wide += c;
        wide += '\0';
    }
    return wide;
}

} // namespace

std::vector<Case> htmlCases()
{
    return {
        {"html/body-beyond-its-limit", [](size_t n) { return filled(n, "", "<p>x", ""); }, readHtmlBody, true},
        {"html/paragraphs", [](size_t n) { return filled(n, "", "<p>x", ""); }, _html},
        {"html/text-without-tags", [](size_t n) { return filled(n, "<p>", "text ", ""); }, _html},
        {"html/line-feeds", [](size_t n) { return filled(n, "<p>x", "\n", "y"); }, _html},
        {"html/open-tags", [](size_t n) { return filled(n, "", "<div>", ""); }, _html},
        {"html/deep-and-closed", [](size_t n) { return filled(n / 2, "", "<b>", "x") + filled(n / 2, "", "</b>", ""); },
         _html},
        {"html/closed-tags-that-were-never-open", [](size_t n) { return filled(n, "<p>x", "</b>", ""); }, _html},
        {"html/tags-at-the-depth-limit", [](size_t n) { return filled(n, repeated(250, "<div>"), "<b>x</b>", ""); },
         _html},
        {"html/misnested-tags", [](size_t n) { return filled(n, "", "<b><p></b></p>", ""); }, _html},
        {"html/less-than-signs", [](size_t n) { return filled(n, "", "<", ""); }, _html},
        {"html/tag-without-end", [](size_t n) { return filled(n, "<p ", "a", ""); }, _html},
        {"html/attributes-of-one-tag", [](size_t n) { return counted(n, "<p", " a{}=1", ">x"); }, _html},
        {"html/attributes-in-many-tags",
         [](size_t n) { return filled(n, "", "<p a=1 b=2 c=3 d=4 e=5 f=6 g=7 h=8 i=9 j=0>x", ""); }, _html},
        {"html/tags-of-many-attributes",
         [](size_t n) { return filled(n, "", counted(6000, "<p", " a{}=1", ">x"), ""); }, _html, false, Libxml2,
         "each of up to 1024 attributes is compared with all before it"},
        {"html/attribute-without-end", [](size_t n) { return filled(n, "<a href=\"", "x", ""); }, _html},
        {"html/names-of-many-tags", [](size_t n) { return counted(n, "", "<t{}>x</t{}>", ""); }, _html},
        {"html/names-of-tags-that-were-never-open", [](size_t n) { return counted(n, "<p>x", "</t{}>", ""); }, _html},
        {"html/names-of-many-attributes", [](size_t n) { return counted(n, "", "<p a{}=1>x", ""); }, _html},
        {"html/names-of-many-references", [](size_t n) { return counted(n, "<p>", "&zz{};", ""); }, _html, false,
         Libxml2, "each name is searched for through a list of 253"},
        {"html/names-of-many-instructions", [](size_t n) { return counted(n, "<p>", "<?x{}>", ""); }, _html},
        {"html/ids-of-many-tags", [](size_t n) { return counted(n, "", "<p id=a{}>x", ""); }, _html},
        {"html/comments", [](size_t n) { return filled(n, "", "<!---->", ""); }, _html},
        {"html/comments-and-blanks", [](size_t n) { return filled(n, "<table>", "<!----> ", ""); }, _html},
        {"html/comments-ahead-of-blanks",
         [](size_t n) { return filled(n / 2, "", "<!---->", "<body>") + filled(n / 2, "", " <hr>", ""); }, _html},
        {"html/roots-ahead-of-blanks",
         [](size_t n) { return filled(n / 2, "<!---->", "<html/>", "<body>") + filled(n / 2, "", " <hr>", ""); },
         _html},
        {"html/instructions-and-blanks", [](size_t n) { return filled(n, "<table>", "<?x> ", ""); }, _html},
        {"html/comment-without-end", [](size_t n) { return filled(n, "<p>x<!--", "-", ""); }, _html},
        {"html/starts-of-comments", [](size_t n) { return filled(n, "<p>x", "<!--", ""); }, _html},
        {"html/comments-that-never-close", [](size_t n) { return filled(n, "<p>x", "<!-- --!> ", ""); }, _html},
        {"html/processing-instructions", [](size_t n) { return filled(n, "<p>", "<?x>", ""); }, _html},
        {"html/declarations", [](size_t n) { return filled(n, "<p>", "<!x>", ""); }, _html},
        {"html/script-without-end", [](size_t n) { return filled(n, "<script>", "</scrip", ""); }, _html},
        {"html/scripts", [](size_t n) { return filled(n, "", "<script>x</script>", ""); }, _html},
        {"html/titles", [](size_t n) { return filled(n, "", "<title>x", ""); }, _html},
        {"html/known-references", [](size_t n) { return filled(n, "<p>", "&zwnj;", ""); }, _html, false, Libxml2,
         "each name is searched for from the beginning of a list of 253"},
        {"html/unknown-references", [](size_t n) { return filled(n, "<p>", "&zz;", ""); }, _html, false, Libxml2,
         "each name is searched for through a list of 253"},
        {"html/numeric-references", [](size_t n) { return filled(n, "<p>", "&#x4e00;", ""); }, _html},
        {"html/open-references", [](size_t n) { return filled(n, "<p>", "&", ""); }, _html},
        {"html/references-in-attributes", [](size_t n) { return filled(n, "<a href=\"", "&amp;", "\">x</a>"); }, _html},
        {"html/many-documents", [](size_t n) { return filled(n, "", "<p>a</p></html>", ""); }, _html},
        {"html/many-documents-in-latin", [](size_t n) { return filled(n, "", "<p>\xE4</html>", ""); }, _html},
        {"html/many-documents-with-a-charset",
         [](size_t n) {
             return filled(n, "", "<meta http-equiv=content-type content=\"text/html; charset=koi8-r\"><p>\xE4</html>",
                           "");
         },
         _htmlWithItsOwnCharset},
        {"html/text-read-again-behind-a-guessed-charset",
         [](size_t n) { return filled(n, "<p>" + repeated(n / 2, "a") + "\xE4", "</html>x", ""); }, _html, false,
         Output, "behind each </html> the walk goes on where libxml2 counts anew, at text that it has given already"},
        {"html/text-read-again-behind-an-unfinished-end", [](size_t n) { return filled(n, "<p>", "text ", "<"); },
         _html, false, Output,
         "libxml2 forgets how far it has come, so that all but the first 500 bytes are walked again"},
        {"html/charsets-declared-again", [](size_t n) { return filled(n, "", "<meta charset=utf-8><p>x", ""); },
         _htmlWithItsOwnCharset},
        {"html/html-tags", [](size_t n) { return filled(n, "", "<html>", "x"); }, _html},
        {"html/body-tags", [](size_t n) { return filled(n, "", "<body bgcolor=red>", "x"); }, _html},
        {"html/table-cells", [](size_t n) { return filled(n, "<table><tr>", "<td>", ""); }, _html},
        {"html/tables-in-each-other", [](size_t n) { return filled(n, "", "<table><tr><td>", ""); }, _html},
        {"html/options", [](size_t n) { return filled(n, "<select>", "<option>", ""); }, _html},
        {"html/links", [](size_t n) { return counted(n, "", "<a href=\"http://a{}.example/\">x</a>", ""); }, _html},
        {"html/links-of-one-target", [](size_t n) { return filled(n, "", "<a href=http://a.example/>x</a>", ""); },
         _html},
        {"html/links-that-are-none",
         [](size_t n) { return filled(n, "", "<a href=\"x y http://a.example z\">x</a>", ""); }, _html},
        {"html/images", [](size_t n) { return counted(n, "", "<img src=cid:{}@a width=10 height=20>", ""); }, _html},
        {"html/images-of-one-source", [](size_t n) { return filled(n, "", "<img src=http://a.example/x.png>", ""); },
         _html},
        {"html/forms", [](size_t n) { return filled(n, "", "<form action=http://a.example/>", ""); }, _html},
        {"html/fonts", [](size_t n) { return filled(n, "", "<font color=\"#ffffff\" size=1>x", ""); }, _html},
        {"html/styles",
         [](size_t n) { return filled(n, "", "<span style=\"color:#fff;background-color:rgb(255,255,255)\">x", ""); },
         _html},
        {"html/style-without-end", [](size_t n) { return filled(n, "<p style=\"", "color:", "\">x"); }, _html},
        {"html/style-of-brackets", [](size_t n) { return filled(n, "<p style=\"color:rgb(", "1", "\">x"); }, _html},
        {"html/raw-8-bit", [](size_t n) { return filled(n, "<p>", "\xE4", ""); }, _html},
        {"html/nul-bytes", [](size_t n) { return filled(n, "<p>x", std::string_view("\0a", 2), ""); }, _html},
        {"html/bad-characters-of-its-charset", [](size_t n) { return filled(n, "<p>x", "\x81\xFD<b>", ""); },
         _htmlIn<_shiftJis>},
        {"html/documents-in-utf-16", [](size_t n) { return _wide(filled(n / 2, "", "<p>x</p></html>", "")); },
         _htmlIn<_utf16>},
        {"html/tags-in-utf-16", [](size_t n) { return _wide(counted(n / 2, "", "<p a{}=1>x", "")); }, _htmlIn<_utf16>},
    };
}

} // namespace Velmara::Hostile
