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
#include "runtime/AddressReader.h"

#include <algorithm>
#include <iterator>
#include <string>

#include "runtime/Ascii.h"

namespace Velmara {

namespace {

constexpr size_t _none = std::string::npos;

using Token = AddressScanner::Token;

bool _isSpecial(Token const& token, char c)
{
    return token.kind == AddressScanner::Special && token.text[0] == c;
}

/// Of a literal: mailers fold in it.
std::string _compact(std::string_view literal)
{
    std::string compact;
    std::copy_if(literal.begin(), literal.end(), std::back_inserter(compact),
                 [](unsigned char c) { return c > ' ' && c != 0x7f; });
    return compact;
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

/// The bracket of a literal that nothing closes: with it, what follows could close it after all.
std::string_view _withoutBracket(std::string_view domain)
{
    return domain.substr(std::min(domain.find_first_not_of('['), domain.size()));
}

} // namespace

/// One entry of a list in the making.
class AddressReader::Entry {
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

void AddressReader::Entry::add(Token const& token)
{
    m_comment.clear();
    if (token.kind == AddressScanner::Word && !isPhraseWord(token.text)) m_malformed = true;
    if (m_place == Ahead) {
        if (beginsPiece(token)) beginPiece();
        addToName(token);
        m_nameOnly = token.kind == AddressScanner::Encoded;
    }
    if (!m_nameOnly) addToPiece(token);
}

void AddressReader::Entry::addComment(Token const& token)
{
    if (m_place != Inside && m_comment.empty()) m_comment = trimmed(unquoted(token.text));
}

void AddressReader::Entry::open()
{
    if (m_place == Inside || holdsAddress()) m_malformed = true;
    m_comment.clear();
    clearPiece();
    m_nameOnly = false;
    m_place = Inside;
}

bool AddressReader::Entry::beginsPiece(Token const& token) const
{
    if (m_pieces == 0 || m_nameOnly || token.kind == AddressScanner::Encoded) return true;
    char const last = m_piece.back();
    bool const joined = _isSpecial(token, '@') || _isSpecial(token, '.') || last == '@' || (last == '.' && !m_dotEnds);
    return token.spaceBefore && !joined;
}

void AddressReader::Entry::beginPiece()
{
    keepPiece();
    clearPiece();
    ++m_pieces;
    m_pieceInName = m_name.size();
}

void AddressReader::Entry::clearPiece()
{
    m_piece.clear();
    m_pieceAt = _none;
}

void AddressReader::Entry::keepPiece()
{
    if (m_pieceAt == _none || m_addressAt != _none) return;
    m_address = m_piece;
    m_addressAt = m_pieceAt;
    m_addressInName = m_pieceInName;
}

void AddressReader::Entry::addToName(Token const& token)
{
    if (token.spaceBefore && !m_name.empty()) m_name += ' ';
    m_name += _shown(token);
}

/// Words that stand apart within brackets belong to no well-formed address; they stay apart.
void AddressReader::Entry::addToPiece(Token const& token)
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

void AddressReader::Entry::finish(bool acceptBareWord)
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
    if (!isWellFormedAddress(m_address, m_addressAt)) m_malformed = true;
}

bool AddressReader::next(EmailAddress& address)
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

AddressReader::Token AddressReader::scan(bool encodedWords)
{
    Token const token = m_held ? *m_held : m_scanner.next(encodedWords);
    m_held.reset();
    return token;
}

/// One token; true when the entry is over.
bool AddressReader::read(Entry& entry)
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

bool AddressReader::readAhead(Entry& entry, Token const& token)
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

bool AddressReader::readInside(Entry& entry, Token const& token)
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

bool AddressReader::readBehind(Entry& entry, Token const& token)
{
    if (_isSpecial(token, ',') || _isSpecial(token, ';')) return separator(entry, token);
    if (_isSpecial(token, '>')) {
        entry.setMalformed();
        return false;
    }
    m_held = token;
    return true;
}

bool AddressReader::separator(Entry& entry, Token const& token)
{
    bool const allowed = token.text == ";" ? m_inGroup : m_form == List;
    if (!allowed) m_malformed = true;
    if (token.text == ";") m_inGroup = false;
    return !entry.isEmpty();
}

/// The name of a group is of no use; but an address ahead of a ":" is not lost.
bool AddressReader::beginGroup(Entry& entry)
{
    if (entry.isEmpty() || entry.holdsAddress() || m_inGroup || m_form == One) m_malformed = true;
    if (entry.holdsAddress()) return true;
    m_inGroup = true;
    entry = Entry();
    return false;
}

} // namespace Velmara
