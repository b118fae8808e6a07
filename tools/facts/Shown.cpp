#include "Shown.h"

#include <unistd.h>

#include <cstdlib>

#include <velmara/EncodedWord.h>

#include "Text.h"
#include "Utf8.h"

namespace VelmaraCommand {

namespace {

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
        Utf8Character const character = firstCharacter(text);
        std::string_view const bytes = text.substr(0, character.length == 0 ? 1 : character.length);
        if (character.length == 0 || steersText(character.value))
            _appendEscaped(out, bytes);
        else
            out += bytes;
        text.remove_prefix(bytes.size());
    }
    return out;
}

std::string decoded(std::string const& value)
{
    return stringOf(Velmara::stringToUtf8(value, nullptr));
}

bool colourWanted()
{
    char const* forbidden = std::getenv("NO_COLOR");
    return ::isatty(STDOUT_FILENO) && !(forbidden && *forbidden);
}

} // namespace VelmaraCommand
