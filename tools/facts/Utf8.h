#pragma once

#include <string_view>

/// Reading hostile text character by character, for those who show it.
namespace VelmaraCommand {

struct Utf8Character {
    char32_t value = 0;
    unsigned int length = 0; // 0: the first byte starts no UTF-8 sequence
};

/// What a text that is not empty begins with. Forms that are longer than need be, surrogates and
/// values above U+10FFFF are no characters.
Utf8Character firstCharacter(std::string_view text);

/// Whether a character moves what is written around it: C0 and C1 controls, DEL, line and paragraph
/// separators, and those that turn the direction of writing.
bool steersText(char32_t character);

/// The first bytes of a text, at most `limit`, without cutting a character in two.
std::string_view beginningOf(std::string_view text, size_t limit);

} // namespace VelmaraCommand
