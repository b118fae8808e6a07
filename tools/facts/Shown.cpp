#include "Shown.h"

#include <unistd.h>

#include <cstdlib>
#include <iostream>

#include <velmara/EncodedWord.h>

namespace VelmaraCommand {

namespace {

/// Length of the UTF-8 sequence that starts `text`, 0 if none does; its value goes to `character`.
size_t _sequence(std::string_view text, char32_t& character)
{
    auto const first = static_cast<unsigned char>(text[0]);
    size_t const length = first < 0x80   ? 1
                          : first < 0xC2 ? 0
                          : first < 0xE0 ? 2
                          : first < 0xF0 ? 3
                          : first < 0xF5 ? 4
                                         : 0;
    if (length == 0 || length > text.size()) return 0;
    character = length == 1 ? first : first & (0x7F >> length);
    for (size_t i = 1; i < length; ++i) {
        auto const next = static_cast<unsigned char>(text[i]);
        if ((next & 0xC0) != 0x80) return 0;
        character = character << 6 | (next & 0x3F);
    }
    bool const tooLong = (length == 3 && character < 0x800) || (length == 4 && character < 0x10000);
    bool const noCharacter = (character >= 0xD800 && character < 0xE000) || character > 0x10FFFF;
    return tooLong || noCharacter ? 0 : length;
}

bool _isControl(char32_t c)
{
    return c < 0x20 || (c >= 0x7F && c < 0xA0) || c == 0x2028 || c == 0x2029 || c == 0x200E || c == 0x200F ||
           (c >= 0x202A && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069);
}

void _appendEscaped(std::string& out, std::string_view bytes)
{
    constexpr char digits[] = "0123456789ABCDEF";
    for (char c : bytes) {
        auto const byte = static_cast<unsigned char>(c);
        out += "\\x";
        out += digits[byte >> 4];
        out += digits[byte & 15];
    }
}

} // namespace

std::string shown(std::string_view text)
{
    std::string out;
    while (!text.empty()) {
        char32_t character = 0;
        size_t const length = _sequence(text, character);
        std::string_view const bytes = text.substr(0, length == 0 ? 1 : length);
        if (length == 0 || _isControl(character))
            _appendEscaped(out, bytes);
        else
            out += bytes;
        text.remove_prefix(bytes.size());
    }
    return out;
}

std::string decoded(std::string const& value)
{
    Velmara::Buffer const utf8 = Velmara::stringToUtf8(value, nullptr);
    return std::string(reinterpret_cast<char const*>(utf8.data()), utf8.length());
}

void setIfAny(Json& json, char const* field, std::string const& text)
{
    if (!text.empty()) json[field] = text;
}

void writeJsonLine(Json const& value)
{
    std::cout << value.dump(-1, ' ', false, Json::error_handler_t::replace) << '\n';
}

bool colourWanted()
{
    char const* forbidden = std::getenv("NO_COLOR");
    return ::isatty(STDOUT_FILENO) && !(forbidden && *forbidden);
}

} // namespace VelmaraCommand
