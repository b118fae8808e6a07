#include "Utf8.h"

namespace VelmaraCommand {

namespace {

unsigned int _lengthAfter(unsigned char first)
{
    if (first < 0x80) return 1;
    if (first < 0xC2) return 0;
    return first < 0xE0 ? 2 : first < 0xF0 ? 3 : first < 0xF5 ? 4 : 0;
}

struct Range {
    char32_t first, last;
};

constexpr Range _steering[] = {
    {0x0000, 0x001F}, // C0
    {0x007F, 0x009F}, // DEL, C1
    {0x061C, 0x061C}, // Arabic letter mark
    {0x200E, 0x200F}, // left-to-right and right-to-left mark
    {0x2028, 0x202E}, // separators, embeddings and overrides
    {0x2066, 0x2069}, // isolates
};

bool _isContinuation(char byte)
{
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

} // namespace

Utf8Character firstCharacter(std::string_view text)
{
    auto const first = static_cast<unsigned char>(text[0]);
    unsigned int const length = _lengthAfter(first);
    if (length == 0 || length > text.size()) return {};
    char32_t value = length == 1 ? first : first & (0x7F >> length);
    for (unsigned int i = 1; i < length; ++i) {
        if (!_isContinuation(text[i])) return {};
        value = value << 6 | (static_cast<unsigned char>(text[i]) & 0x3F);
    }
    bool const tooLong = (length == 3 && value < 0x800) || (length == 4 && value < 0x10000);
    bool const noCharacter = (value >= 0xD800 && value < 0xE000) || value > 0x10FFFF;
    return tooLong || noCharacter ? Utf8Character{} : Utf8Character{value, length};
}

bool steersText(char32_t character)
{
    for (Range const& range : _steering)
        if (character >= range.first && character <= range.last) return true;
    return false;
}

std::string_view beginningOf(std::string_view text, size_t limit)
{
    if (text.size() <= limit) return text;
    size_t end = limit;
    while (end > 0 && limit - end < 3 && _isContinuation(text[end])) --end;
    return text.substr(0, end);
}

} // namespace VelmaraCommand
