#pragma once

#include <algorithm>
#include <string>

#include <velmara/MediaOut.h>
#include <velmara/VmaraConv.h>

/// A second reading of encoded words and of values with them: each mark of each word is searched for in
/// all of the rest, and nothing is remembered.
namespace Velmara::PlainEncodedWord {

/// What a word that cannot be read is refused with.
struct Refused {
    int code;
};

struct Word {
    std::string text, charset, decoded;
    int encoding = 0;
    std::string line; // the one that was read last
};

constexpr char space[] = " \t\r\n";

inline std::string trimmed(std::string const& text)
{
    size_t const first = text.find_first_not_of(space);
    return first == std::string::npos ? "" : text.substr(first, text.find_last_not_of(space) + 1 - first);
}

inline std::string lower(std::string text)
{
    for (char& c : text)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + 32);
    return text;
}

inline bool isEightBit(std::string const& text)
{
    for (char c : text)
        if (c & 0x80) return true;
    return false;
}

/// Groups of four characters up to and with the first that holds padding.
inline std::string fromBase64(std::string const& text)
{
    static std::string const alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string bytes, group;
    for (char c : text) {
        if (c == ' ' || (c >= '\t' && c <= '\r')) continue;
        if (c != '=' && alphabet.find(c) == std::string::npos) throw Refused{5};
        group += c;
        if (group.size() < 4) continue;
        size_t const letters = std::min(group.find('='), size_t(4));
        unsigned bits = 0;
        for (size_t i = 0; i < 4; ++i)
            bits = bits * 64 + (i < letters ? static_cast<unsigned>(alphabet.find(group[i])) : 0);
        for (size_t i = 0; i + 1 < letters; ++i) bytes += static_cast<char>(bits >> (16 - 8 * i) & 0xFF);
        if (letters < 4) return bytes;
        group.clear();
    }
    if (!group.empty()) throw Refused{5};
    return bytes;
}

inline std::string fromQ(std::string const& text)
{
    std::string const digits = "0123456789abcdef";
    std::string bytes;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '_') {
            bytes += ' ';
        } else if (text[i] == '=') {
            std::string const pair = lower(text.substr(i + 1, 2));
            if (pair.size() < 2) throw Refused{5};
            for (char c : pair)
                if (c == '\0' || digits.find(c) == std::string::npos) throw Refused{5};
            bytes += static_cast<char>(digits.find(pair[0]) * 16 + digits.find(pair[1]));
            i += 2;
        } else {
            bytes += text[i];
        }
    }
    return bytes;
}

/// One word, which names its character set, and adds what it holds.
inline void readLine(std::string const& text, Word& word)
{
    word.line = text;
    size_t const end = text.rfind("?=");
    if (text.find("=?") == std::string::npos || end == std::string::npos) throw Refused{2};
    size_t const mark = text.find('?', 2);
    if (mark == std::string::npos) throw Refused{5};
    word.charset = text.substr(2, mark - 2);
    std::string const letter = text.substr(mark + 1, 1);
    if (letter != "b" && letter != "B" && letter != "q" && letter != "Q") throw Refused{5};
    word.encoding = lower(letter) == "b" ? 2 : 1;
    std::string const payload = end > mark + 3 ? text.substr(mark + 3, end - mark - 3) : "";
    word.decoded += word.encoding == 2 ? fromBase64(payload) : fromQ(payload);
}

/// A value, perhaps of several lines; those behind the first are read with too many bytes.
inline void read(std::string const& value, bool crlf, Word& word)
{
    word.text = trimmed(value);
    std::string const& text = word.text;
    if (text.empty()) return;
    std::string const lineEnd = crlf ? "\r\n" : "\n";
    size_t start = 0, end = text.find(lineEnd);
    while (end != std::string::npos) {
        readLine(text.substr(start, end), word);
        start = text.find_first_not_of(space, end);
        end = text.find(lineEnd, start);
    }
    readLine(text.substr(start), word);
}

inline std::string inUtf8(Word const& word)
{
    if (word.decoded.empty() || lower(word.charset) == "utf-8") return word.decoded;
    Buffer out;
    VmaraConv converter(BufferMediaOut(out), word.charset, "UTF-8", false);
    converter.retry_on_failure(true);
    converter.write(reinterpret_cast<uchar_t const*>(word.decoded.data()), static_cast<uint_t>(word.decoded.size()));
    converter.end();
    return std::string(reinterpret_cast<char const*>(out.data()), out.length());
}

/// Where the word that begins here ends.
inline size_t endOf(std::string const& value, size_t begin)
{
    size_t from = begin + 2;
    for (char const* mark : {"?B?", "?b?", "?Q?", "?q?"}) {
        size_t const found = value.find(mark, begin);
        if (found == std::string::npos) continue;
        from = found + 3;
        break;
    }
    size_t const end = value.find("?=", from);
    return end == std::string::npos ? end : end + 2;
}

/// What a word of ASCII alone holds ends at its first NUL.
inline std::string shown(std::string const& text)
{
    return isEightBit(text) ? text : std::string(text.c_str());
}

inline std::string wordsOf(std::string const& value, bool toUtf8)
{
    size_t begin = value.find("=?");
    size_t end = begin == std::string::npos ? begin : endOf(value, begin);
    if (end == std::string::npos) return value;
    std::string out;
    for (size_t last = 0;;) {
        std::string const gap = value.substr(last, begin - last);
        if (last == 0 || gap.find_first_not_of(space) != std::string::npos) out += gap;
        Word word;
        read(value.substr(begin, end - begin), false, word);
        out += shown(toUtf8 ? inUtf8(word) : word.decoded);
        begin = value.find("=?", end);
        if (begin == std::string::npos) return out + value.substr(end);
        last = end;
        end = endOf(value, begin);
        if (end == std::string::npos) return out;
    }
}

/// A whole value; one that cannot be decoded stays as it is.
inline std::string decoded(std::string const& value, bool toUtf8)
{
    try {
        return wordsOf(value, toUtf8);
    } catch (Refused const&) {
        return value;
    }
}

} // namespace Velmara::PlainEncodedWord
