// Mailbox names in modified UTF-7 against a plain encoder, of text made of characters of all sizes; the way
// back gives the text again, and the C form stays within its room. Of raw bytes no more is asked than that a
// name, once made, stays the same.
#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <string>
#include <vector>

#include <velmara/VmaraConv.h>

using namespace Velmara;

namespace {

void require(bool holds)
{
    if (!holds) std::abort();
}

constexpr unsigned characters[] = {'a',    '&',     '-',     ',',      '/',    '~',    0x7F,   1,
                                   '\n',   0x80,    0xE9,    0x7FF,    0x20AC, 0x4E2D, 0xD7FF, 0xE000,
                                   0xFFFD, 0x10000, 0x1F600, 0x10FFFD, ' ',    '+',    0x3042, 0x430};

std::string utf8(unsigned c)
{
    std::string bytes;
    if (c < 0x80) return std::string(1, static_cast<char>(c));
    int const trail = c < 0x800 ? 1 : c < 0x10000 ? 2 : 3;
    bytes += static_cast<char>((trail == 1 ? 0xC0 : trail == 2 ? 0xE0 : 0xF0) | c >> (6 * trail));
    for (int i = trail - 1; i >= 0; --i) bytes += static_cast<char>(0x80 | (c >> (6 * i) & 0x3F));
    return bytes;
}

/// The units of a run in Base64 with a comma for the slash and without padding.
std::string run(std::vector<unsigned> const& units)
{
    std::string const alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+,";
    std::string text;
    unsigned bits = 0, waiting = 0;
    for (unsigned unit : units) {
        bits = bits << 16 | unit;
        for (waiting += 16; waiting >= 6; waiting -= 6) text += alphabet[bits >> (waiting - 6) & 63];
    }
    if (waiting != 0) text += alphabet[bits << (6 - waiting) & 63];
    return '&' + text + '-';
}

std::string plainName(std::vector<unsigned> const& text)
{
    std::string name;
    std::vector<unsigned> units;
    for (std::size_t i = 0; i <= text.size(); ++i) {
        bool const direct = i == text.size() || (text[i] >= 0x20 && text[i] <= 0x7E);
        if (direct && !units.empty()) {
            name += run(units);
            units.clear();
        }
        if (i == text.size()) break;
        unsigned const c = text[i];
        if (direct) {
            name += c == '&' ? "&-" : std::string(1, static_cast<char>(c));
        } else if (c < 0x10000) {
            units.push_back(c);
        } else {
            units.push_back(0xD800 + ((c - 0x10000) >> 10));
            units.push_back(0xDC00 + ((c - 0x10000) & 0x3FF));
        }
    }
    return name;
}

void checkRoom(std::string const& text, std::string const& name, std::size_t room)
{
    std::vector<char> dst(room + 1, '#');
    long const length = vmaral_convert_to_utf7imap(text.c_str(), dst.data(), static_cast<long>(room));
    require(length == static_cast<long>(name.size()));
    std::string expected(room + 1, '#');
    expected.replace(0, std::min(name.size(), room), name, 0, room);
    if (room != 0) expected[room - 1] = '\0';
    require(std::string(dst.begin(), dst.end()) == expected);
}

void checkRaw(std::string const& text)
{
    std::string const name = utf82utf7imap(text);
    for (char c : name) require(c >= 0x20 && c <= 0x7E);
    require(utf82utf7imap(utf7imp2utf8(name)) == name);
    std::string const read = utf7imp2utf8(text);
    require(utf7imp2utf8(utf82utf7imap(read)) == read);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t n)
{
    std::vector<unsigned> text;
    std::string bytes;
    for (std::size_t i = 0; i < n; ++i) {
        text.push_back(characters[data[i] % std::size(characters)]);
        bytes += utf8(text.back());
    }
    std::string const name = plainName(text);
    require(utf82utf7imap(bytes) == name && utf7imp2utf8(name) == bytes);
    for (std::size_t room : {std::size_t(0), std::size_t(1), name.size() / 2, name.size(), name.size() + 7})
        checkRoom(bytes, name, room);
    checkRaw(std::string(reinterpret_cast<char const*>(data), n));
    return 0;
}
