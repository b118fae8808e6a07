#include <velmara/Buffer.h>

#include <velmara/Exception.h>

#include <gtest/gtest.h>

#include <string>

// Decoding works on blocks of letters, groups and single characters; all must agree at every place.
namespace Velmara {
namespace {

using std::string;

string const _alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

/// A character at a time; stops at the first that is neither a letter nor white space.
string _plainly(string const& text)
{
    string decoded;
    unsigned bits = 0;
    int letters = 0;
    for (char c : text) {
        size_t const value = _alphabet.find(c);
        if (c == '\0' || value == string::npos) {
            if (c == '\n') continue;
            break;
        }
        bits = bits << 6 | static_cast<unsigned>(value);
        if (++letters % 4 != 0) continue;
        for (int shift : {16, 8, 0}) decoded += static_cast<char>(bits >> shift);
    }
    return decoded;
}

string _decoded(string const& text)
{
    // On the heap and of exactly this size, where a sanitizer sees a step behind the end.
    Buffer const in(text.data(), static_cast<unsigned>(text.size()), true);
    Buffer out;
    try {
        in.decodeBase64(out);
    } catch (BufferException const&) {
    }
    return string(reinterpret_cast<char const*>(out.data()), out.length());
}

string _letters(size_t n, size_t start)
{
    string text;
    for (size_t i = 0; i < n; ++i) text += _alphabet[(start + i * 37) % 64];
    return text;
}

TEST(Base64, EveryLetterDecodesAtEveryPlace)
{
    for (size_t start = 0; start < 64; ++start)
        for (size_t n = 0; n <= 84; n += 4) ASSERT_EQ(_plainly(_letters(n, start)), _decoded(_letters(n, start)));
}

TEST(Base64, EveryForeignByteStopsAtEveryPlace)
{
    for (unsigned byte = 0; byte < 256; ++byte) {
        char const c = static_cast<char>(byte);
        if (_alphabet.find(c) != string::npos || c == '=' || c == ' ' || (c >= '\t' && c <= '\r')) continue;
        for (size_t at = 0; at < 48; ++at) {
            string text = _letters(48, byte);
            text[at] = c;
            ASSERT_EQ(_plainly(text), _decoded(text)) << byte << " at " << at;
        }
    }
}

TEST(Base64, WhiteSpaceIsSkippedAtEveryPlace)
{
    for (size_t n = 4; n <= 84; n += 4)
        for (size_t at = 0; at <= n; ++at) {
            string text = _letters(n, at);
            text.insert(at, "\n");
            ASSERT_EQ(_plainly(text), _decoded(text)) << at;
        }
}

} // namespace
} // namespace Velmara
