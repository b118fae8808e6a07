// Base64 against a short plain reading of its rules, write by write; a text of letters, padded at its end or
// not, is the same for every cut.
#include "fuzz/Writes.h"

#include <cstring>

namespace {

bool isSpace(char c)
{
    return c != '\0' && std::strchr(" \t\n\v\f\r", c);
}

int valueOf(char c)
{
    char const alphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    char const* const found = c != '\0' ? std::strchr(alphabet, c) : nullptr;
    return found ? static_cast<int>(found - alphabet) : -1;
}

struct Plain {
    bool strict = true;
    int status = 0;
    std::string carry;

    /// Up to the first group with padding, of which two letters are a byte and three are two.
    static std::string decoded(std::string const& block)
    {
        std::string bytes;
        for (std::size_t at = 0; at < block.size(); at += 4) {
            unsigned bits = 0;
            int letters = 0;
            for (; letters < 4 && block[at + letters] != '='; ++letters)
                bits = bits << 6 | valueOf(block[at + letters]);
            bits <<= 6 * (4 - letters);
            for (int i = 0; i < letters - 1; ++i) bytes += static_cast<char>(bits >> (16 - 8 * i));
            if (letters < 4) break;
        }
        return bytes;
    }

    std::string write(std::string const& input)
    {
        std::string clean = carry;
        carry.clear();
        if (status == 2) return clean + input;
        std::string const carried = clean;
        bool invalid = false;
        for (char c : input) {
            if (isSpace(c)) continue;
            if (valueOf(c) >= 0 || c == '=')
                clean += c;
            else
                invalid = true;
        }
        if (strict && invalid) {
            status = 2;
            return carried + input;
        }
        carry = clean.substr(clean.size() / 4 * 4);
        clean.resize(clean.size() / 4 * 4);
        if (clean.empty()) return "";
        std::string const bytes = decoded(clean);
        status = bytes.empty() ? 2 : 1;
        return bytes.empty() ? clean + carried + input : bytes;
    }
};

/// Letters and white space alone, then with what padding the last group lacks; one letter lacks too much.
void checkLetters(std::string const& text, Writes::Choice choice)
{
    std::string letters;
    std::size_t count = 0;
    for (char c : text) {
        if (!isSpace(c) && valueOf(c) < 0) continue;
        letters += c;
        count += !isSpace(c);
    }
    if (count % 4 == 1) letters += 'A', ++count;
    for (std::string const& padding : {std::string(), std::string((4 - count % 4) % 4, '=')}) {
        std::string const whole = letters + padding;
        Writes::require(Writes::through<Velmara::CodecBase64>(Writes::cut(whole, choice)) ==
                        Writes::through<Velmara::CodecBase64>({whole}));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t n)
{
    if (n < 2) return 0;
    std::string const text(reinterpret_cast<char const*>(data) + 2, n - 2);
    Writes::Pieces const pieces = Writes::cut(text, {data[0]});
    Plain plain;
    plain.strict = data[1] % 2 == 0;
    Velmara::Buffer out;
    Velmara::CodecBase64 codec{Velmara::BufferMediaOut(out)};
    codec.strict(plain.strict);
    for (std::string const& piece : pieces) {
        Writes::write(codec, piece);
        Writes::require(Writes::take(out) == plain.write(piece));
        Writes::require(codec.status() == plain.status);
    }
    checkLetters(text, {data[0]});
    return 0;
}
