// Each vector goes through one of the ways below, from fixed bytes to one line of text. They are chosen
// to meet what differs between installations: the character sets of ICU, how libxml2 mends HTML, the
// rules of the library where a small slip would change a signature. Expected values were worked out by
// hand from the rules; those of signatures are the MD5 of the extract that stands in the line above. Only
// how HTML is mended follows no rule of ours: there stands what libxml2 2.9 does.
#include "SelfTest.h"

#include <algorithm>

#include <libxml/tree.h>

#include <velmara/ContentType.h>
#include <velmara/HasherImpl.h>
#include <velmara/HtmlTxtExtract.h>
#include <velmara/Received.h>
#include <velmara/SharedMimeInfo.h>
#include <velmara/TextHtmlDoc.h>
#include <velmara/Uri.h>
#include <velmara/Utf2lang.h>
#include <velmara/VmaraConv.h>

#include "Hop.h"
#include "PartPath.h"
#include "Shown.h"
#include "Text.h"

namespace VelmaraCommand {
namespace {

using namespace Velmara;
using namespace std::string_literals;

// ---- the ways ---------------------------------------------------------------------------------

Buffer _buffer(std::string const& bytes)
{
    return Buffer(bytes.data(), static_cast<unsigned int>(bytes.size()), true);
}

/// Each line of the input read by itself, the answers with " | " between them.
template <class Read> std::string _eachLine(std::string const& input, Read read)
{
    std::string all;
    for (size_t at = 0; at < input.size();) {
        size_t const end = std::min(input.find('\n', at), input.size());
        all += (at == 0 ? "" : " | ") + read(input.substr(at, end - at));
        at = end + 1;
    }
    return all;
}

/// A message over its own copy of the bytes, parsed to its end.
class Parsed {
public:
    explicit Parsed(std::string const& bytes)
        : m_in(BufferMediaIn(bytes)), m_message(Rfc822Msg::parse(m_in)), root(finishedRootOf(*m_message.get()))
    {}

private:
    MediaIn m_in;
    Ref<Rfc822Msg> m_message;

public:
    PartView const root;
};

/// "multipart@0+55+27(preamble leaf@66+1+4)": position, length of the headers, length of the body.
std::string _treeOf(PartView const& view)
{
    std::string text = nameOf(view.kind);
    if (!hasHeaders(view.kind)) return text;
    text += '@' + std::to_string(view.part->sourcePosition()) + '+' + std::to_string(view.part->hlen()) + '+' +
            std::to_string(view.part->blen());
    std::string inner;
    for (PartView const& child : childrenOf(view)) inner += (inner.empty() ? "" : " ") + _treeOf(child);
    return inner.empty() ? text : text + '(' + inner + ')';
}

std::string _tree(std::string const& message)
{
    return _treeOf(Parsed(message).root);
}

std::string _body(std::string const& message)
{
    std::string body;
    Parsed(message).root.part->body(true).read(body);
    return body;
}

std::string _name(std::string const& value)
{
    return ContentType(value).utf8name();
}

std::string _header(std::string const& value)
{
    return decoded(value);
}

std::string _headers(std::string const& values)
{
    return _eachLine(values, _header);
}

/// Lines of "CHARSET BYTES".
std::string _characterSets(std::string const& lines)
{
    return _eachLine(lines, [](std::string const& line) {
        std::string const charset = line.substr(0, line.find(' '));
        std::string const bytes = line.substr(charset.size() + 1);
        return stringOf(
            VmaraConv::toUtf8(charset, bytes.data(), static_cast<unsigned int>(bytes.size()), 0, true, false));
    });
}

std::string _badUtf8(std::string const& bytes)
{
    Buffer text;
    VmaraConv converter(BufferMediaOut(text), "utf-8", "utf-8", true);
    converter.substitute_unknown(true);
    converter.write(_buffer(bytes));
    converter.end();
    return stringOf(text) + ' ' + std::to_string(converter.ferrCnt());
}

std::string _script(std::string const& text)
{
    Utf2lang script;
    script.proc(text);
    return script.chinese    ? "Chinese"
           : script.japanese ? "Japanese"
           : script.korean   ? "Korean"
           : script.russian  ? "Russian"
                             : "none";
}

std::string _scripts(std::string const& texts)
{
    return _eachLine(texts, _script);
}

std::string _host(std::string const& uri)
{
    HostName const host = Uri(uri).hostname();
    return host.isNull() ? "none" : host.asString();
}

std::string _hosts(std::string const& uris)
{
    return _eachLine(uris, _host);
}

std::string _hop(std::string const& value)
{
    return jsonOf(hopOf(Received(value))).dump();
}

template <class Impl, Hasher::DataType Type> std::string _signature(std::string const& body)
{
    Hasher hasher(new Impl, false);
    hasher.dataType(Type);
    hasher.process(_buffer(body), static_cast<unsigned int>(body.size()));
    return hasher.isValid() ? hasher.digestAsHexString() : "none";
}

constexpr char _database[] = R"(<mime-info xmlns="http://www.freedesktop.org/standards/shared-mime-info">
<mime-type type="application/pdf"><magic priority="50"><match type="string" value="%PDF-" offset="0:1024"/></magic>
<glob pattern="*.pdf"/></mime-type>
<mime-type type="application/zip"><magic priority="40"><match type="string" value="PK\003\004" offset="0"/></magic>
<glob pattern="*.zip"/></mime-type>
<mime-type type="application/vnd.openxmlformats-officedocument.wordprocessingml.document">
<sub-class-of type="application/zip"/><glob pattern="*.docx"/></mime-type></mime-info>)";

/// Lines of "NAME CONTENT"; the answer is the type and its code.
std::string _types(std::string const& lines)
{
    SharedMimeInfoImpl const database(_buffer(_database));
    return _eachLine(lines, [&](std::string const& line) {
        size_t const blank = line.find(' ');
        std::string const type = database.mimeType(_buffer(line.substr(blank + 1)), line.substr(0, blank));
        return type + ' ' + std::to_string(database.type(type));
    });
}

/// Names of the elements in the order in which the parser opens them.
class ElementNames : public HtmlDocVisitor {
public:
    explicit ElementNames(std::string& names) : m_names(names) {}
    void tags(_xmlNode const* node) override
    {
        m_names += (m_names.empty() ? "" : " ") + std::string(reinterpret_cast<char const*>(node->name));
    }

private:
    std::string& m_names;
};

void _parseHtml(TextHtmlDoc& document, HtmlDocVisitor* visitor, std::string const& html)
{
    document.addVisitor(Ref<HtmlDocVisitor>(visitor, false));
    BufferMediaIn in(html);
    document.parse(&in);
}

std::string _elements(std::string const& html)
{
    std::string names;
    TextHtmlDoc document(false);
    _parseHtml(document, new ElementNames(names), html);
    return names;
}

std::string _seen(std::string const& html)
{
    Buffer text;
    TextHtmlDoc document(false);
    _parseHtml(document, new HtmlTxtExtract(&document, 0, BufferMediaOut(text), nullptr), html);
    return stringOf(text);
}

// ---- the vectors ------------------------------------------------------------------------------

/// N bytes, each one more than that before it.
std::string _counted(size_t n, unsigned char first)
{
    std::string bytes;
    while (bytes.size() < n) bytes += static_cast<char>(first++);
    return bytes;
}

struct Vector {
    char const* name;
    std::string (*way)(std::string const& input);
    std::string input;
    char const* expected;
};

std::vector<Vector> _vectorsOfMessages()
{
    return {
        {"tree: the delimiter by its prefix", _tree,
         "Subject: x\nContent-Type: multipart/mixed; boundary=ab\n\npre\n--abcd\n\none\n--ab--\nepi\n",
         "multipart@0+55+27(preamble leaf@66+1+4 epilogue)"},
        {"tree: an outer delimiter ends the inner part", _tree,
         "Content-Type: multipart/mixed; boundary=a\n\n--a\nContent-Type: multipart/x; boundary=b\n\n--b\n\none\n"
         "--a\nContent-Type: message/rfc822\n\nSubject: y\n\ntwo\n--a--\n",
         "multipart@0+43+108(preamble multipart@47+39+9(preamble leaf@90+1+4) message@99+30+16(leaf@129+12+4) "
         "epilogue)"},
        {"body: Quoted-Printable", _body,
         "Content-Transfer-Encoding: quoted-printable\n\nCaf=C3=A9=\r\n!  \r\n=41=4a=\n", "Café!  \r\nAJ"},
        {"body: Base64", _body, "Content-Transfer-Encoding: base64\n\nSGVsbG8s\nIHdvcmxk\n", "Hello, world"},
        {"body: UUEncode", _body, "Content-Transfer-Encoding: x-uuencode\n\nbegin 644 a\n#0V%T\n`\nend\n", "Cat"},
    };
}

std::vector<Vector> _vectorsOfText()
{
    return {
        {"attachment name: RFC 2231 segments", _name, "application/x; name*0*=utf-8''%C3%A9; name*1=b.txt", "éb.txt"},
        {"headers: encoded words", _headers,
         "=?iso-8859-1?Q?Caf=E9?= x\n=?utf-8?B?QUJD?= =?utf-8?B?REVG?=\n=?koi8-r?B?8NLJ18XU?=\n"
         "=?iso-2022-jp?B?GyRCRnxLXBsoQg==?=\n=?gb2312?Q?=D6=D0?=",
         "Café x | ABCDEF | Привет | 日本 | 中"},
        {"character sets", _characterSets,
         "windows-1252 \x80\xE9\niso-8859-15 \xA4\nkoi8-r \xC1\xC2\nwindows-1251 \xE6\nshift_jis \x93\xFA\x96\x7B\n"
         "euc-jp \xC6\xFC\niso-2022-jp \x1B$BF|K\\\x1B(B\nbig5 \xA4\xA4\ngb2312 \xD6\xD0\neuc-kr \xC7\xD1\n"
         "windows-874 \xA1\nutf-7 +AOk-",
         "€é | € | аб | ж | 日本 | 日 | 日本 | 中 | 中 | 한 | ก | é"},
        {"character sets: bad UTF-8", _badUtf8, "a\xC3(b\xFF"s, "a\xEF\xBF\xBD(b\xEF\xBF\xBD 2"},
        {"scripts", _scripts, "日本の\n中国\n한국\nпривет\nhello", "Japanese | Chinese | Korean | Russian | none"},
        {"hosts", _hosts,
         "http://www.bank.example@0x7f.1/login\nhttp://BÜCHER.example/\nhttps:\\\\%77ww.shop.example:80\\x\n"
         "mailto:ann@reader.example\nhttp://[2001:DB8:0:0::1]/\nfile:///x",
         "127.0.0.1 | xn--bcher-kva.example | www.shop.example | reader.example | [2001:db8::1] | none"},
        {"route", _hop,
         "from a.example (b.example [192.0.2.1]) by mx.example with ESMTP id 1; Mon, 1 Jan 2024 00:00:00 +0000",
         R"({"from":"a.example","reverseName":"b.example","address":"192.0.2.1","by":"mx.example","with":"ESMTP",)"
         R"("date":"mon, 1 jan 2024 00:00:00 +0000","time":1704067200})"},
    };
}

std::vector<Vector> _vectorsOfSignatures()
{
    return {
        // "c" 40 times, "d" 40 times, "b" 40 times, "a" 8 times: the lines set aside fill up backwards.
        {"signature: lines of text", _signature<TextHasherPlain, Hasher::DataText>,
         std::string(40, 'a') + '\n' + std::string(40, 'b') + '\n' + std::string(40, 'c') + '\n' +
             std::string(40, 'd') + '\n',
         "2434ccfe387943e8ec13597441d18012"},
        // "buysaleatnow1.2click", "x" 60 times, "owteno".
        {"signature: hosts and addresses of text", _signature<TextHasherPlain, Hasher::DataText>,
         "one\ntwo\nBuy $ALE at www.shop.example now! 10.0.0.1 1.2 C|ICK " + std::string(60, 'x'),
         "c2fae4adf7173383297218954ad5d533"},
        // "buysaleatherenow#33;", "y" 60 times, "owteno".
        {"signature: HTML", _signature<TextHasherHtml, Hasher::DataHtml>,
         "<html><head><title>hidden</title></head><body><p>one</p><p>two</p><p>Buy <b>$ALE</b> at "
         "<a href=\"http://www.shop.example/\">here</a>&nbsp;now&#33;</p><p>" +
             std::string(60, 'y') + "</p>",
         "1017e3cde5ef8134c0af09684166bedc"},
        {"signature: text that is too short", _signature<TextHasherPlain, Hasher::DataText>, std::string(63, 'x'),
         "none"},
        // The bytes 0 to 199.
        {"signature: PNG", _signature<ImageHasherImpl, Hasher::DataPng>,
         "\x89PNG\r\n\x1A\n\0\0\0\1IHDRxcrc.\0\0\0\310IDAT"s + _counted(200, 0) + "crc.",
         "fb7001d34b8e82c9b579be5005d5b0a5"},
        // The bytes 1 to 150, twice.
        {"signature: GIF", _signature<ImageHasherImpl, Hasher::DataGif>,
         "GIF89a\1\0\1\0\0\0\0,\0\0\0\0\1\0\1\0\0\2\226"s + _counted(150, 1) + '\226' + _counted(150, 1) + "\0;"s,
         "943f502b5a1a5680bf701ad34a7c0432"},
        // The bytes 2 to 255, given as GIF.
        {"signature: JPEG under another name", _signature<ImageHasherImpl, Hasher::DataGif>,
         "\xFF\xD8\xFF\xE0\0\4JF\xFF\xDA\0\3x"s + _counted(254, 2), "c295ed7d25a9f3487e50a9246e03f9b7"},
        // 1024 bytes of 0.
        {"signature: binary", _signature<BinaryHasherImpl, Hasher::DataBinary>, std::string(1024, '\0'),
         "0f343b0931126a20f133d67c2b018a3b"},
    };
}

std::vector<Vector> _vectorsOfDocuments()
{
    return {
        {"types", _types, "a.docx %PDF-1.4\na.docx PK\3\4\na.bin PK\3\4\na.pdf \nb hello\nb \1\2\3\4",
         "application/pdf 4 | application/vnd.openxmlformats-officedocument.wordprocessingml.document 10 | "
         "application/zip 15 | application/pdf 4 | text/plain 23 | application/octet-stream 0"},
        {"HTML: elements as they are mended", _elements, "<p>a<b><i>x</b>y</i><table><td>z<p>q</table><option><li>w",
         "html body p b i table td p option li"},
        // The hidden text leaves its colour behind, so that the paragraph makes no line.
        {"HTML: text that a reader sees", _seen,
         "<body>Seen&eacute;<font color=\"#ffffff\">hidden</font><p><font color=black>next<br>last", "Seenénext\nlast"},
    };
}

std::string _given(Vector const& vector)
{
    try {
        return vector.way(vector.input);
    } catch (std::exception const& error) {
        return "threw " + std::string(error.what());
    }
}

} // namespace

std::vector<VectorOutcome> runVectors()
{
    std::vector<VectorOutcome> outcomes;
    for (auto const make : {_vectorsOfMessages, _vectorsOfText, _vectorsOfSignatures, _vectorsOfDocuments})
        for (Vector const& vector : make()) outcomes.push_back({vector.name, vector.expected, _given(vector)});
    return outcomes;
}

} // namespace VelmaraCommand
