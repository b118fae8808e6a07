// libxml2 compares each attribute of a tag with all before it, so a tag of 135 KB takes it many
// seconds. What it gets has at most 1024 attributes a tag. Blanks take the place of the others, so that
// every byte behind them keeps its position, which decides where a further document begins.
//
// For that the document is cut into tags just as libxml2 cuts it: comments end at "-->" or "--!>",
// "<?" at ">", an element name has at most 100 bytes and what follows it is an attribute, "<script" hides
// tags up to "</script". A tag inside a comment is none, and `<p a=">" b>` is one tag with two
// attributes. The cost is one look at each byte.
//
// It reads bytes, so it cannot see tags in UTF-16 or in another set that is not built on ASCII, be it
// the one that is declared from outside (`keepsTags`) or one that the document itself asks for
// (`certain`). Nor can it tell which bytes above 127 are letters, on which it depends where a document
// type or an instruction ends. The parser then bounds the number of names in a coarser way.
#include "html/AttributeLimit.h"

#include <algorithm>

#include "runtime/Ascii.h"

namespace Velmara {
namespace HTML {

namespace {

constexpr size_t _longestName = 100; // libxml2's buffer for a name

/// Heads of the names of sets that are built on ASCII.
constexpr std::string_view _asciiSets[] = {"utf-8",     "utf8",      "us-ascii", "ascii",    "iso-8859-", "iso8859-",
                                           "iso_8859-", "windows-",  "cp125",    "cp-125",   "latin",     "koi8-",
                                           "gb2312",    "gbk",       "gb18030",  "big5",     "euc-",      "shift_jis",
                                           "tis-620",   "ks_c_5601", "x-sjis",   "macintosh"};

bool _startsWith(std::string_view text, std::string_view head)
{
    return text.size() >= head.size() && sameNoCase(text.substr(0, head.size()), head);
}

constexpr bool _isNameStart(unsigned char c)
{
    return isAlpha(c) || c == '_' || c == ':' || c == '.';
}

struct ByteTable {
    bool holds[256];
};

constexpr ByteTable _tableOfNameBytes()
{
    ByteTable table{};
    for (unsigned c = 0; c < 256; ++c) {
        auto const byte = static_cast<unsigned char>(c);
        table.holds[c] = _isNameStart(byte) || isDigit(byte) || byte == '-';
    }
    return table;
}
constexpr ByteTable _nameBytes = _tableOfNameBytes();

bool _isNameByte(unsigned char c)
{
    return _nameBytes.holds[c];
}

/// Walks the tags of a document. A NUL ends a tag, as the end of the document does.
class Tags {
public:
    Tags(std::string_view document, size_t limit, AttributeLimit& result)
        : m_text(document), m_limit(limit), m_result(result)
    {}

    void walk()
    {
        while (m_at < m_text.size()) {
            size_t const open = m_text.find('<', m_at);
            if (open == std::string_view::npos) return;
            m_at = open + 1;
            readMarkup();
        }
    }

private:
    unsigned char peek(size_t ahead = 0) const
    {
        return m_text.size() - m_at > ahead ? static_cast<unsigned char>(m_text[m_at + ahead]) : 0;
    }
    std::string_view rest() const { return m_text.substr(m_at); }
    void skip(size_t n) { m_at += std::min(n, m_text.size() - m_at); }
    void skipBlanks()
    {
        while (isHeaderSpace(peek())) ++m_at;
    }

    /// To the first such byte, or NUL, or the end.
    void skipTo(char byte)
    {
        if (m_nul < m_at) m_nul = std::min(m_text.find('\0', m_at), m_text.size());
        m_at = std::min(m_text.substr(0, m_nul).find(byte, m_at), m_nul);
    }

    void doubt()
    {
        if (m_text.size() > harmlessSize) m_result.certain = false;
    }

    void readMarkup()
    {
        if (isAlpha(peek())) return readStartTag();
        if (peek() == '/') return readEndTag();
        if (_startsWith(rest(), "!--")) return readComment();
        if (_startsWith(rest(), "!doctype")) return readDocumentType();
        if (peek() == '?') return readInstruction();
    }

    void readComment()
    {
        skip(3);
        for (size_t dashes; (dashes = m_text.find("--", m_at)) != std::string_view::npos; m_at = dashes + 1) {
            std::string_view const behind = m_text.substr(dashes + 2, 2);
            if (behind.substr(0, 1) == ">" || behind == "!>") {
                m_at = dashes + (behind[0] == '>' ? 3 : 4);
                return;
            }
        }
        m_at = m_text.size();
    }

    void readLiteral()
    {
        skipBlanks();
        if (peek() == '"' || peek() == '\'') skipQuoted();
    }

    void skipQuoted()
    {
        unsigned char const quote = peek();
        skip(1);
        skipTo(static_cast<char>(quote));
        if (peek() == quote) skip(1);
    }

    /// libxml2 takes letters of any language here. False where no name can begin.
    bool skipName()
    {
        if (!isAlpha(peek()) && peek() != '_' && peek() != ':' && peek() < 0x80) return false;
        for (; _isNameByte(peek()) || peek() >= 0x80; ++m_at)
            if (peek() >= 0x80) doubt();
        return true;
    }

    void readDocumentType()
    {
        skip(8);
        skipBlanks();
        skipName();
        skipBlanks();
        bool const isPublic = _startsWith(rest(), "public");
        if (isPublic || _startsWith(rest(), "system")) {
            skip(6);
            readLiteral();
            if (isPublic) readLiteral();
        }
        skipTo('>');
    }

    void readInstruction()
    {
        skip(1);
        if (skipName()) m_at = std::min(m_text.find('>', m_at), m_text.size());
    }

    std::string_view readName()
    {
        if (!_isNameStart(peek())) return {};
        std::string_view const most = m_text.substr(m_at, _longestName);
        size_t n = 1;
        while (n < most.size() && _isNameByte(static_cast<unsigned char>(most[n]))) ++n;
        m_at += n;
        return most.substr(0, n);
    }

    void readEndTag()
    {
        skip(1);
        if (!readName().empty()) skipTo('>');
    }

    bool inTag() const { return peek() != 0 && peek() != '>' && !(peek() == '/' && peek(1) == '>'); }

    void readValue()
    {
        if (peek() == '"' || peek() == '\'') return skipQuoted();
        while (peek() != 0 && peek() != '>' && !isHeaderSpace(peek())) ++m_at;
    }

    /// False for bytes that are no attribute, which libxml2 passes over.
    bool readAttribute()
    {
        if (readName().empty()) {
            while (inTag() && !isHeaderSpace(peek())) ++m_at;
            return false;
        }
        skipBlanks();
        if (peek() == '=') {
            skip(1);
            skipBlanks();
            readValue();
        }
        return true;
    }

    void readStartTag()
    {
        size_t const start = m_at;
        std::string_view const element = readName();
        size_t count = 0, extra = 0;
        for (skipBlanks(); inTag(); skipBlanks()) {
            size_t const before = m_at;
            if (readAttribute() && ++count == m_limit + 1) extra = before;
        }
        if (extra != 0) blank(extra, m_at);
        // A reference can spell "charset" in a way that only libxml2 reads.
        if (sameNoCase(element, "meta") && m_text.substr(start, m_at - start).find('&') != std::string_view::npos)
            doubt();
        if (peek() == '>' && (sameNoCase(element, "script") || sameNoCase(element, "style"))) skipScript(element);
    }

    void blank(size_t from, size_t to)
    {
        if (m_result.blanked.empty()) m_result.blanked = m_text;
        std::fill(m_result.blanked.begin() + from, m_result.blanked.begin() + to, ' ');
    }

    /// An end tag whose name only begins like the element's does not end the script.
    void skipScript(std::string_view element)
    {
        while ((m_at = m_text.find("</", m_at)) != std::string_view::npos) {
            skip(2);
            if (!_startsWith(rest(), element)) continue;
            bool const ends = sameNoCase(readName(), element);
            skipTo('>');
            if (ends) return;
        }
        m_at = m_text.size();
    }

    std::string_view m_text;
    size_t m_limit;
    AttributeLimit& m_result;
    size_t m_at = 0;
    size_t m_nul = 0; // the first NUL from m_at on, or the size; valid unless it lies ahead of m_at
};

/// Whether every character set that the document names is built on ASCII.
bool _namesOnlyAsciiSets(std::string_view document)
{
    constexpr std::string_view word = "charset";
    for (size_t at = 0; at < document.size(); ++at) {
        if (toLower(static_cast<unsigned char>(document[at])) != 'c') continue;
        if (!_startsWith(document.substr(at), word)) continue;
        size_t const name = document.find_first_not_of(" \t\r\n\"'=:", at + word.size());
        if (name != std::string_view::npos && !keepsTags(document.substr(name))) return false;
    }
    return true;
}

} // namespace

AttributeLimit::AttributeLimit(std::string_view document, size_t limit)
    : certain(document.size() <= harmlessSize || _namesOnlyAsciiSets(document))
{
    // An attribute takes two bytes at least.
    if (document.size() / 2 > limit) Tags(document, limit, *this).walk();
}

bool keepsTags(std::string_view characterSet)
{
    return std::any_of(std::begin(_asciiSets), std::end(_asciiSets),
                       [&](std::string_view head) { return _startsWith(characterSet, head); });
}

} // namespace HTML
} // namespace Velmara
