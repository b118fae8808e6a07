#include "charset/EncodedWordImpl.h"

#include <algorithm>
#include <utility>

#include <velmara/Exception.h>
#include <velmara/StringOperations.h>

#include "charset/VmaraConvImpl.h"
#include "runtime/Ascii.h"

namespace Velmara {

namespace {

/// The lines that null handles report: log processors match on them.
enum _Line : unsigned int {
    LineOfParse = 32,
    LineOfAsString = 46,
    LineOfCharset = 54,
    LineOfEncoding = 62,
    LineOfDecoded = 70,
    LineOfToUtf8 = 79
};

/// How often the bytes of a folded value may be read again; values of mail stay far below.
constexpr size_t _mostReadings = 16;
constexpr size_t _alwaysRead = 16 << 10;

EncodedWord::Encoding _encodingOf(char c)
{
    switch (toLower(static_cast<unsigned char>(c))) {
    case 'b':
        return EncodedWord::EncodingB;
    case 'q':
        return EncodedWord::EncodingQ;
    default:
        throw EncodedWordException(5, __LINE__);
    }
}

/// decodeBase64 replaces the content of its target; only a folded value has content already.
void _appendB(std::string_view payload, Buffer& out)
{
    Buffer const encoded(payload.data(), static_cast<unsigned int>(payload.size()), false);
    if (out.isEmpty()) {
        encoded.decodeBase64(out);
        return;
    }
    Buffer decoded;
    encoded.decodeBase64(decoded);
    out.append(decoded);
}

unsigned char _escaped(std::string_view escape)
{
    if (escape.size() < 3) throw EncodedWordException(5, __LINE__);
    int const high = hexValue(static_cast<unsigned char>(escape[1]));
    int const low = hexValue(static_cast<unsigned char>(escape[2]));
    if (high < 0 || low < 0) throw EncodedWordException(5, __LINE__);
    return static_cast<unsigned char>(high << 4 | low);
}

void _appendQ(std::string_view payload, Buffer& out)
{
    unsigned char part[256];
    unsigned int n = 0;
    for (size_t at = 0; at < payload.size(); ++at) {
        if (n == sizeof part) out.append(part, std::exchange(n, 0));
        char const c = payload[at];
        if (c == '=') {
            part[n++] = _escaped(payload.substr(at));
            at += 2;
        } else {
            part[n++] = static_cast<unsigned char>(c == '_' ? ' ' : c);
        }
    }
    out.append(part, n);
}

} // namespace

EncodedWordImpl::EncodedWordImpl(bool crlf) : m_crlf(crlf)
{}

EncodedWordImpl::~EncodedWordImpl() = default;

void EncodedWordImpl::reset()
{
    m_charset.clear();
    m_encoding = EncodedWord::EncodingNone;
    m_decoded.length(0);
    m_utf8.length(0);
}

void EncodedWordImpl::value(std::string_view text)
{
    m_asString = text;
    stringRightTrim(m_asString);
    stringLeftTrim(m_asString);
    if (m_asString.empty()) return;
    std::string_view const delimiter = m_crlf ? "\r\n" : "\n";
    size_t const end = m_asString.find(delimiter);
    if (end == std::string::npos)
        parseString(m_asString);
    else
        foldedValue(delimiter, end);
}

/// `end` is that of the first line. Where a line ends counts as the number of its bytes, so a later one
/// is read on into what follows it. Folded words that are decoded by this rule are in the statistics
/// that installations exchange, and so are those that are not.
void EncodedWordImpl::foldedValue(std::string_view delimiter, size_t end)
{
    std::string_view const text = m_asString;
    size_t left = std::max(text.size() * _mostReadings, _alwaysRead);
    for (size_t start = 0; start < text.size();) {
        std::string_view const piece = text.substr(start, end);
        // The lines of a hostile value can each be a word that reaches to its end.
        if (piece.size() > left) throw EncodedWordException(4, __LINE__);
        left -= piece.size();
        parseString(piece);
        if (end == std::string_view::npos) return;
        start = std::min(text.find_first_not_of(" \t\r\n", end), text.size());
        end = text.find(delimiter, start);
    }
}

void EncodedWordImpl::parseString(std::string_view text)
{
    unsigned int const before = m_decoded.length();
    try {
        appendWord(text);
    } catch (Exception const& cause) {
        m_decoded.length(before);
        EncodedWordException refusal(4, __LINE__);
        refusal.stringParameter(std::string(text));
        refusal.cause(cause);
        throw refusal;
    }
}

void EncodedWordImpl::appendWord(std::string_view text)
{
    if (text.find("=?") == std::string_view::npos) throw EncodedWordException(2, __LINE__);
    size_t const end = text.rfind("?=");
    if (end == std::string_view::npos) throw EncodedWordException(2, __LINE__);
    // The name starts at index 2 wherever "=?" stands: words come cut out of their value.
    size_t const mark = text.find('?', 2);
    if (mark == std::string_view::npos) throw EncodedWordException(5, __LINE__);
    m_charset = text.substr(2, mark - 2);
    m_encoding = _encodingOf(mark + 1 < text.size() ? text[mark + 1] : '\0');
    size_t const start = mark + 3;
    std::string_view const payload = start < end ? text.substr(start, end - start) : std::string_view();
    m_encoding == EncodedWord::EncodingB ? _appendB(payload, m_decoded) : _appendQ(payload, m_decoded);
}

Buffer const& EncodedWordImpl::toUtf8()
{
    if (!m_utf8.isEmpty() || m_decoded.isEmpty()) return m_utf8;
    if (stringCompareNoCase(m_charset, "utf-8")) {
        m_utf8.append(m_decoded);
        return m_utf8;
    }
    BufferConv converter(m_utf8, m_charset, "UTF-8", false);
    converter.retry_on_failure(true);
    converter.write(m_decoded.data(), m_decoded.length());
    converter.end();
    return m_utf8;
}

EncodedWord::EncodedWord() = default;

EncodedWord::EncodedWord(bool crlf) : m_impl(new EncodedWordImpl(crlf), false)
{}

EncodedWord::EncodedWord(EncodedWord const& other) = default;

EncodedWord& EncodedWord::operator=(EncodedWord const& other) = default;

EncodedWord::~EncodedWord() = default;

bool EncodedWord::isEncodedWord(std::string const& text)
{
    return text.find("=?") != std::string::npos && text.find('?', 2) != std::string::npos &&
           text.find("?=") != std::string::npos;
}

void EncodedWord::parse(std::string const& text)
{
    if (isNull()) throw EncodedWordException(1, LineOfParse);
    m_impl->value(text);
}

std::string const& EncodedWord::asString() const
{
    if (isNull()) throw EncodedWordException(1, LineOfAsString);
    return m_impl->asString();
}

std::string const& EncodedWord::charset() const
{
    if (isNull()) throw EncodedWordException(1, LineOfCharset);
    return m_impl->charset();
}

EncodedWord::Encoding EncodedWord::encoding() const
{
    if (isNull()) throw EncodedWordException(1, LineOfEncoding);
    return m_impl->encoding();
}

Buffer const& EncodedWord::decoded() const
{
    if (isNull()) throw EncodedWordException(1, LineOfDecoded);
    return m_impl->decoded();
}

Buffer const& EncodedWord::toUtf8() const
{
    if (isNull()) throw EncodedWordException(1, LineOfToUtf8);
    return m_impl->toUtf8();
}

} // namespace Velmara
