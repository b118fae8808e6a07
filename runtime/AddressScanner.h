#pragma once

#include <string>
#include <string_view>

namespace Velmara {

/// The lexical tokens of address headers (RFC 5322, section 3.2), for any text, in linear time.
///
/// Whatever has no partner is no token: a quote or bracket that nothing closes is passed over, and so
/// are all of its kind behind it. That keeps what follows readable and spares a second search for the
/// partner. A domain literal is looked for behind "@" only, so subjects such as "[list]" are words.
class AddressScanner {
public:
    enum Kind { End, Word, Encoded, Quoted, Comment, Literal, Special };
    struct Token {
        Kind kind;
        std::string_view text; // with its quotes or brackets; of Special one of "<>@,;:."
        bool spaceBefore;      // white space or a comment
    };

    explicit AddressScanner(std::string_view text) : m_text(text) {}

    /// Encoded words belong to names; within an address what looks like one is a word.
    Token next(bool encodedWords);
    /// Something so far was no token, or a byte that no token may hold.
    bool foundStray() const { return m_stray; }

private:
    bool skipSpace();
    void skipStray();
    Token take(Kind kind, size_t end);
    size_t wordEnd() const;
    size_t quotedEnd();
    size_t commentEnd();
    size_t literalEnd() const;
    size_t encodedWordEnd();

    std::string_view m_text;
    size_t m_at = 0;
    bool m_space = false; // ahead of m_at
    bool m_behindAt = false, m_behindComment = false;
    bool m_stray = false;
    bool m_quotesEnd = true, m_commentsEnd = true; // false: none does from here on
    size_t m_marker = 0, m_blank = 0;              // the next "?=" and white space, where they are ahead of m_at
};

/// A byte of RFC 5322's atoms, or of UTF-8.
bool isAtomByte(unsigned char c);
/// A whole "=?charset?encoding?text?=".
bool isEncodedWord(std::string_view text);
/// What a name without quotes consists of.
bool isPhraseWord(std::string_view text);
/// Words with dots between them, as the local part and the domain of a well-formed address are.
bool isDotted(std::string_view part, bool quotesAllowed);
/// `at`: the place of the "@" that ends the local part, npos without one.
bool isWellFormedAddress(std::string_view address, size_t at);

/// The content of a quoted string or comment: without its ends, line ends and the back slashes of escapes.
std::string unquoted(std::string_view text);
/// A quoted string with its ends and escapes, without line ends.
std::string unfolded(std::string_view quoted);

} // namespace Velmara
