// Header values with encoded words. The walk goes from word to word: text between two words is copied,
// white space alone is not, and each word is decoded. Where a word ends is the difficult part, for its
// text may hold "?": the first "?=" behind its encoding ends it. The encoding is found by looking for
// "?B?", then "?b?", "?Q?" and "?q?" in all of the rest, so the "?B?" of a later word wins over the
// word's own "?Q?". Clients show it otherwise, but what is decoded feeds statistics that installations
// exchange.
//
// The search is linear all the same: where each mark stands next is remembered until the walk has passed
// it. `=?a?Q?b?= c =?a?B?Yg==?=` thus has one word, from the first "=?" to the end; it cannot be decoded,
// and the value comes back as it is.
#include <velmara/EncodedWord.h>

#include <algorithm>
#include <cstring>

#include <velmara/Exception.h>
#include <velmara/Logger.h>
#include <velmara/StringOperations.h>
#include <velmara/VmaraConv.h>

#include "charset/EncodedWordImpl.h"
#include "runtime/Ascii.h"
#include "runtime/BufferView.h"

namespace Velmara {

namespace {

constexpr unsigned int _undecodable = 0x3000024; // what log processors match on
constexpr size_t _none = std::string_view::npos;

constexpr char _markLetters[] = {'B', 'b', 'Q', 'q'}; // "?B?" and so on, in the order of their weight
constexpr size_t _markCount = sizeof _markLetters;
constexpr size_t _markLength = 3;

/// Which mark stands at the front of a text that begins with "?"; `_markCount` if none does.
size_t _markAt(std::string_view text)
{
    if (text.size() < _markLength || text[2] != '?') return _markCount;
    return static_cast<size_t>(std::find(_markLetters, _markLetters + _markCount, text[1]) - _markLetters);
}

/// Finds the words of a value, front to back.
class _Words {
public:
    explicit _Words(std::string_view text) : m_text(text)
    {
        std::fill_n(m_next, _markCount, _none);
        size_t missing = _markCount;
        for (size_t at = text.find('?'); at != _none && missing != 0; at = text.find('?', at + 1)) {
            size_t const mark = _markAt(text.substr(at));
            if (mark == _markCount || m_next[mark] != _none) continue;
            m_next[mark] = at;
            --missing;
        }
    }

    /// Where the next word begins at or after `from`; `_none` if there is none.
    size_t beginFrom(size_t from) const { return m_text.find("=?", from); }
    /// Where the word that begins at `begin` ends; `_none` if it has no end.
    size_t endOf(size_t begin)
    {
        size_t const close = m_text.find("?=", payloadOf(begin));
        return close == _none ? _none : close + 2;
    }

private:
    size_t payloadOf(size_t begin)
    {
        for (size_t i = 0; i < _markCount; ++i) {
            size_t& next = m_next[i];
            if (next != _none && next < begin) next = markFrom(i, begin);
            if (next != _none) return next + _markLength;
        }
        return begin + 2;
    }

    size_t markFrom(size_t mark, size_t from) const
    {
        size_t at = m_text.find('?', from);
        while (at != _none && _markAt(m_text.substr(at)) != mark) at = m_text.find('?', at + 1);
        return at;
    }

    std::string_view const m_text;
    size_t m_next[_markCount]; // where each mark stands next, as far as the walk has come
};

bool _isEightBit(std::string_view text)
{
    char any = 0;
    for (char c : text) any = static_cast<char>(any | c);
    return any < 0;
}

bool _isSpace(std::string_view text)
{
    return std::all_of(text.begin(), text.end(), [](char c) { return isHeaderSpace(static_cast<unsigned char>(c)); });
}

void _appendDecoded(EncodedWordImpl& decoder, std::string_view word, bool toUtf8, Buffer& out)
{
    decoder.reset();
    decoder.value(word);
    std::string_view const text = viewOf(toUtf8 ? decoder.toUtf8() : decoder.decoded());
    // ASCII was handed on as a C string: names with a NUL in them are known by what stands ahead of it.
    append(out, _isEightBit(text) ? text : untilNul(text));
}

void _appendWords(_Words& words, std::string_view text, size_t begin, size_t end, bool toUtf8, Buffer& out)
{
    EncodedWordImpl decoder(false);
    for (size_t last = 0; end != _none; end = words.endOf(begin)) {
        std::string_view const gap = text.substr(last, begin - last);
        if (last == 0 || !_isSpace(gap)) append(out, gap);
        _appendDecoded(decoder, text.substr(begin, end - begin), toUtf8, out);
        last = end;
        begin = words.beginFrom(end);
        if (begin == _none) {
            append(out, text.substr(end));
            return;
        }
    }
}

void _appendUnencoded(std::string const& text, VMRStaticCharSetFallbacks const* fallbacks, Buffer& out)
{
    std::string used;
    auto const length = static_cast<unsigned int>(text.size());
    if (!fallbacks || !VmaraConv::m_conv(out, used, text.data(), length, *fallbacks, "UTF-8")) append(out, text);
}

void _appendValue(std::string const& text, Buffer& out, bool toUtf8, VMRStaticCharSetFallbacks const* fallbacks)
{
    _Words words(text);
    size_t const begin = words.beginFrom(0);
    size_t const end = begin == _none ? _none : words.endOf(begin);
    if (end == _none)
        _appendUnencoded(text, fallbacks, out);
    else
        _appendWords(words, text, begin, end, toUtf8, out);
}

void _processString(std::string const& text, Buffer& out, bool toUtf8, VMRStaticCharSetFallbacks const* fallbacks)
{
    if (text.empty()) {
        out.length(0);
        return;
    }
    try {
        _appendValue(text, out, toUtf8, fallbacks);
        return;
    } catch (EncodedWordException const&) {
        // One bad word discards all: a reader must not be shown half of what a client shows.
    } catch (Exception const& failure) {
        Logger::instance(false).log(_undecodable, 0, "%s\x01%s\x01%s", "processString", text.c_str(),
                                    failure.asString().c_str());
    }
    out.length(0);
    append(out, text);
}

/// The value at `dst` as a C string of at most `size` bytes, the NUL included.
char* _processInto(char const* src, void* dst, unsigned int size, bool toUtf8)
{
    if (!src || !dst) return nullptr;
    auto* text = static_cast<char*>(dst);
    if (size == 0) return text;
    try {
        Buffer out(dst, size, false);
        out.length(0);
        _processString(src, out, toUtf8, nullptr);
        text[std::min(out.length(), size - 1)] = '\0';
        return text;
    } catch (Exception const&) {
        return nullptr;
    }
}

bool _isCharsetByte(unsigned char c)
{
    return isAlnum(c) || c == '-' || c == '_' || c == ',';
}

/// Whether "CHARSET?B?" or the like stands at the front.
bool _isMarked(std::string_view text)
{
    auto const* const end = std::find_if_not(text.begin(), text.end(),
                                             [](char c) { return _isCharsetByte(static_cast<unsigned char>(c)); });
    auto const length = static_cast<size_t>(end - text.begin());
    if (length < 2 || length > 20) return false;
    return length < text.size() && text[length] == '?' && _markAt(text.substr(length)) != _markCount;
}

} // namespace

Buffer stringDecodeRfc2047(std::string const& text)
{
    Buffer out(1024, 0);
    stringDecodeRfc2047(text, out);
    return out;
}

void stringDecodeRfc2047(std::string const& text, Buffer& out)
{
    _processString(text, out, false, nullptr);
}

Buffer stringToUtf8(std::string const& text, VMRStaticCharSetFallbacks const* fallbacks)
{
    Buffer out(1024, 0);
    stringToUtf8(text, out, fallbacks);
    return out;
}

void stringToUtf8(std::string const& text, Buffer& out, VMRStaticCharSetFallbacks const* fallbacks)
{
    _processString(text, out, true, fallbacks);
}

void vmara_decode_subject(std::string const& in, std::string& out)
{
    std::string decoded;
    try {
        decoded = viewOf(stringToUtf8(in, nullptr));
    } catch (Exception const&) {
        decoded.clear();
    }
    out.swap(decoded); // `in` may be `out`
}

bool vmara_is_Rfc2047_Encoded(std::string const& text)
{
    constexpr size_t looked = 512;
    std::string_view const head = untilNul(std::string_view(text).substr(0, looked));
    for (size_t at = head.find("=?"); at != _none; at = head.find("=?", at + 2))
        if (_isMarked(head.substr(at + 2))) return true;
    return false;
}

std::string vmara_encode_rfc2047(std::string const& text, std::string const& charset)
{
    if (!stringContains8bitChar(text)) return text;
    Buffer const bytes(text.data(), static_cast<unsigned int>(text.size()), true);
    return "=?" + charset + "?B?" + bytes.toBase64String() + "?=";
}

} // namespace Velmara

using namespace Velmara;

extern "C" {

char* vmara_encode_word(char const* src, char* dst, int len, char const* charset)
{
    if (!src || !dst || !*src || !charset || len <= 0) return nullptr;
    std::string const word = vmara_encode_rfc2047(src, *charset ? "utf-8" : "");
    std::strncpy(dst, word.c_str(), static_cast<size_t>(len));
    dst[len - 1] = '\0';
    return dst;
}

char* vmara_decode_encoded_word(char const* src, void* dst, unsigned int size)
{
    return _processInto(src, dst, size, false);
}

char* vmara_to_utf8(char const* src, void* dst, unsigned int size)
{
    return _processInto(src, dst, size, true);
}

} // extern "C"
