// Character references against a short plain reading of their rules, and the filter over them write
// by write. Numbers are read by scanf, which the rule for them appeals to.
#include "fuzz/Writes.h"

#include <cctype>
#include <cstdio>

using namespace Velmara;

namespace {

/// Which names there are is asked of the pass itself, with nothing around them.
std::string named(std::string const& name)
{
    std::string reference = "&" + std::string(name.c_str()) + ";"; // a name ends at its first NUL
    if (reference.size() < 3 || reference.find('&', 1) != std::string::npos) return "";
    unsigned long length = reference.size();
    Buffer out;
    return unicode_str_to_utf8(&reference[0], &length, out) ? Writes::take(out) : "";
}

std::string utf8(unsigned value)
{
    if (value < 0x80) return std::string(1, static_cast<char>(value));
    static unsigned const limits[] = {0x800, 0x10000, 0x200000, 0x4000000, 0x80000000u};
    static unsigned const leads[] = {0xC0, 0xE0, 0xF0, 0xF8, 0xFC};
    int trail = 0;
    while (value >= limits[trail]) ++trail;
    std::string bytes(1, static_cast<char>(leads[trail] | value >> (6 * (trail + 1))));
    for (int i = trail; i >= 0; --i) bytes += static_cast<char>(0x80 | (value >> (6 * i) & 0x3F));
    return bytes;
}

enum Answer { Literal, Waits, Resolved };

Answer number(std::string const& text, std::size_t& length, std::string& bytes)
{
    if (text.size() < 4) return Waits;
    bool const hex = text[2] == 'x' || text[2] == 'X';
    std::size_t at = hex ? 3 : 2;
    std::size_t const end = hex ? 11 : 12;
    auto const isDigit = [&](char c) {
        auto const byte = static_cast<unsigned char>(c);
        return byte < 0x80 && (hex ? std::isxdigit(byte) : std::isdigit(byte));
    };
    while (at < end && at < text.size() && isDigit(text[at])) ++at;
    if (at == text.size()) return Waits;
    if (text[at] != ';') return Literal;
    unsigned value = 0;
    int used = 0;
    char const* const format = !hex ? "&#%u%n" : text[2] == 'x' ? "&#x%x%n" : "&#X%x%n";
    if (std::sscanf(text.substr(0, at).c_str(), format, &value, &used) != 1) return Literal;
    if (used != static_cast<int>(at) || static_cast<int>(value) < 0) return Literal;
    length = at + 1;
    bytes = utf8(value);
    return Resolved;
}

Answer name(std::string const& text, std::size_t& length, std::string& bytes)
{
    if (text.size() < 3) return Waits;
    std::size_t const semicolon = text.substr(0, 11).find(';');
    if (semicolon == std::string::npos) return text.size() < 11 ? Waits : Literal;
    bytes = named(text.substr(1, semicolon - 1));
    length = semicolon + 1;
    return bytes.empty() ? Literal : Resolved;
}

struct Pass {
    bool replaced = false;
    std::string out;
    std::size_t left = 0;
};

Pass plain(std::string const& text)
{
    Pass pass;
    for (std::size_t at = 0; at < text.size();) {
        std::string bytes;
        std::size_t length = 1;
        Answer answer = Literal;
        std::string const rest = text.substr(at, 16);
        if (rest[0] == '&')
            answer = rest.size() == 1 ? Waits
                     : rest[1] == '#' ? number(rest, length, bytes)
                                      : name(rest, length, bytes);
        if (answer == Waits) {
            pass.left = text.size() - at;
            break;
        }
        pass.replaced = pass.replaced || answer == Resolved;
        pass.out += answer == Resolved ? bytes : text.substr(at, 1);
        at += answer == Resolved ? length : 1;
    }
    if (!pass.replaced) pass.out.clear();
    return pass;
}

struct PlainFilter {
    std::string carry;
    std::string write(std::string const& piece)
    {
        if (piece.empty()) return "";
        std::string const text = carry + piece;
        carry.clear();
        Pass const pass = plain(text);
        if (!pass.replaced) return text;
        carry = text.substr(text.size() - pass.left);
        return pass.out;
    }
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t n)
{
    if (n < 1) return 0;
    std::string const text(reinterpret_cast<char const*>(data) + 1, n - 1);
    std::vector<char> block(text.begin(), text.end());
    unsigned long left = block.size();
    Buffer out;
    Pass const pass = plain(text);
    Writes::require(unicode_str_to_utf8(block.data(), &left, out) == pass.replaced);
    Writes::require(left == pass.left && Writes::take(out) == pass.out);

    PlainFilter expected;
    FilterHtmlEscapeMediaOut filter{BufferMediaOut(out)};
    for (std::string const& piece : Writes::cut(text, {data[0]})) {
        Writes::write(filter, piece);
        Writes::require(Writes::take(out) == expected.write(piece));
    }
    filter.end();
    Writes::require(Writes::take(out) == expected.carry);
    return 0;
}
