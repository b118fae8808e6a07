// Decoding walks whole groups of four letters: each letter's table holds its six bits at the place
// that they have in the 24 of the group, so a group is three ORs, one test and one store. White space,
// padding, foreign bytes and begun groups go through a slow loop that gathers one group a character
// at a time.
#include "runtime/Base64.h"

#include <cstdint>
#include <cstring>

#include "runtime/Ascii.h"

namespace Velmara {

namespace {

constexpr char _alphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

constexpr std::array<unsigned char, 256> _kinds()
{
    std::array<unsigned char, 256> kinds{};
    for (unsigned c = 0; c < 256; ++c) kinds[c] = isCSpace(static_cast<unsigned char>(c)) ? Base64Space : Base64Foreign;
    for (unsigned v = 0; v < 64; ++v) kinds[static_cast<unsigned char>(_alphabet[v])] = static_cast<unsigned char>(v);
    kinds['='] = Base64Padding;
    return kinds;
}

constexpr std::uint32_t _noLetter = 0x80000000u;

using LetterTable = std::array<std::uint32_t, 256>;

constexpr LetterTable _lettersAt(unsigned shift)
{
    constexpr auto kinds = _kinds();
    LetterTable table{};
    for (unsigned c = 0; c < 256; ++c)
        table[c] = kinds[c] < 64 ? static_cast<std::uint32_t>(kinds[c]) << shift : _noLetter;
    return table;
}

constexpr LetterTable _first = _lettersAt(18), _second = _lettersAt(12), _third = _lettersAt(6),
                      _fourth = _lettersAt(0);

/// One group in the making.
struct Group {
    std::uint32_t bits = 0;
    int letters = 0;

    void add(unsigned value)
    {
        bits = bits << 6 | value;
        ++letters;
    }
    /// The whole bytes that the letters give: 2 letters 1, 3 letters 2, 4 letters 3.
    size_t flush(unsigned char* out)
    {
        size_t const whole = letters > 1 ? static_cast<size_t>(letters) - 1 : 0;
        std::uint32_t const aligned = bits << (6 * (4 - letters));
        for (size_t i = 0; i < whole; ++i) out[i] = static_cast<unsigned char>(aligned >> (16 - 8 * i));
        *this = Group();
        return whole;
    }
};

} // namespace

std::array<unsigned char, 256> const base64Kinds = _kinds();

Base64Decoded base64DecodeLetters(unsigned char const* in, size_t n, unsigned char* out)
{
    size_t read = 0, written = 0;
    for (; n - read >= 4; read += 4, written += 3) {
        unsigned char const* group = in + read;
        std::uint32_t const bits = _first[group[0]] | _second[group[1]] | _third[group[2]] | _fourth[group[3]];
        if (bits & _noLetter) break;
        std::uint32_t const bigEndian = __builtin_bswap32(bits << 8);
        std::memcpy(out + written, &bigEndian, 4); // the fourth byte is overwritten by the next group
    }
    return {read, written, read == n};
}

Base64Decoded base64Decode(unsigned char const* in, size_t n, unsigned char* out)
{
    size_t read = 0, written = 0;
    Group group;
    while (read < n) {
        if (group.letters == 0) {
            Base64Decoded const letters = base64DecodeLetters(in + read, n - read, out + written);
            read += letters.read;
            written += letters.written;
            if (read == n) break;
        }
        unsigned char const kind = base64Kinds[in[read++]];
        if (kind == Base64Space) continue;
        if (kind == Base64Foreign) return {read, written, false};
        if (kind == Base64Padding) {
            // What the padded group lacks has to be padding as well.
            int missing = 3 - group.letters;
            while (missing > 0 && read < n && base64Kinds[in[read]] != Base64Foreign)
                if (base64Kinds[in[read++]] != Base64Space) --missing;
            bool const whole = missing <= 0;
            if (whole) written += group.flush(out + written);
            return {read, written, whole};
        }
        group.add(kind);
        if (group.letters == 4) written += group.flush(out + written);
    }
    return {read, written, group.letters == 0};
}

void base64Encode(unsigned char const* in, size_t n, std::string& out)
{
    size_t const start = out.size();
    out.resize(start + (n + 2) / 3 * 4);
    char* to = &out[start];
    for (; n >= 3; n -= 3, in += 3) {
        *to++ = _alphabet[in[0] >> 2];
        *to++ = _alphabet[(in[0] & 3) << 4 | in[1] >> 4];
        *to++ = _alphabet[(in[1] & 15) << 2 | in[2] >> 6];
        *to++ = _alphabet[in[2] & 63];
    }
    if (n == 0) return;
    unsigned char const second = n == 2 ? in[1] : 0;
    *to++ = _alphabet[in[0] >> 2];
    *to++ = _alphabet[(in[0] & 3) << 4 | second >> 4];
    *to++ = n == 2 ? _alphabet[(second & 15) << 2] : '=';
    *to++ = '=';
}

} // namespace Velmara
