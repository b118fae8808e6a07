// Decoding walks whole groups of four letters: each letter's table holds its six bits at the place
// that they have in the 24 of the group, so a group is three ORs, one test and one store. White space,
// padding, foreign bytes and begun groups go through a slow loop that gathers one group a character
// at a time.
#include "runtime/Base64.h"

#include <cstdint>
#include <cstring>

#include <immintrin.h>

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

/// For a lookup of 16 bytes at a time by the two halves of a byte. The letters with one upper half
/// form a range of lower halves; upper halves with the same range share a class, a bit. `bad` holds the
/// classes in which a lower half is no letter. `offset` leads from a letter to its value, but for "/",
/// which shares its upper half with "+" and so takes the free place 1.
struct NibbleTables {
    alignas(16) std::array<unsigned char, 16> classes{}, bad{}, offset{};
};

constexpr NibbleTables _makeNibbleTables()
{
    constexpr auto kinds = _kinds();
    constexpr unsigned char classBits[16] = {16, 16, 1, 2, 4, 8, 4, 8, 16, 16, 16, 16, 16, 16, 16, 16};
    NibbleTables tables{};
    for (unsigned c = 0; c < 256; ++c) {
        unsigned const upper = c >> 4, lower = c & 15;
        tables.classes[upper] = classBits[upper];
        bool const letter = kinds[c] < 64;
        if (!letter) tables.bad[lower] = static_cast<unsigned char>(tables.bad[lower] | classBits[upper]);
        if (letter) tables.offset[c == '/' ? 1 : upper] = static_cast<unsigned char>(kinds[c] - c);
    }
    return tables;
}

constexpr NibbleTables _nibbles = _makeNibbleTables();

/// The shared classes hold only if their upper halves agree on every lower half.
constexpr bool _classesAgree()
{
    constexpr auto kinds = _kinds();
    for (unsigned c = 0; c < 256; ++c)
        if ((kinds[c] < 64) != ((_nibbles.classes[c >> 4] & _nibbles.bad[c & 15]) == 0)) return false;
    return true;
}
static_assert(_classesAgree(), "a byte is a letter if its lower half is not bad in the class of its upper half");

__m128i _load(std::array<unsigned char, 16> const& table)
{
    return _mm_load_si128(reinterpret_cast<__m128i const*>(table.data()));
}

bool const _hasSsse3 = __builtin_cpu_supports("ssse3");

/// Decodes 16 letters to 12 bytes; false if one of them is foreign.
__attribute__((target("ssse3"))) inline bool _decodeBlock(unsigned char const* in, __m128i& out)
{
    __m128i const half = _mm_set1_epi8(15), slash = _mm_set1_epi8('/');
    __m128i const letters = _mm_loadu_si128(reinterpret_cast<__m128i const*>(in));
    __m128i const upper = _mm_and_si128(_mm_srli_epi32(letters, 4), half);
    __m128i const lower = _mm_and_si128(letters, half);
    __m128i const classes = _mm_shuffle_epi8(_load(_nibbles.classes), upper);
    __m128i const foreign = _mm_and_si128(classes, _mm_shuffle_epi8(_load(_nibbles.bad), lower));
    __m128i const isSlash = _mm_cmpeq_epi8(letters, slash); // -1 leads from place 2 to place 1
    __m128i const offset = _mm_shuffle_epi8(_load(_nibbles.offset), _mm_add_epi8(upper, isSlash));
    __m128i const values = _mm_add_epi8(letters, offset);
    // Values of 6 bits are joined to 12, those to 24, and these are put into the order of the bytes.
    __m128i const pairs = _mm_maddubs_epi16(values, _mm_set1_epi32(0x01400140));
    __m128i const groups = _mm_madd_epi16(pairs, _mm_set1_epi32(0x00011000));
    out = _mm_shuffle_epi8(groups, _mm_setr_epi8(2, 1, 0, 6, 5, 4, 10, 9, 8, 14, 13, 12, -1, -1, -1, -1));
    return _mm_movemask_epi8(_mm_cmpeq_epi8(foreign, _mm_setzero_si128())) == 0xffff;
}

/// Blocks of 16 letters, or nothing if there are fewer. Where the length is no multiple, the last
/// block takes letters of the one before again.
__attribute__((target("ssse3"))) Base64Letters _decodeBlocks(unsigned char const* in, size_t n, unsigned char* out)
{
    size_t read = 0, written = 0;
    __m128i bytes;
    // The four spare bytes that a store writes need the room of one more group.
    for (; n - read >= 16 + 4; read += 16, written += 12) {
        if (!_decodeBlock(in + read, bytes)) return {read, written};
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out + written), bytes);
    }
    size_t const groups = (n - read) / 4;
    if (read == 0 || !_decodeBlock(in + read + 4 * groups - 16, bytes)) return {read, written};
    unsigned char* const last = out + written + 3 * groups - 12;
    _mm_storel_epi64(reinterpret_cast<__m128i*>(last), bytes);
    int const rest = _mm_cvtsi128_si32(_mm_srli_si128(bytes, 8));
    std::memcpy(last + 8, &rest, sizeof rest);
    return {read + 4 * groups, written + 3 * groups};
}

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

Base64Letters base64DecodeLetters(unsigned char const* in, size_t n, unsigned char* out)
{
    auto [read, written] = _hasSsse3 ? _decodeBlocks(in, n, out) : Base64Letters{0, 0};
    for (; n - read >= 4; read += 4, written += 3) {
        unsigned char const* group = in + read;
        std::uint32_t const bits = _first[group[0]] | _second[group[1]] | _third[group[2]] | _fourth[group[3]];
        if (bits & _noLetter) break;
        std::uint32_t const bigEndian = __builtin_bswap32(bits << 8);
        std::memcpy(out + written, &bigEndian, 4); // the fourth byte is overwritten by the next group
    }
    return {read, written};
}

Base64Decoded base64Decode(unsigned char const* in, size_t n, unsigned char* out)
{
    size_t read = 0, written = 0;
    Group group;
    while (read < n) {
        if (group.letters == 0) {
            Base64Letters const letters = base64DecodeLetters(in + read, n - read, out + written);
            read += letters.read;
            written += letters.written;
            if (read == n) break;
        }
        unsigned char const kind = base64Kinds[in[read++]];
        if (kind == Base64Space) continue;
        if (kind == Base64Foreign) return {read, written, false};
        if (kind == Base64Padding) {
            // What the padded group lacks is filled up by any letters, padding or not: all that counts is that
            // there are as many as a group has.
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
