// Encoded words and header values with them against a plain second reading, on raw bytes and on text made
// of fragments; the C forms against the others, in rooms of any size.
#include <regex.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include <velmara/EncodedWord.h>
#include <velmara/Exception.h>
#include <velmara/Logger.h>

#include "tests/charset/PlainEncodedWord.h"

using namespace Velmara;

namespace {

void claim(bool holds, char const* what)
{
    if (holds) return;
    std::fprintf(stderr, "does not hold: %s\n", what);
    std::abort();
}

std::string text(Buffer const& buffer)
{
    return std::string(reinterpret_cast<char const*>(buffer.data()), buffer.length());
}

void checkWord(std::string const& value, bool crlf)
{
    PlainEncodedWord::Word expected;
    int refused = 0;
    try {
        PlainEncodedWord::read(value, crlf, expected);
    } catch (PlainEncodedWord::Refused const& refusal) {
        refused = refusal.code;
    }
    EncodedWord word(crlf);
    try {
        word.parse(value);
        claim(refused == 0, "refused");
    } catch (EncodedWordException const& failure) {
        claim(failure.code() == 4 && failure.stringParameter() == expected.line, "what is refused");
        claim(failure.cause().code() == refused, "why it is refused");
    }
    claim(word.asString() == expected.text, "the trimmed text");
    if (refused != 0) return;
    claim(word.charset() == expected.charset && word.encoding() == expected.encoding, "charset and encoding");
    claim(text(word.decoded()) == expected.decoded, "bytes of a word");
    claim(text(word.toUtf8()) == PlainEncodedWord::inUtf8(expected), "a word in UTF-8");
}

bool plainlyEncoded(std::string const& value)
{
    static regex_t const expression = [] {
        regex_t compiled;
        claim(regcomp(&compiled, ".*=\\?[-_A-Za-z0-9,]{2,20}\\?[bBqQ]\\?.*", REG_EXTENDED) == 0, "compiled");
        return compiled;
    }();
    return regexec(&expression, value.substr(0, 512).c_str(), 0, nullptr, 0) == 0;
}

void checkRoom(char* (*function)(char const*, void*, unsigned int), std::string const& value, bool toUtf8, size_t room)
{
    std::vector<char> dst(room + 1, '#');
    claim(function(value.c_str(), dst.data(), static_cast<unsigned int>(room)) == dst.data(), "C form");
    std::string const whole = PlainEncodedWord::decoded(value.c_str(), toUtf8);
    std::string const expected = whole.substr(0, room - 1) + '\0';
    claim(std::string(dst.data(), expected.size()) == expected, "what fits, and a NUL");
    claim(dst.back() == '#', "nothing behind the room");
}

void checkEncoding(std::string const& value)
{
    std::string const encoded = vmara_encode_rfc2047(value, "utf-8");
    if (PlainEncodedWord::isEightBit(value))
        claim(PlainEncodedWord::decoded(encoded, true) == value, "what was encoded is decoded");
    else
        claim(encoded == value, "ASCII stays");
    std::string const source = value.c_str();
    std::vector<char> dst(value.size() + 9, '#'), expected(dst.size(), '#');
    int const room = static_cast<int>(dst.size()) - 1;
    char const* const result = vmara_encode_word(source.c_str(), dst.data(), room, "x");
    claim((result == nullptr) == source.empty(), "nothing comes of nothing");
    if (!result) return;
    std::strncpy(expected.data(), vmara_encode_rfc2047(source, "utf-8").c_str(), static_cast<size_t>(room));
    expected[static_cast<size_t>(room) - 1] = '\0';
    claim(dst == expected, "C form of encoding");
}

void checkValue(std::string const& value, bool toUtf8)
{
    std::string const decoded = text(toUtf8 ? stringToUtf8(value, nullptr) : stringDecodeRfc2047(value));
    claim(decoded == PlainEncodedWord::decoded(value, toUtf8), toUtf8 ? "in UTF-8" : "in its character sets");
    claim(vmara_is_Rfc2047_Encoded(value) == plainlyEncoded(value), "the beginning of a word");
}

/// One of the claims, as the bits of `how` have it.
void check(std::string const& value, unsigned how)
{
    bool const other = how & 4u;
    switch (how & 3u) {
    case 0:
        return checkWord(value, other);
    case 1:
        return checkValue(value, other);
    case 2:
        return checkRoom(other ? vmara_to_utf8 : vmara_decode_encoded_word, value, other,
                         (how & 8u ? value.size() / 2 : value.size() * 2) + 1);
    default:
        return checkEncoding(value);
    }
}

std::string fragments(std::uint8_t const* data, std::size_t n)
{
    static char const* const texts[] = {"=?",
                                        "?=",
                                        "?B?",
                                        "?b?",
                                        "?Q?",
                                        "?q?",
                                        "=?utf-8?Q?",
                                        "=?utf-8?B?",
                                        "QUJD",
                                        "w6k=",
                                        "=C3",
                                        "=E9",
                                        "=00",
                                        "_",
                                        "?",
                                        "=",
                                        " ",
                                        "\r\n ",
                                        "a",
                                        "Z",
                                        "\n",
                                        "\xE9",
                                        "=?iso-8859-1?q?",
                                        "=?x?b?"};
    std::string value;
    for (std::size_t i = 0; i < n; ++i) value += texts[data[i] % (sizeof texts / sizeof *texts)];
    return value;
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    Logger::setSink([](unsigned int, std::string const&) {});
    return 0;
}

// The first byte chooses raw bytes or fragments, and the claim.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t n)
{
    if (n == 0) return 0;
    std::string const raw(reinterpret_cast<char const*>(data + 1), n - 1);
    check(data[0] & 1u ? fragments(data + 1, n - 1) : raw, data[0] >> 1u);
    return 0;
}
