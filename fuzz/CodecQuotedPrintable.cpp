// Quoted-Printable against a short plain reading of its rules, write by write; a text in which each "=" begins
// an escape or a soft break is the same for every cut.
#include "fuzz/Writes.h"

namespace {

int digit(char c)
{
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    return -1;
}

struct Plain {
    std::string carry;

    std::string write(std::string const& input)
    {
        std::string const bytes = carry + input;
        std::string work;
        bool changed = false;
        for (std::size_t i = 0; i < bytes.size();) {
            std::size_t const behind = bytes.size() - i - 1;
            if (bytes[i] != '=') {
                work += bytes[i++];
            } else if (behind >= 2) {
                bool const softBreak = bytes[i + 1] == '\r' && bytes[i + 2] == '\n';
                int const high = digit(bytes[i + 1]), low = digit(bytes[i + 2]);
                bool const escape = high >= 0 && low >= 0;
                if (escape) work += static_cast<char>(high * 16 + low);
                if (!escape && !softBreak) work += '=';
                changed = changed || escape || softBreak;
                i += escape || softBreak ? 3 : 1;
            } else if (behind == 1 && bytes[i + 1] == '\n') {
                changed = true;
                i += 2;
            } else {
                carry = bytes.substr(i);
                return work;
            }
        }
        if (!changed) {
            if (!carry.empty()) carry = bytes; // to be delivered again
            return bytes;
        }
        carry.clear();
        return work;
    }
};

/// Fills up each "=" that begins nothing, so that none is left to chance.
std::string madeWhole(std::string const& text)
{
    std::string whole;
    for (std::size_t i = 0; i < text.size(); ++i) {
        whole += text[i];
        if (text[i] != '=') continue;
        std::string const next = text.substr(i + 1, 2);
        bool const escape = next.size() == 2 && digit(next[0]) >= 0 && digit(next[1]) >= 0;
        whole += escape || next == "\r\n" ? next : "3d";
        i += escape || next == "\r\n" ? 2 : 0;
    }
    return whole;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t n)
{
    if (n < 1 || n > 4096) return 0; // output grows with the square of what is carried and never decoded
    std::string const text(reinterpret_cast<char const*>(data) + 1, n - 1);
    Plain plain;
    Velmara::Buffer out;
    Velmara::CodecQuotedPrintable codec{Velmara::BufferMediaOut(out)};
    for (std::string const& piece : Writes::cut(text, {data[0]})) {
        Writes::write(codec, piece);
        Writes::require(Writes::take(out) == plain.write(piece));
    }
    using Velmara::CodecQuotedPrintable;
    std::string const whole = madeWhole(text);
    Writes::require(Writes::through<CodecQuotedPrintable>({whole}) ==
                    Writes::through<CodecQuotedPrintable>(Writes::cut(whole, {data[0]})));
    return 0;
}
