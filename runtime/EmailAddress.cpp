// One pass over the tokens builds one address at a time. Ahead of a "<" nobody can know whether a
// token belongs to a name or to an address, so it is added to both: to the name as it reads, and to
// the current piece as an address is written, without the white space around its dots and its "@". A
// piece ends where a word follows another. When the entry is over, the content of the brackets is the
// address and the text ahead of them the name; without brackets the first piece with an "@" is the
// address and what stood ahead of it the name:
//
//     "Doe, J." <j@a.example>         j@a.example   Doe, J.
//     Jane Doe j@a.example            j@a.example   Jane Doe
//     j @ a . example (Jane (JD))     j@a.example   Jane (JD)
//     friends: a@a.example, b@b.example;   two addresses without a name
#include <velmara/EmailAddress.h>

#include <algorithm>
#include <iterator>
#include <optional>
#include <string_view>
#include <tuple>

#include <velmara/Exception.h>

#include "runtime/AddressScanner.h"
#include "runtime/Ascii.h"

namespace Velmara {

namespace {

constexpr size_t _none = std::string::npos;

using Token = AddressScanner::Token;

bool _isSpecial(Token const& token, char c)
{
    return token.kind == AddressScanner::Special && token.text[0] == c;
}

/// Words with dots between them, as the local part and the domain of a well-formed address are.
bool _isDotted(std::string_view part, bool quotesAllowed)
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

bool _isLiteral(std::string_view domain)
{
    return !domain.empty() && domain.front() == '[' && domain.find_first_of("[]<>@,;\" ", 1) == domain.size() - 1 &&
           domain.back() == ']';
}

/// Of a phrase, without quotes.
bool _isWord(std::string_view text)
{
    return isEncodedWord(text) || (!text.empty() && std::all_of(text.begin(), text.end(), isAtomByte));
}

bool _isWellFormed(std::string_view address, size_t at)
{
    if (at == _none) return false;
    std::string_view const domain = address.substr(at + 1);
    return _isDotted(address.substr(0, at), true) && (_isLiteral(domain) || _isDotted(domain, false));
}

/// Of a literal: mailers fold in it.
std::string _compact(std::string_view literal)
{
    std::string compact;
    std::copy_if(literal.begin(), literal.end(), std::back_inserter(compact),
                 [](unsigned char c) { return c > ' ' && c != 0x7f; });
    return compact;
}

/// One entry of a list in the making.
class Entry {
public:
    enum Place { Ahead, Inside, Behind }; // of the angle brackets; Ahead where there are none

    Place place() const { return m_place; }
    bool isEmpty() const { return m_place == Ahead && m_pieces == 0; }
    bool holdsAddress() const { return m_addressAt != _none || m_pieceAt != _none; }
    /// A word of a name, or of an address.
    void add(Token const& token);
    void addComment(Token const& token);

    void open();
    void close() { m_place = Behind; }
    bool inRoute() const { return !m_piece.empty() && m_piece[0] == '@'; }
    /// At the ":" behind it.
    void dropRoute() { clearPiece(); }

    void setMalformed() { m_malformed = true; }
    /// Decides what is the address and what the name. A bare word is an address on demand.
    void finish(bool acceptBareWord);

    // valid once finished
    bool isNull() const { return m_address.empty(); }
    bool isMalformed() const { return m_malformed; }
    EmailAddress result() const { return EmailAddress(m_address, m_name); }

private:
    bool beginsPiece(Token const& token) const;
    void beginPiece();
    void clearPiece();
    void keepPiece();
    void addToName(Token const& token);
    void addToPiece(Token const& token);

    Place m_place = Ahead;
    bool m_malformed = false;

    std::string m_name;       // all that stands ahead of the brackets, as it reads
    std::string m_piece;      // the current piece, or the content of the brackets
    size_t m_pieceAt = _none; // its last "@"
    size_t m_pieceInName = 0; // where it begins in the name
    size_t m_pieces = 0;      // begun ahead of the brackets
    bool m_nameOnly = false;  // the piece is an encoded word, of which nothing is part of an address
    bool m_dotEnds = false;   // the piece ends in the dot of an abbreviation ("Q. Public")
    std::string m_comment;    // what only other comments follow

    std::string m_address; // the first piece with an "@", in the end the address
    size_t m_addressAt = _none;
    size_t m_addressInName = 0;
};

void Entry::add(Token const& token)
{
    m_comment.clear();
    if (token.kind == AddressScanner::Word && !_isWord(token.text)) m_malformed = true;
    if (m_place == Ahead) {
        if (beginsPiece(token)) beginPiece();
        addToName(token);
        m_nameOnly = token.kind == AddressScanner::Encoded;
    }
    if (!m_nameOnly) addToPiece(token);
}

void Entry::addComment(Token const& token)
{
    if (m_place != Inside && m_comment.empty()) m_comment = trimmed(unquoted(token.text));
}

void Entry::open()
{
    if (m_place == Inside || holdsAddress()) m_malformed = true;
    m_comment.clear();
    clearPiece();
    m_nameOnly = false;
    m_place = Inside;
}

bool Entry::beginsPiece(Token const& token) const
{
    if (m_pieces == 0 || m_nameOnly || token.kind == AddressScanner::Encoded) return true;
    char const last = m_piece.back();
    bool const joined = _isSpecial(token, '@') || _isSpecial(token, '.') || last == '@' || (last == '.' && !m_dotEnds);
    return token.spaceBefore && !joined;
}

void Entry::beginPiece()
{
    keepPiece();
    clearPiece();
    ++m_pieces;
    m_pieceInName = m_name.size();
}

void Entry::clearPiece()
{
    m_piece.clear();
    m_pieceAt = _none;
}

void Entry::keepPiece()
{
    if (m_pieceAt == _none || m_addressAt != _none) return;
    m_address = m_piece;
    m_addressAt = m_pieceAt;
    m_addressInName = m_pieceInName;
}

std::string _shown(Token const& token)
{
    switch (token.kind) {
    case AddressScanner::Quoted:
        return unquoted(token.text);
    case AddressScanner::Literal:
        return _compact(token.text);
    default:
        return std::string(token.text);
    }
}

void Entry::addToName(Token const& token)
{
    if (token.spaceBefore && !m_name.empty()) m_name += ' ';
    m_name += _shown(token);
}

/// The bracket of a literal that nothing closes: with it, what follows could close it after all.
std::string_view _withoutBracket(std::string_view domain)
{
    return domain.substr(std::min(domain.find_first_not_of('['), domain.size()));
}

/// Words that stand apart within brackets belong to no well-formed address; they stay apart.
void Entry::addToPiece(Token const& token)
{
    bool const special = token.kind == AddressScanner::Special;
    bool const apart =
        token.spaceBefore && !special && !m_piece.empty() && m_piece.back() != '@' && m_piece.back() != '.';
    if (apart) m_piece += ' ';
    if (_isSpecial(token, '@')) m_pieceAt = m_piece.size();
    m_dotEnds = m_pieces > 1 && !token.spaceBefore && m_pieceAt == _none;
    if (token.kind == AddressScanner::Quoted)
        m_piece += unfolded(token.text);
    else if (token.kind == AddressScanner::Word && !m_piece.empty() && m_piece.back() == '@')
        m_piece += _withoutBracket(token.text);
    else
        m_piece += _shown(token);
}

void Entry::finish(bool acceptBareWord)
{
    if (m_place == Inside) m_malformed = true;
    if (m_place == Ahead && m_pieces != 1) m_malformed = true;
    keepPiece();
    bool const bare = m_place == Ahead && m_addressAt == _none;
    bool const bareWord = bare && m_pieces == 1 && m_piece.find('"') == _none; // in quotes it is a name
    if (m_place != Ahead || (bareWord && acceptBareWord)) {
        m_address = m_piece;
        m_addressAt = m_pieceAt;
    }
    if (m_place == Ahead) m_name.erase(bare ? 0 : m_addressInName);
    if (m_address == "@") {
        m_address.clear();
        m_addressAt = _none;
    }
    if (m_name.empty()) m_name = m_comment;
    if (!_isWellFormed(m_address, m_addressAt)) m_malformed = true;
}

/// Gives the addresses of a text one by one.
class Reader {
public:
    enum Form { One, List };

    Reader(std::string_view text, Form form) : m_scanner(text), m_form(form) {}

    /// False at the end.
    bool next(EmailAddress& address);
    bool isMalformed() const { return m_malformed || m_inGroup || m_scanner.foundStray(); }

private:
    Token scan(bool encodedWords);
    bool read(Entry& entry);
    bool readAhead(Entry& entry, Token const& token);
    bool readInside(Entry& entry, Token const& token);
    bool readBehind(Entry& entry, Token const& token);
    bool separator(Entry& entry, Token const& token);
    bool beginGroup(Entry& entry);

    AddressScanner m_scanner;
    Form m_form;
    bool m_ended = false;
    bool m_inGroup = false;
    bool m_malformed = false;
    std::optional<Token> m_held; // begins an entry without a separator
};

bool Reader::next(EmailAddress& address)
{
    while (!m_ended) {
        bool const separated = !m_held;
        Entry entry;
        while (!read(entry)) continue;
        if (entry.isEmpty()) continue;
        // Words behind an address, as in "<a@a.example> (on behalf of) us", are no further address.
        entry.finish(separated);
        if (entry.isMalformed() || !separated) m_malformed = true;
        if (entry.isNull()) continue;
        address = entry.result();
        return true;
    }
    return false;
}

Token Reader::scan(bool encodedWords)
{
    Token const token = m_held ? *m_held : m_scanner.next(encodedWords);
    m_held.reset();
    return token;
}

/// One token; true when the entry is over.
bool Reader::read(Entry& entry)
{
    Token const token = scan(entry.place() != Entry::Inside);
    m_ended = token.kind == AddressScanner::End;
    if (m_ended) return true;
    if (token.kind == AddressScanner::Comment) {
        entry.addComment(token);
        return false;
    }
    switch (entry.place()) {
    case Entry::Ahead:
        return readAhead(entry, token);
    case Entry::Inside:
        return readInside(entry, token);
    default:
        return readBehind(entry, token);
    }
}

bool Reader::readAhead(Entry& entry, Token const& token)
{
    if (_isSpecial(token, ',') || _isSpecial(token, ';')) return separator(entry, token);
    if (_isSpecial(token, ':')) return beginGroup(entry);
    if (_isSpecial(token, '<'))
        entry.open();
    else if (_isSpecial(token, '>'))
        entry.setMalformed();
    else
        entry.add(token);
    return false;
}

bool Reader::readInside(Entry& entry, Token const& token)
{
    if (_isSpecial(token, '>'))
        entry.close();
    else if (_isSpecial(token, '<'))
        entry.open();
    else if (_isSpecial(token, ':') && entry.inRoute())
        entry.dropRoute();
    else if (_isSpecial(token, ',') && m_form == List && !entry.inRoute())
        return true; // a list goes on there: the bracket was forgotten
    else
        entry.add(token);
    return false;
}

bool Reader::readBehind(Entry& entry, Token const& token)
{
    if (_isSpecial(token, ',') || _isSpecial(token, ';')) return separator(entry, token);
    if (_isSpecial(token, '>')) {
        entry.setMalformed();
        return false;
    }
    m_held = token;
    return true;
}

bool Reader::separator(Entry& entry, Token const& token)
{
    bool const allowed = token.text == ";" ? m_inGroup : m_form == List;
    if (!allowed) m_malformed = true;
    if (token.text == ";") m_inGroup = false;
    return !entry.isEmpty();
}

/// The name of a group is of no use. An address ahead of a ":" is none.
bool Reader::beginGroup(Entry& entry)
{
    if (entry.isEmpty() || entry.holdsAddress() || m_inGroup || m_form == One) m_malformed = true;
    if (entry.holdsAddress()) return true;
    m_inGroup = true;
    entry = Entry();
    return false;
}

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
    return at == _none ? _isDotted(address, false) : _isWellFormed(address, at);
}

bool _needsNoQuotes(std::string_view name)
{
    for (;;) {
        size_t const blank = name.find(' ');
        std::string_view const word = name.substr(0, blank);
        if (!_isWord(word)) return false;
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
    Reader reader(text, Reader::One);
    EmailAddress first, second;
    bool const found = reader.next(first);
    if (!lenient && (!found || reader.next(second) || reader.isMalformed())) _fail("rfc5322Parse", __LINE__, text);
    return first;
}

std::list<EmailAddress> EmailAddress::rfc5322ParseList(std::string const& text, bool lenient)
{
    Reader reader(text, Reader::List);
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
        if (Reader(piece, Reader::One).next(address)) addresses.push_back(address);
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
