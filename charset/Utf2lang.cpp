#include <velmara/Utf2lang.h>

#include <algorithm>
#include <cstring>

#include <velmara/VmaraConv.h>

namespace Velmara {

namespace {

constexpr unsigned int _mostBytes = 2000;      // of UTF-32: the head of a text decides
constexpr unsigned long _mostCharacters = 512; // scanned at the most

struct Range {
    wchar_t first, last;
};

constexpr Range _chinese[] = {{0x4E00, 0x9FFF}};
constexpr Range _japanese[] = {{0x3040, 0x309F}, {0x30A0, 0x30FF}, {0x3190, 0x319F}, {0x31F0, 0x31FF}};
constexpr Range _korean[] = {{0x1100, 0x11FF}, {0xAC00, 0xDFAF}};
constexpr Range _russian[] = {{0x0400, 0x04FF}, {0x0500, 0x052F}, {0x2DE0, 0x2DFF}, {0xA640, 0xA69F}};

template <size_t n> bool _isIn(Range const (&ranges)[n], wchar_t c)
{
    return std::any_of(ranges, ranges + n, [c](Range const& range) { return c >= range.first && c <= range.last; });
}

} // namespace

Utf2lang::Utf2lang() = default;

bool Utf2lang::isCN(wchar_t c)
{
    return _isIn(_chinese, c);
}

bool Utf2lang::isJP(wchar_t c)
{
    return _isIn(_japanese, c);
}

bool Utf2lang::isKR(wchar_t c)
{
    return _isIn(_korean, c);
}

bool Utf2lang::isRU(wchar_t c)
{
    return _isIn(_russian, c);
}

void Utf2lang::scan(wchar_t const* text, int count)
{
    int cn = 0, jp = 0, kr = 0, ru = 0;
    for (int i = 0; i < count; ++i) {
        if (isCN(text[i]))
            ++cn;
        else if (isJP(text[i]))
            ++jp;
        else if (isKR(text[i]))
            ++kr;
        else if (isRU(text[i]))
            ++ru;
    }
    if (kr == 0 && jp == 0 && cn > 0)
        chinese = true;
    else if (jp > 0 && jp >= kr)
        japanese = true;
    else if (kr > jp)
        korean = true;
    else if (ru > 0)
        russian = true;
}

int Utf2lang::str2wc(char const* text, unsigned long length, Buffer& out, char const* charset)
{
    // No character takes more than 12 bytes in any of the sets, so what lies further cannot count.
    constexpr unsigned long mostRead = 1ul << 20;
    VmaraConv::conv(out, "utf-32LE", charset, text, static_cast<unsigned int>(std::min(length, mostRead)), _mostBytes,
                    true, true);
    return 0;
}

int Utf2lang::str2wc(char const* text, unsigned long length, wchar_t* out, unsigned long capacity, char const* charset)
{
    if (capacity == 0) return 0;
    Buffer wide;
    str2wc(text, length, wide, charset);
    size_t const characters = std::min<size_t>(wide.length() / sizeof(wchar_t), capacity - 1);
    if (characters != 0) std::memcpy(out, wide.data(), characters * sizeof(wchar_t));
    out[characters] = L'\0';
    return 0;
}

void Utf2lang::proc(char const* text, unsigned long length)
{
    wchar_t wide[_mostCharacters + 1] = {};
    Buffer converted;
    str2wc(text, length, converted, "UTF-8");
    unsigned long const characters = std::min<unsigned long>(converted.length() / sizeof(wchar_t), _mostCharacters);
    if (characters != 0) std::memcpy(wide, converted.data(), characters * sizeof(wchar_t));
    scan(wide, static_cast<int>(characters));
}

void Utf2lang::proc(std::string const& text)
{
    proc(text.data(), text.size());
}

} // namespace Velmara
