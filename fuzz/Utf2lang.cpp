// The script of a text against a count of its characters, made of few that stand at the ends of ranges;
// and raw bytes, of which only the first 500 characters may matter.
#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <string>

#include <velmara/Utf2lang.h>

using namespace Velmara;

namespace {

void require(bool holds)
{
    if (!holds) std::abort();
}

enum Script { None, Chinese, Japanese, Korean, Russian };

struct Character {
    char const* text;
    Script script;
};

constexpr Character characters[] = {
    {"a", None},         {" ", None},          {"\u3190", Japanese}, {"\u4E00", Chinese}, {"\u9FFF", Chinese},
    {"\uA000", None},    {"\u3040", Japanese}, {"\u30FF", Japanese}, {"\u303F", None},    {"\u31FF", Japanese},
    {"\u1100", Korean},  {"\u11FF", Korean},   {"\u1200", None},     {"\uAC00", Korean},  {"\uD7FF", Korean},
    {"\u0400", Russian}, {"\u052F", Russian},  {"\u0530", None},     {"\u2DE0", Russian}, {"\uA69F", Russian},
    {"\uA6A0", None},    {"\U00020000", None}, {"\u31A0", None},     {"\xFF", None}};

Script plainScript(int const (&counts)[5])
{
    if (counts[Korean] == 0 && counts[Japanese] == 0 && counts[Chinese] >= 1) return Chinese;
    if (counts[Japanese] > 0 && counts[Japanese] >= counts[Korean]) return Japanese;
    if (counts[Korean] >= 1 && counts[Korean] > counts[Japanese]) return Korean;
    return counts[Russian] != 0 ? Russian : None;
}

Script scriptOf(std::string const& text)
{
    Utf2lang scanner;
    scanner.proc(text);
    require(scanner.chinese + scanner.japanese + scanner.korean + scanner.russian <= 1);
    require(scanner.isCJK() == (scanner.chinese || scanner.japanese || scanner.korean));
    return scanner.chinese    ? Chinese
           : scanner.japanese ? Japanese
           : scanner.korean   ? Korean
           : scanner.russian  ? Russian
                              : None;
}

void checkCharacters(std::uint8_t const* data, std::size_t n)
{
    std::string text;
    int counts[5] = {};
    std::size_t const repeats = n == 0 ? 1 : 1 + data[0] / 8u;
    std::size_t number = 0;
    for (std::size_t i = 0; i < n * repeats; ++i, ++number) {
        Character const& character = characters[data[i % n] % std::size(characters)];
        text += character.text;
        if (number < 500) ++counts[character.script];
    }
    require(scriptOf(text) == plainScript(counts));
}

void checkArray(std::string const& text)
{
    for (unsigned long capacity : {0ul, 1ul, 7ul, 600ul}) {
        std::wstring room(capacity + 1, L'#');
        require(Utf2lang().str2wc(text.data(), text.size(), &room[0], capacity, "UTF-8") == 0);
        require(room.back() == L'#');
        require(capacity == 0 || room.find(L'\0') < capacity);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t n)
{
    checkCharacters(data, n);
    std::string const text(reinterpret_cast<char const*>(data), n);
    checkArray(text);
    // No raw text of so few bytes has 500 characters.
    std::string const filled = text.substr(0, 400) + std::string(500, '.');
    require(scriptOf(filled) == scriptOf(filled + "\u3042\uAC00\u0416\u4E2D"));
    return 0;
}
