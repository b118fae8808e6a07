#include "runtime/AddressScanner.h"

#include <algorithm>

#include "runtime/Ascii.h"

namespace Velmara {

namespace {

constexpr size_t _none = std::string_view::npos;

/// Control characters separate: as part of an address they could only cut it short for C programs.
bool _isSpace(char c)
{
    auto const byte = static_cast<unsigned char>(c);
    return byte <= ' ' || byte == 0x7f;
}

bool _isSpecial(char c)
{
    return std::string_view("<>@,;:.").find(c) != _none;
}

bool _endsWord(char c)
{
    return _isSpace(c) || _isSpecial(c) || c == '"' || c == '(' || c == ')';
}

/// Behind the "?" of the encoding, for a text that begins with "=?charset?b?"; else npos.
size_t _encodedTextBegin(std::string_view text)
{
    constexpr size_t longestCharset = 64;
    if (text.substr(0, 2) != "=?") return _none;
    size_t const charsetEnd = text.substr(2, longestCharset + 1).find('?');
    if (charsetEnd == _none || charsetEnd == 0) return _none;
    std::string_view const rest = text.substr(2 + charsetEnd + 1);
    bool const known = rest.size() >= 2 && std::string_view("BbQq").find(rest[0]) != _none && rest[1] == '?';
    return known ? 2 + charsetEnd + 1 + 2 : _none;
}

} // namespace

bool isAtomByte(unsigned char c)
{
    return c >= 0x80 || isAlnum(c) ||
           (c > ' ' && std::string_view("!#$%&'*+-/=?^_`{|}~").find(static_cast<char>(c)) != _none);
}

bool isEncodedWord(std::string_view text)
{
    size_t const begin = _encodedTextBegin(text);
    return begin != _none && std::none_of(text.begin(), text.end(), _isSpace) &&
           text.find("?=", begin) == text.size() - 2;
}

bool isPhraseWord(std::string_view text)
{
    return isEncodedWord(text) || (!text.empty() && std::all_of(text.begin(), text.end(), isAtomByte));
}

bool isDotted(std::string_view part, bool quotesAllowed)
{
    for (size_t at = 0;; ++at) {
        size_t const begin = at;
        if (quotesAllowed && at < part.size() && part[at] == '"') {
            for (++at; at < part.size() && part[at] != '"'; ++at)
                if (part[at] == '\\') ++at;
            at = std::min(at + 1, part.size());
        } else
            while (at < part.size() && isAtomByte(static_cast<unsigned char>(part[at]))) ++at;
        if (at == begin) return false;
        if (at == part.size()) return true;
        if (part[at] != '.') return false;
    }
}

namespace {

bool _isLiteral(std::string_view domain)
{
    return !domain.empty() && domain.front() == '[' && domain.find_first_of("[]<>@,;\" ", 1) == domain.size() - 1 &&
           domain.back() == ']';
}

} // namespace

bool isWellFormedAddress(std::string_view address, size_t at)
{
    if (at == std::string_view::npos) return false;
    std::string_view const domain = address.substr(at + 1);
    return isDotted(address.substr(0, at), true) && (_isLiteral(domain) || isDotted(domain, false));
}

std::string unquoted(std::string_view text)
{
    std::string content;
    text = text.substr(1, text.size() - 2);
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\\' && i + 1 < text.size()) ++i;
        if (!isLineEnd(static_cast<unsigned char>(text[i]))) content += text[i];
    }
    return content;
}

std::string unfolded(std::string_view quoted)
{
    std::string line;
    for (size_t i = 0; i < quoted.size(); ++i) {
        auto const c = static_cast<unsigned char>(quoted[i]);
        bool const escapes = c == '\\' && i + 1 < quoted.size();
        if (escapes && isLineEnd(static_cast<unsigned char>(quoted[i + 1])))
            ++i;
        else if (escapes)
            line.append(quoted.substr(i++, 2));
        else if (!isLineEnd(c))
            line += quoted[i];
    }
    return line;
}

AddressScanner::Token AddressScanner::next(bool encodedWords)
{
    m_space = m_behindComment;
    for (;; skipStray()) {
        m_space = skipSpace() || m_space;
        if (m_at == m_text.size()) return {End, std::string_view(), m_space};
        char const c = m_text[m_at];
        size_t end = _none;
        if (_isSpecial(c)) return take(Special, m_at + 1);
        if (c == '"' && (end = quotedEnd()) != _none) return take(Quoted, end);
        if (c == '(' && (end = commentEnd()) != _none) return take(Comment, end);
        if (c == '[' && (end = literalEnd()) != _none) return take(Literal, end);
        if (c == '=' && encodedWords && (end = encodedWordEnd()) != _none) return take(Encoded, end);
        if (c != '"' && c != '(' && c != ')') return take(Word, wordEnd());
    }
}

AddressScanner::Token AddressScanner::take(Kind kind, size_t end)
{
    Token const token = {kind, m_text.substr(m_at, end - m_at), m_space};
    m_at = end;
    m_behindComment = kind == Comment;
    if (kind != Comment) m_behindAt = token.text == "@";
    return token;
}

bool AddressScanner::skipSpace()
{
    size_t const begin = m_at;
    for (; m_at < m_text.size() && _isSpace(m_text[m_at]); ++m_at)
        if (!isHeaderSpace(static_cast<unsigned char>(m_text[m_at]))) m_stray = true;
    return m_at > begin;
}

/// A parenthesis separates words, a quote does not.
void AddressScanner::skipStray()
{
    m_stray = true;
    if (m_text[m_at] != '"') m_space = true;
    ++m_at;
}

size_t AddressScanner::wordEnd() const
{
    size_t end = m_at + 1;
    while (end < m_text.size() && !_endsWord(m_text[end])) ++end;
    return end;
}

size_t AddressScanner::quotedEnd()
{
    for (size_t i = m_at + 1; m_quotesEnd && i < m_text.size(); ++i) {
        if (m_text[i] == '"') return i + 1;
        if (m_text[i] == '\\') ++i;
    }
    m_quotesEnd = false;
    return _none;
}

size_t AddressScanner::commentEnd()
{
    size_t depth = 0;
    for (size_t i = m_at; m_commentsEnd && i < m_text.size(); ++i) {
        if (m_text[i] == '(') ++depth;
        if (m_text[i] == ')' && --depth == 0) return i + 1;
        if (m_text[i] == '\\') ++i;
    }
    m_commentsEnd = false;
    return _none;
}

/// What looks like another address is not hidden by a bracket.
size_t AddressScanner::literalEnd() const
{
    if (!m_behindAt) return _none;
    size_t const end = m_text.find_first_of("[]<>@,;\"", m_at + 1);
    return end != _none && m_text[end] == ']' ? end + 1 : _none;
}

/// Encoded words may hold any character but white space here: mailers leave commas in them.
size_t AddressScanner::encodedWordEnd()
{
    size_t const length = _encodedTextBegin(m_text.substr(m_at));
    if (length == _none) return _none;
    size_t const begin = m_at + length;
    if (m_marker < begin) m_marker = std::min(m_text.find("?=", begin), m_text.size());
    if (m_blank < begin)
        m_blank = static_cast<size_t>(std::find_if(m_text.begin() + static_cast<long>(m_at), m_text.end(), _isSpace) -
                                      m_text.begin());
    return m_marker < m_blank ? m_marker + 2 : _none;
}

} // namespace Velmara
