#include <velmara/EmailAddress.h>

#include <string_view>
#include <tuple>

#include <velmara/Exception.h>

#include "runtime/AddressReader.h"
#include "runtime/Ascii.h"

namespace Velmara {

namespace {

constexpr size_t _none = std::string::npos;

[[noreturn]] void _fail(char const* operation, unsigned int line, std::string const& text)
{
    Exception bad(operation, 5, "EmailAddress", line);
    bad.stringParameter(text);
    throw bad;
}

/// Pieces of a text between separators.
class Cutter {
public:
    Cutter(std::string_view text, std::string_view separators)
        : m_text(text), m_separators(separators), m_lastAngle(text.rfind('>'))
    {}

    bool next(std::string_view& piece)
    {
        if (m_at > m_text.size()) return false;
        size_t const begin = m_at;
        for (bool inAngle = false; m_at < m_text.size(); ++m_at) {
            char const c = m_text[m_at];
            if (c == '"') skipQuoted();
            if (c == '<' && m_lastAngle != std::string_view::npos && m_at < m_lastAngle) inAngle = true;
            if (c == '>') inAngle = false;
            if (!inAngle && isSeparator(c)) break;
        }
        piece = m_text.substr(begin, m_at++ - begin);
        return true;
    }

private:
    bool isSeparator(char c) const
    {
        if (isHeaderSpace(static_cast<unsigned char>(c)) && m_separators.find(' ') != std::string_view::npos)
            return true;
        return m_separators.find(c) != std::string_view::npos;
    }

    /// To its last character. A quote that nothing closes quotes nothing, nor does any behind it.
    void skipQuoted()
    {
        for (size_t i = m_at + 1; m_quotesEnd && i < m_text.size(); ++i) {
            if (m_text[i] == '"') {
                m_at = i;
                return;
            }
            if (m_text[i] == '\\') ++i;
        }
        m_quotesEnd = false;
    }

    std::string_view m_text, m_separators;
    size_t m_lastAngle;
    size_t m_at = 0;
    bool m_quotesEnd = true;
};

/// The last "@" outside quotes.
size_t _lastAt(std::string const& address)
{
    size_t at = _none;
    bool quoted = false;
    for (size_t i = 0; i < address.size(); ++i) {
        if (quoted && address[i] == '\\')
            ++i;
        else if (address[i] == '"')
            quoted = !quoted;
        else if (!quoted && address[i] == '@')
            at = i;
    }
    return at;
}

/// Can stand without angle brackets: outside of them an encoded word would be a name.
bool _isPlain(std::string const& address)
{
    if (address.find("=?") != _none) return false;
    size_t const at = _lastAt(address);
    return at == _none ? isDotted(address, false) : isWellFormedAddress(address, at);
}

bool _needsNoQuotes(std::string_view name)
{
    for (;;) {
        size_t const blank = name.find(' ');
        std::string_view const word = name.substr(0, blank);
        if (!isPhraseWord(word)) return false;
        if (blank == std::string_view::npos) return true;
        name.remove_prefix(blank + 1);
    }
}

std::string _phrase(std::string const& name)
{
    if (_needsNoQuotes(name)) return name;
    std::string quoted = "\"";
    for (char c : name) {
        if (c == '"' || c == '\\') quoted += '\\';
        quoted += c;
    }
    return quoted + '"';
}

} // namespace

EmailAddress::EmailAddress(std::string const& address) : EmailAddress(address, std::string())
{}

EmailAddress::EmailAddress(std::string const& address, std::string const& displayName) : m_address(address)
{
    if (isNull()) return;
    m_displayName = displayName;
    size_t const at = _lastAt(m_address);
    if (at != _none) m_domain = m_address.substr(at + 1);
}

EmailAddress EmailAddress::rfc5322Parse(std::string const& text, bool lenient)
{
    AddressReader reader(text, AddressReader::One);
    EmailAddress first, second;
    bool const found = reader.next(first);
    if (!lenient && (!found || reader.next(second) || reader.isMalformed())) _fail("rfc5322Parse", __LINE__, text);
    return first;
}

std::list<EmailAddress> EmailAddress::rfc5322ParseList(std::string const& text, bool lenient)
{
    AddressReader reader(text, AddressReader::List);
    std::list<EmailAddress> addresses;
    for (EmailAddress address; reader.next(address);) addresses.push_back(address);
    if (!lenient && (addresses.empty() || reader.isMalformed())) _fail("rfc5322ParseList", __LINE__, text);
    return addresses;
}

std::list<EmailAddress> EmailAddress::rfc5322ParseList(std::string const& text, std::string const& separators)
{
    std::list<EmailAddress> addresses;
    Cutter cutter(text, separators);
    EmailAddress address;
    for (std::string_view piece; cutter.next(piece);)
        if (AddressReader(piece, AddressReader::One).next(address)) addresses.push_back(address);
    return addresses;
}

std::list<EmailAddress> EmailAddress::rfc5322ParseList(std::string const& text, char const* separators)
{
    return rfc5322ParseList(text, std::string(separators ? separators : ""));
}

std::string EmailAddress::asString() const
{
    if (!m_displayName.empty()) return _phrase(m_displayName) + " <" + m_address + '>';
    return isNull() || _isPlain(m_address) ? m_address : '<' + m_address + '>';
}

bool EmailAddress::operator==(EmailAddress const& other) const
{
    return m_address == other.m_address && m_displayName == other.m_displayName;
}

bool EmailAddress::operator<(EmailAddress const& other) const
{
    return std::tie(m_address, m_displayName) < std::tie(other.m_address, other.m_displayName);
}

} // namespace Velmara
