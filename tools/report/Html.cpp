#include "Html.h"

#include <cstdio>

#include "facts/Utf8.h"

namespace VelmaraCommand {

namespace {

void _append(std::string& out, char32_t character)
{
    if (character < 0x800) {
        out += static_cast<char>(0xC0 | character >> 6);
    } else {
        out += static_cast<char>(0xE0 | character >> 12);
        out += static_cast<char>(0x80 | (character >> 6 & 0x3F));
    }
    out += static_cast<char>(0x80 | (character & 0x3F));
}

void _appendNamed(std::string& out, char32_t character)
{
    char name[24];
    std::snprintf(name, sizeof name, "⟨U+%04X⟩", static_cast<unsigned int>(character));
    out += name;
}

/// Characters with which ASCII can be smuggled past a reader, and those that no text may hold.
bool _isNone(char32_t c)
{
    return (c >= 0xE0000 && c <= 0xE007F) || (c >= 0xFDD0 && c <= 0xFDEF) || (c & 0xFFFE) == 0xFFFE;
}

/// True if the character is written in another way than by its own bytes.
bool _appendUnseen(std::string& out, char32_t c)
{
    if (c == '\n' || c == '\t') return false;
    if (c < 0x20)
        _append(out, 0x2400 + c); // the picture of the control character
    else if (c == 0x7F)
        _append(out, 0x2421);
    else if (steersText(c) || _isNone(c))
        _appendNamed(out, c);
    else
        return false;
    return true;
}

char const* _referenceFor(char c)
{
    switch (c) {
    case '&':
        return "&amp;";
    case '<':
        return "&lt;";
    case '>':
        return "&gt;";
    case '"':
        return "&quot;";
    case '\'':
        return "&#39;";
    default:
        return nullptr;
    }
}

} // namespace

std::string escaped(std::string_view text)
{
    std::string out;
    out.reserve(text.size() + text.size() / 8);
    while (!text.empty()) {
        Utf8Character const character = firstCharacter(text);
        std::string_view const bytes = text.substr(0, character.length == 0 ? 1 : character.length);
        if (character.length == 0)
            _append(out, 0xFFFD);
        else if (char const* reference = _referenceFor(text[0]))
            out += reference;
        else if (text.substr(0, 2) != "\r\n" && !_appendUnseen(out, character.value))
            out += bytes;
        text.remove_prefix(bytes.size());
    }
    return out;
}

std::string grouped(std::uint64_t number)
{
    std::string text = std::to_string(number);
    for (size_t at = text.size(); at > 3;) text.insert(at -= 3, 1, ',');
    return text;
}

std::string counted(std::uint64_t number, char const* one, char const* many)
{
    return grouped(number) + " " + (number == 1 ? one : many);
}

Html& Html::operator<<(std::string_view text)
{
    constexpr size_t mostBytes = 1000; // no path of a part is as long, even 100 deep
    std::string_view const shown = beginningOf(text, mostBytes);
    whole(shown);
    if (shown.size() < text.size()) *this << "…";
    return *this;
}

Html& Html::beginning(std::string_view text, size_t limit)
{
    std::string_view const shown = beginningOf(text, limit);
    whole(shown);
    if (shown.size() < text.size())
        *this << " <span class=\"cut\">… " << counted(text.size() - shown.size(), "byte", "bytes")
              << " more left out</span>";
    return *this;
}

} // namespace VelmaraCommand
