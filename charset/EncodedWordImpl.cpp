#include "charset/EncodedWordImpl.h"

#include <algorithm>

#include <velmara/Exception.h>
#include <velmara/StringOperations.h>
#include <velmara/VmaraConv.h>

#include "runtime/Ascii.h"
#include "runtime/BufferView.h"

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

Buffer _decodeB(std::string_view payload)
{
    Buffer out;
    Buffer(payload.data(), static_cast<unsigned int>(payload.size()), false).decodeBase64(out);
    return out;
}

Buffer _decodeQ(std::string_view payload)
{
    Buffer out(static_cast<int>(payload.size()), 0);
    for (size_t at = 0; at < payload.size(); ++at) {
        if (payload[at] != '=') {
            out.append(static_cast<unsigned char>(payload[at] == '_' ? ' ' : payload[at]));
            continue;
        }
        if (payload.size() - at < 3) throw EncodedWordException(5, __LINE__);
        int const high = hexValue(static_cast<unsigned char>(payload[at + 1]));
        int const low = hexValue(static_cast<unsigned char>(payload[at + 2]));
        if (high < 0 || low < 0) throw EncodedWordException(5, __LINE__);
        out.append(static_cast<unsigned char>(high << 4 | low));
        at += 2;
    }
    return out;
}

} // namespace

EncodedWordImpl::EncodedWordImpl(bool crlf) : m_crlf(crlf)
{}

EncodedWordImpl::~EncodedWordImpl() = default;

void EncodedWordImpl::value(std::string const& text)
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
    try {
        m_decoded.append(readWord(text));
    } catch (Exception const& cause) {
        EncodedWordException refusal(4, __LINE__);
        refusal.stringParameter(std::string(text));
        refusal.cause(cause);
        throw refusal;
    }
}

Buffer EncodedWordImpl::readWord(std::string_view text)
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
    return m_encoding == EncodedWord::EncodingB ? _decodeB(payload) : _decodeQ(payload);
}

Buffer const& EncodedWordImpl::toUtf8()
{
    if (!m_utf8.isEmpty() || m_decoded.isEmpty()) return m_utf8;
    if (stringCompareNoCase(m_charset, "utf-8")) {
        m_utf8 = m_decoded;
        return m_utf8;
    }
    VmaraConv converter(BufferMediaOut(m_utf8), m_charset, "UTF-8", false);
    converter.retry_on_failure(true);
    converter.write(m_decoded);
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
