// BinHex: behind the first line, which may be the notice, every cut gives the same. Cut or not, the
// result is that of a short plain reading of the format.
#include "fuzz/Writes.h"

#include <cstring>

namespace {

/// The data fork of what follows the ":"; "" unless header and alphabet allow more.
std::string plainFork(std::string const& text)
{
    char const alphabet[] = "!\"#$%&'()*+,-012345689@ABCDEFGHIJKLMNPQRSTUVXYZ[`abcdefhijklmpqr";
    std::string bytes;
    unsigned bits = 0, waiting = 0;
    bool marker = false;
    unsigned char last = 0;
    for (char c : text) {
        if (c == ' ' || c == '\t' || c == '\r' || c == '\n') continue;
        char const* const found = c != '\0' ? std::strchr(alphabet, c) : nullptr;
        if (!found) break;
        bits = bits << 6 | static_cast<unsigned>(found - alphabet);
        waiting += 6;
        if (waiting < 8) continue;
        waiting -= 8;
        auto const byte = static_cast<unsigned char>(bits >> waiting);
        if (marker && byte != 0)
            bytes.append(byte - 1u, static_cast<char>(last));
        else if (marker || byte != 0x90)
            bytes += static_cast<char>(last = marker ? 0x90 : byte);
        marker = !marker && byte == 0x90;
    }
    if (bytes.empty()) return "";
    std::size_t const header = static_cast<unsigned char>(bytes[0]) + 2u;
    if (bytes.size() < header + 20) return "";
    unsigned length = 0;
    for (int i = 0; i < 4; ++i) length = length << 8 | static_cast<unsigned char>(bytes[header + 10 + i]);
    return bytes.substr(header + 20, length);
}

using Velmara::CodecBinHex40;

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t n)
{
    if (n < 1) return 0;
    std::string const text(reinterpret_cast<char const*>(data) + 1, n - 1);
    // As it comes: the first line whole, and an empty write for what the notice's write left over.
    std::size_t const lineFeed = text.find('\n');
    std::size_t const rest = lineFeed == std::string::npos ? text.size() : lineFeed + 1;
    Writes::Pieces whole{text.substr(0, rest), text.substr(rest), ""}, cut{text.substr(0, rest)};
    for (std::string const& piece : Writes::cut(text.substr(rest), {data[0]})) cut.push_back(piece);
    cut.push_back("");
    Writes::require(Writes::through<CodecBinHex40>(whole) == Writes::through<CodecBinHex40>(cut));
    // As a stream for certain.
    Writes::Pieces const pieces = Writes::cut(":" + text, {data[0]});
    Writes::require(Writes::through<CodecBinHex40>(pieces) == plainFork(text));
    return 0;
}
