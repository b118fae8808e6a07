#include "support/RandomMail.h"

#include <velmara/Buffer.h>

namespace Velmara {

namespace {

struct TextRow {
    char const* charset;
    char const* text; // in that set
};

constexpr TextRow _texts[] = {
    {"us-ascii", "Please call 555-1234 today or look at http://shop.example/offer?id=7, it ends soon.\n"},
    {"utf-8", "Gr\xC3\xBC\xC3\x9F"
              "e aus M\xC3\xBCnchen, der Preis ist 12 \xE2\x82\xAC. \xE4\xBB\x8A\xE6\x97\xA5\n"},
    {"iso-8859-1", "Caf\xE9 \xE0 la carte, na\xEFve fa\xE7"
                   "ade.\n"},
    {"koi8-r", "\xF0\xD2\xC9\xD7\xC5\xD4, \xCD\xC9\xD2!\n"},
    {"shift_jis", "\x93\xFA\x96\x7B\x8C\xEA\x82\xCC\x83\x81\x81\x5B\x83\x8B\n"},
    {"iso-2022-jp", "\x1B$B$3$s$K$A$O\x1B(B\n"},
    {"gb2312", "\xC4\xFA\xBA\xC3\xA3\xAC\xCA\xC0\xBD\xE7\n"},
    {"x-unknown", "bytes \xFF\xFE of no set\n"},
};

constexpr char const* _tags[] = {
    "<p>",
    "</p>",
    "<br>",
    "<b>",
    "</b>",
    "<a href=\"http://evil.example/%41?q=1\">",
    "</a>",
    "<table>",
    "<tr><td bgcolor=red>",
    "</td></tr>",
    "</table>",
    "<font color=\"#ffffff\" size=1>",
    "</font>",
    "<img src=\"cid:a@b\" width=10 height=20>",
    "<!-- note -->",
    "&eacute;&#8364;&amp;",
    "<span style=\"font-size:0;color:rgb(1,2,3)\">",
    "</span>",
    "<meta http-equiv=Content-Type content=\"text/html; charset=iso-8859-1\">",
};

class Writer {
public:
    explicit Writer(unsigned int seed) : m_random(seed) {}

    std::string message()
    {
        return "Received: from mx" + number(9) + ".example (host.example [192.0.2." + number(250) +
               "]) by in.example with ESMTP id x" + number(999) + "; Mon, 2 Mar 2026 10:00:00 +0000\n" +
               "From: =?utf-8?Q?J=C3=B6rg_" + number(99) + "?= <joerg" + number(99) + "@firma.example>\n" +
               "To: Ann <ann@reader.example>, \"B, C\" <b@reader.example>\n" +
               "Subject: =?koi8-r?B?8NLJ18XU?= =?iso-2022-jp?B?GyRCJDMkcyRLJEEkTxsoQg==?= " + number(1000) + "\n" +
               "Message-ID: <" + number(100000) + "@firma.example>\nIn-Reply-To: <1@reader.example>\n" +
               "List-Unsubscribe: <mailto:u@list.example>, <http://list.example/u" + number(99) + ">\n" +
               "List-Id: News <news.list.example>\nMIME-Version: 1.0\n" + entity(0);
    }

private:
    unsigned int below(unsigned int n) { return static_cast<unsigned int>(m_random()) % n; }
    std::string number(unsigned int n) { return std::to_string(below(n)); }

    std::string entity(unsigned int depth)
    {
        unsigned int const kind = below(depth < 3 ? 6 : 4);
        if (kind == 0) return html();
        if (kind == 1) return file();
        if (kind < 4) return plain();
        return kind == 4 ? multipart(depth) : nested(depth);
    }

    std::string multipart(unsigned int depth)
    {
        std::string const boundary = "b" + std::to_string(depth) + "-" + number(1000);
        std::string text = "Content-Type: multipart/mixed; boundary=\"" + boundary + "\"\n\npreamble\n";
        for (unsigned int parts = 1 + below(4); parts-- > 0;) text += "--" + boundary + "\n" + entity(depth + 1) + "\n";
        return below(8) == 0 ? text : text + "--" + boundary + "--\nepilogue\n";
    }

    std::string nested(unsigned int depth)
    {
        return "Content-Type: message/rfc822\n\nSubject: nested " + number(99) + "\n" + entity(depth + 1);
    }

    std::string plain()
    {
        TextRow const& row = _texts[below(sizeof _texts / sizeof *_texts)];
        std::string text;
        for (unsigned int lines = 1 + below(20); lines-- > 0;) text += row.text;
        return encoded("text/plain; charset=" + std::string(row.charset), text);
    }

    std::string html()
    {
        TextRow const& row = _texts[below(3)];
        std::string text = "<html><body bgcolor=white>";
        for (unsigned int tags = 4 + below(60); tags-- > 0;)
            text += std::string(_tags[below(sizeof _tags / sizeof *_tags)]) + (below(2) ? row.text : "word ");
        return encoded("text/html; charset=" + std::string(row.charset), text);
    }

    std::string file()
    {
        static constexpr char const* heads[] = {"GIF89a\x01\x00\x01", "\xFF\xD8\xFF\xE0", "%PDF-1.4\n", "PK\x03\x04"};
        static constexpr char const* types[] = {"image/gif", "image/jpeg", "application/pdf",
                                                "application/octet-stream"};
        std::string bytes = heads[below(4)];
        for (unsigned int n = below(3000); n-- > 0;) bytes += static_cast<char>(below(256));
        return encoded(std::string(types[below(4)]) + "; name*=utf-8''na%C3%AFve" + number(9) + ".pdf", bytes);
    }

    std::string encoded(std::string const& type, std::string const& body)
    {
        std::string const head = "Content-Type: " + type + "\n";
        if (below(3) == 0) return head + "\n" + body;
        std::string text = head + "Content-Disposition: attachment; filename=a" + number(9) +
                           ".txt\nContent-Transfer-Encoding: base64\n\n";
        std::string const line = Buffer(body.data(), static_cast<unsigned int>(body.size()), false).toBase64String();
        for (size_t at = 0; at < line.size(); at += 76) text += line.substr(at, 76) + "\n";
        return text;
    }

    std::mt19937 m_random;
};

} // namespace

std::string randomMail(unsigned int seed)
{
    return Writer(seed).message();
}

} // namespace Velmara
