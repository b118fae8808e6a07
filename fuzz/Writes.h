#pragma once

#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include <velmara/Velmara.h>

/// What the targets of the codecs share: an input as a sequence of writes, and what comes of each.
namespace Writes {

using Pieces = std::vector<std::string>;

/// A small generator, so that a few bytes of the input decide about everything.
struct Choice {
    std::uint32_t state;
    std::uint32_t below(std::uint32_t n)
    {
        state = state * 1664525u + 1013904223u;
        return static_cast<std::uint32_t>(std::uint64_t(state >> 8) * n >> 24);
    }
};

/// True for one input in `n`, by a checksum (FNV-1a). What costs more than the rest cannot be left to one
/// byte: inputs that do it are of use, get the most descendants, and pass that byte on.
inline bool oneIn(std::uint32_t n, std::uint8_t const* data, std::size_t size)
{
    std::uint32_t sum = 2166136261u;
    for (std::size_t i = 0; i < size; ++i) sum = (sum ^ data[i]) * 16777619u;
    return (sum >> 16) % n == 0;
}

inline Pieces lines(std::string const& text)
{
    Pieces pieces;
    for (std::size_t at = 0; at < text.size();) {
        std::size_t const lineFeed = text.find('\n', at);
        std::size_t const next = lineFeed == std::string::npos ? text.size() : lineFeed + 1;
        pieces.push_back(text.substr(at, next - at));
        at = next;
    }
    return pieces;
}

/// Lines as they are, single bytes, or cuts anywhere with empty writes between.
inline Pieces cut(std::string const& text, Choice choice)
{
    if (choice.below(4) == 0) return lines(text);
    std::uint32_t const longest = choice.below(3) == 0 ? 1 : choice.below(2) == 0 ? 5 : 90;
    Pieces pieces;
    for (std::size_t at = 0; at < text.size();) {
        std::size_t const n = longest == 1 ? 1 : choice.below(longest + 1);
        pieces.push_back(text.substr(at, n));
        at += n;
    }
    return pieces;
}

/// In a block of its own, so that a look behind the end is seen.
inline void write(Velmara::MediaOut& stage, std::string const& piece)
{
    std::vector<unsigned char> const bytes(piece.begin(), piece.end());
    stage.write(bytes.data(), static_cast<unsigned>(bytes.size()));
}

inline std::string take(Velmara::Buffer& out)
{
    std::string const bytes(reinterpret_cast<char const*>(out.data()), out.length());
    out.length(0);
    return bytes;
}

/// All that arrives behind a codec for these writes and an end.
template <class Codec> std::string through(Pieces const& pieces)
{
    Velmara::Buffer out;
    Codec codec{Velmara::BufferMediaOut(out)};
    for (std::string const& piece : pieces) write(codec, piece);
    codec.end();
    return take(out);
}

inline void require(bool claim)
{
    if (!claim) std::abort();
}

} // namespace Writes
