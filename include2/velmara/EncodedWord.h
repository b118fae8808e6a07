#pragma once

#include <string>

#include <velmara/Buffer.h>
#include <velmara/VMRStaticCharSetFallbacks.h>
#include <velmara/VmaraRefcounted.h>

namespace Velmara {

class EncodedWordImpl;

/// One encoded word (RFC 2047), "=?CHARSET?B-or-Q?TEXT?=", read forgivingly where it is no danger and
/// refused where it is not whole. Header values with words and text go through the functions below.
///
/// Copies share the word, which belongs to one thread at a time. On a null handle every operation throws
/// EncodedWordException (code 1).
class VELMARA_EXPORT EncodedWord {
public:
    /// As the letter between the question marks says; none until a word has been read.
    enum Encoding : int { EncodingNone = 0, EncodingQ = 1, EncodingB = 2 };

    /// A null handle.
    EncodedWord();
    /// An empty word. `crlf` tells how a value that is folded ends its lines: CR LF, or LF.
    explicit EncodedWord(bool crlf);
    EncodedWord(EncodedWord const& other);
    EncodedWord& operator=(EncodedWord const& other);
    ~EncodedWord();

    /// True of a null handle.
    bool isNull() const { return m_impl.isNull(); }

    /// Whether a text may hold a word: "=?", a "?" at index 2 or behind it and "?=" occur, in any order.
    static bool isEncodedWord(std::string const& text);

    /// Reads a value; meant for one value each, for another one is added to what was decoded. Text that
    /// is no word throws EncodedWordException with code 4, the text as string parameter and what was
    /// missed as its cause: code 2 for "=?" or "?=", code 5 for anything between them, or what
    /// Buffer::decodeBase64 throws.
    ///
    /// What stands ahead of "=?" counts as part of the character set's name, but for its first two bytes.
    ///
    /// Limits: lines of a folded value behind the first are read together with as many bytes of the next
    /// lines as stand ahead of them, so most values of three lines and more are refused, and so is each
    /// whose lines would be read many times over.
    void parse(std::string const& text);

    /// The trimmed text that was given.
    std::string const& asString() const;
    std::string const& charset() const;
    Encoding encoding() const;
    /// The bytes, in their character set.
    Buffer const& decoded() const;
    /// Those in UTF-8, made once. Bad bytes vanish; text in UTF-8, or in a set that nobody knows, is
    /// copied as it is.
    Buffer const& toUtf8() const;

private:
    Ref<EncodedWordImpl> m_impl;
};

/// Header values. Each word is decoded, white space between two words goes, and all else stays as it
/// stands. No value fails: one with a word that cannot be decoded comes back whole and undecoded. A word
/// ends at the first "?=" behind its encoding; where a word that follows others has no end, it is lost
/// with all that follows. A decoded word of ASCII alone ends at its first NUL.
///
/// The forms with a buffer append to it; an empty text empties it, and so does a value that comes back
/// undecoded, ahead of that. The cost is that of the text.

/// Words in the character sets that they were written in.
VELMARA_EXPORT Buffer stringDecodeRfc2047(std::string const& text);
VELMARA_EXPORT void stringDecodeRfc2047(std::string const& text, Buffer& out);

/// Words in UTF-8. A text without any word is converted from the first of the fallbacks that reads it
/// without a bad byte; without such a one, or with null, it stays as it is.
VELMARA_EXPORT Buffer stringToUtf8(std::string const& text, VMRStaticCharSetFallbacks const* fallbacks);
VELMARA_EXPORT void stringToUtf8(std::string const& text, Buffer& out, VMRStaticCharSetFallbacks const* fallbacks);

/// Replaces `out` by the text in UTF-8, without fallbacks; empty if that fails.
VELMARA_EXPORT void vmara_decode_subject(std::string const& in, std::string& out);

/// Whether the beginning of a word, with a charset name of 2 to 20 characters, stands in the first 512
/// bytes, up to a NUL. Its end is not looked for.
VELMARA_EXPORT bool vmara_is_Rfc2047_Encoded(std::string const& text);

/// ASCII stays as it is; text with 8-bit bytes becomes one word in Base64, however long.
VELMARA_EXPORT std::string vmara_encode_rfc2047(std::string const& text, std::string const& charset);

} // namespace Velmara

/// These give `dst`, or null if an argument is missing or the text cannot be read. What does not fit is
/// cut off; the text in `dst` always ends with a NUL, and without any room nothing is written.
extern "C" {

/// vmara_encode_rfc2047 with the charset "utf-8", whatever other name than an empty one is given: the
/// callers' names are those of the page that they show, but their text is UTF-8. An empty `src` gives null.
VELMARA_EXPORT char* vmara_encode_word(char const* src, char* dst, int len, char const* charset);
/// stringDecodeRfc2047.
VELMARA_EXPORT char* vmara_decode_encoded_word(char const* src, void* dst, unsigned int size);
/// stringToUtf8 without fallbacks.
VELMARA_EXPORT char* vmara_to_utf8(char const* src, void* dst, unsigned int size);

} // extern "C"

namespace Velmara {
using ::vmara_decode_encoded_word;
using ::vmara_encode_word;
using ::vmara_to_utf8;
} // namespace Velmara
