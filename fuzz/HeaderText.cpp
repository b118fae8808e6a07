// Header values with encoded words against a plain reading that searches all of the rest for each mark of
// each word, on raw bytes and on text made of fragments.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include <velmara/EncodedWord.h>
#include <velmara/Exception.h>
#include <velmara/Logger.h>

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

bool isEightBit(std::string const& bytes)
{
    for (char c : bytes)
        if (c & 0x80) return true;
    return false;
}

size_t plainEndOf(std::string const& value, size_t begin)
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

std::string plainWord(std::string const& word, bool toUtf8)
{
    EncodedWord decoder(false);
    decoder.parse(word);
    std::string const decoded = text(toUtf8 ? decoder.toUtf8() : decoder.decoded());
    return isEightBit(decoded) ? decoded : std::string(decoded.c_str());
}

std::string plainWords(std::string const& value, bool toUtf8)
{
    std::string out;
    for (size_t last = 0;;) {
        size_t const begin = value.find("=?", last);
        if (begin == std::string::npos) return out + value.substr(last);
        size_t const end = plainEndOf(value, begin);
        if (end == std::string::npos) return last == 0 ? value : out;
        std::string const gap = value.substr(last, begin - last);
        if (last == 0 || gap.find_first_not_of(" \t\r\n") != std::string::npos) out += gap;
        out += plainWord(value.substr(begin, end - begin), toUtf8);
        last = end;
    }
}

std::string plainly(std::string const& value, bool toUtf8)
{
    try {
        return plainWords(value, toUtf8);
    } catch (EncodedWordException const&) {
        return value;
    }
}

void check(std::string const& value)
{
    claim(text(stringToUtf8(value, nullptr)) == plainly(value, true), "in UTF-8");
    claim(text(stringDecodeRfc2047(value)) == plainly(value, false), "in its character sets");
    std::string const again = vmara_encode_rfc2047(value, "utf-8");
    if (isEightBit(value)) claim(text(stringToUtf8(again, nullptr)) == value, "what was encoded is decoded");
    std::vector<char> dst(value.size() / 2 + 1, '#');
    claim(vmara_to_utf8(value.c_str(), dst.data(), static_cast<unsigned int>(dst.size())) == dst.data(), "C form");
    claim(std::string(dst.data()).size() < dst.size(), "the C form ends its text");
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

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t n)
{
    check(std::string(reinterpret_cast<char const*>(data), n));
    check(fragments(data, n));
    return 0;
}
