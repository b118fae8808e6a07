#include <velmara/FontSize.h>

#include <algorithm>
#include <cstdlib>

#include "html/Node.h"
#include "runtime/Ascii.h"

namespace Velmara {

namespace {

constexpr unsigned long _largest = 7;

/// Numbers of a "font-size" up to a limit and the size that they give. Points and pixels read alike.
struct Threshold {
    unsigned long limit;
    unsigned int size;
};
constexpr Threshold _thresholds[] = {{5, 0}, {10, 1}, {12, 2}, {14, 3}, {16, 4}, {18, 5}, {20, 6}, {22, 7}};

/// "x-small" is left out on purpose: a word without a row is text too small to be read.
std::set<CssFontSize::TextSize> const _sizes{{"xx-small", 1}, {"small", 2},   {"medium", 3},
                                             {"large", 4},    {"x-large", 5}, {"xx-large", 6}};

/// A negative number is read as a huge one: as a size it is the largest, and added to a size it wraps around
/// to the difference.
unsigned long _number(char const* text)
{
    return static_cast<unsigned long>(std::strtol(text, nullptr, 10));
}

unsigned long _relative(char const* text, unsigned long current)
{
    unsigned long const n = _number(text + 1);
    if (*text == '+') return current + n;
    return current > n ? current - n : 1;
}

unsigned int _sizeOf(unsigned long number)
{
    for (Threshold const& row : _thresholds)
        if (number <= row.limit) return row.size;
    return _largest;
}

} // namespace

FontSize::~FontSize() = default;

void FontSize::parse(_xmlNode const* text, unsigned int current)
{
    char const* content = HTML::isText(text) ? HTML::content(text) : nullptr;
    if (!content) return;
    bool const relative = *content == '+' || *content == '-';
    unsigned long const size = relative ? _relative(content, current) : _number(content);
    m_size = static_cast<unsigned int>(std::min(size == 0 && !relative ? 1 : size, _largest));
}

CssFontSize::~CssFontSize() = default;

void CssFontSize::parse(std::string const& text, unsigned int current)
{
    if (text == "smaller") {
        m_size = current == 0 ? 0 : current - 1;
    } else if (text == "larger") {
        m_size = current >= _largest ? _largest : current + 1;
    } else if (std::any_of(text.begin(), text.end(), isDigit)) {
        m_size = _sizeOf(_number(text.c_str()));
    } else {
        auto const found = _sizes.find(TextSize{text, 0});
        if (found != _sizes.end()) m_size = found->size;
    }
}

std::set<CssFontSize::TextSize> const& CssFontSize::sizes() const
{
    return _sizes;
}

} // namespace Velmara
