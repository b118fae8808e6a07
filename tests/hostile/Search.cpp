// Looks for attacks that nobody has thought of: inputs of a random head, a unit over and over, and perhaps another head
// and unit behind them. Work that takes far more than four times as long on four times the input is one.
#include "hostile/Search.h"

#include <velmara/HtmlParser.h>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include "hostile/Case.h"
#include "hostile/Measure.h"
#include "hostile/Work.h"

namespace Velmara::Hostile {

namespace {

constexpr size_t _size = 30000;
constexpr double _leastTime = 3e6; // nanoseconds at four times the size: less tells nothing
constexpr double _mostGrowth = 7;  // the machine disturbs; what grows with the square grows by 16

using namespace std::string_view_literals;

// A piece a line would fill pages.
// clang-format off
constexpr std::string_view _markup[] = {
    "<", "<p", "<p>", " a", " b=", " c='", " d=\"", "'", "\"", ">", "/>", "</p>", "<!--", "-->", "--!>", "<!",
    "<!DOCTYPE", "<!DOCTYPE x>", " PUBLIC ", "<?", "<?i>", "<script", "<script>", "</script", "</script>", "<style>",
    "</style>", "<t>", "</t>", "<table>", "<tr>", "<td>", "<body>", "</body>", "<html>", "</html>", "<html/>",
    "<head>", "</head>", "<title>", "</title>", " ", "\n", "&", "&zz;", "&#65;", "&amp;", "<!---->", "<!----> ",
    "<?x>", " <hr>", "x", "<b>", "</b>", "<a href='http://a.example/'>", "</a>", "<img src=x>", "<br/>", "<ul>",
    "<li>", "<select>", "<option>", "<form>", "<input>", "<font color=red>", "<span style='display:none'>", "</span>",
    "<div>", "</div>", "\xE4", "\xC3\xA4", "\0"sv, "a@b.example ", "<base href='http://b.example/'>", "<iframe>",
    "<textarea>", "<![CDATA[", "]]>", "<meta charset=utf-8>",
    "<meta http-equiv=content-type content='text/html; charset=koi8-r'>"};

constexpr std::string_view _mail[] = {
    "a", "1", " ", "\t", "\n", "\r\n", "\r", "\n ", "\r\n\t", ";", ",", ":", "=", "\"", "'", "(", ")", "<", ">", "@",
    ".", "..", "/", "\\", "[", "]", "-", "--", "_", "*", "*0*=", "*1=", "%41", "%", "&", "&amp;", "?", "=?", "?=",
    "=?utf-8?Q?a?=", "=?utf-8?B?YQ==?=", "=?x?Q?", "=?iso-2022-jp?B?GyRC", "=41", "=\n", "\xE4", "\xC3\xA4", "\x1B$B",
    "\x1B(B", "a=b", "charset=", "name=\"a\"", "boundary=a", "filename*0=a", "from a", "by b", "with c", "id d",
    "for <e@f>", "; Mon, 1 Jan 2001 00:00:00 +0000", "<a@b.example>", "a:", "a: b;", "http://a.example/", "https://",
    "www.", "mailto:a@b.example", "ftp://a:b@c/", "//", "a.example", "127.0.0.1", "[::1]", "0x7f", "xn--a",
    "\xE2\x80\x8B", "\xEF\xBB\xBF", "\0"sv, "Content-Type: ", "multipart/mixed; boundary=a\n\n", "--a\n", "--a--\n",
    "Content-Type: message/rfc822\n\n", "Content-Transfer-Encoding: base64\n\n", "begin 644 a\n", "end\n", "`\n",
    "(This file must be converted with BinHex 4.0)\n:", "<a href=", "<p>", "GIF89a", "\x21\xF9\x04",
    "\xFF\xD8\xFF\xE0", "\x89PNG\r\n\x1A\n", "IDAT"};
// clang-format on

void _htmlInUtf8(Input const& input, Sink& sink)
{
    readHtml(input, sink, "utf-8");
}

void _html(Input const& input, Sink& sink)
{
    readHtml(input, sink);
}

void _tokens(Input const& input, Sink& sink)
{
    readTokens(input, sink, "utf-8");
}

struct Kind {
    char const* name;
    void (*work)(Input const& input, Sink& sink);
    bool isMarkup = false;
};

constexpr Kind _kinds[] = {
    {"html", _html, true},
    {"html in UTF-8", _htmlInUtf8, true},
    {"message", analyseMessage},
    {"bodies", readBodies},
    {"texts", collectText},
    {"header block", useHeaderBlock},
    {"Content-Type", readContentType},
    {"Content-Disposition", readDisposition},
    {"Received", readReceived},
    {"References", readReferences},
    {"list header", readListHeader},
    {"List-Id", readListId},
    {"addresses", readAddresses},
    {"header text", readHeaderText},
    {"links", findLinks},
    {"names", readNames},
    {"signatures", sign},
    {"tokens", _tokens},
};

/// What an input is made of.
struct Attack {
    std::string head, unit, secondHead, secondUnit;

    std::string make(size_t size) const
    {
        if (secondUnit.empty()) return counted(size, head, unit, "");
        return counted(size / 2, head, unit, "") + counted(size / 2, secondHead, secondUnit, "");
    }
    std::string shown() const
    {
        std::string text;
        for (std::string const* piece : {&head, &unit, &secondHead, &secondUnit}) {
            text += " [";
            for (char c : *piece) append(text, c);
            text += "]";
        }
        return text;
    }

private:
    static void append(std::string& text, char c)
    {
        char escape[5];
        std::snprintf(escape, sizeof escape, "\\x%02X", static_cast<unsigned>(static_cast<unsigned char>(c)));
        if (c < ' ' || c > '~')
            text += escape;
        else
            text += c;
    }
};

class Search {
public:
    explicit Search(unsigned seed) : m_random(seed) {}

    Kind const& kind() { return _kinds[m_random() % std::size(_kinds)]; }
    Attack attack(Kind const& kind)
    {
        Attack attack;
        attack.unit = some(kind, 1 + m_random() % 3);
        attack.head = some(kind, m_random() % 4);
        if (m_random() % 2 == 0) return attack;
        attack.secondHead = some(kind, m_random() % 3);
        attack.secondUnit = some(kind, 1 + m_random() % 3);
        return attack;
    }

private:
    /// Some pieces; a number now and then, so that no two units are the same.
    std::string some(Kind const& kind, size_t pieces)
    {
        std::string text;
        for (; pieces > 0; --pieces) {
            text += kind.isMarkup ? _markup[m_random() % std::size(_markup)] : _mail[m_random() % std::size(_mail)];
            if (m_random() % 20 == 0) text += "{}";
        }
        return text;
    }

    std::mt19937 m_random;
};

/// Known: what does not end cleanly is read again and again, as results demand.
bool _isReadAgain(std::string const& html)
{
    HTML::Builder builder;
    HTML::Parser parser(builder, true);
    parser.parse(html.data(), static_cast<unsigned>(html.size()), nullptr);
    return !parser.eof();
}

/// Of four times the input; 0 if it takes too little time to tell. Output that grows more counts as more input.
double _growth(Kind const& kind, Attack const& attack)
{
    Run runs[2];
    for (size_t i : {0, 1}) {
        Input const input = Input::ofText(attack.make(_size << (2 * i)));
        if (kind.isMarkup && _isReadAgain(input.text())) return 0;
        runs[i] = leastOf(2, kind.work, input);
    }
    if (runs[1].nanoseconds < _leastTime) return 0;
    double const output = static_cast<double>(runs[1].output + 1) / static_cast<double>(runs[0].output + 1);
    return runs[1].nanoseconds / runs[0].nanoseconds * std::min(1.0, 4 / output);
}

} // namespace

int search(unsigned seed, int seconds)
{
    std::time_t const end = std::time(nullptr) + seconds;
    Search random(seed);
    size_t tried = 0, found = 0;
    for (; std::time(nullptr) < end; ++tried) {
        Kind const& kind = random.kind();
        Attack const attack = random.attack(kind);
        if (_growth(kind, attack) <= _mostGrowth) continue;
        double const growth = _growth(kind, attack); // once more: it may have been the machine
        if (growth <= _mostGrowth) continue;
        ++found;
        std::printf("%s: %.1f times as long for four times%s\n", kind.name, growth, attack.shown().c_str());
        std::fflush(stdout);
    }
    std::printf("seed %u: %zu attacks tried, %zu found\n", seed, tried, found);
    return found == 0 ? 0 : 1;
}

} // namespace Velmara::Hostile
