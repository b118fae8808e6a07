#include "Columns.h"

#include <algorithm>
#include <cstdio>
#include <iterator>

#include "Utf8.h"

namespace VelmaraCommand {

namespace {

constexpr std::string_view _more = "...";

struct Range {
    char32_t first, last;
};

/// Marks that stand above or below the character ahead of them.
constexpr Range _narrow[] = {{0x300, 0x36F},   {0x483, 0x489},   {0x591, 0x5BD},   {0x610, 0x61A},
                             {0x64B, 0x65F},   {0xE31, 0xE31},   {0xE34, 0xE3A},   {0xE47, 0xE4E},
                             {0x200B, 0x200D}, {0x20D0, 0x20F0}, {0xFE00, 0xFE0F}, {0xFEFF, 0xFEFF}};

constexpr Range _wide[] = {{0x1100, 0x115F},   {0x2E80, 0x303E},   {0x3041, 0xA4CF},  {0xAC00, 0xD7A3},
                           {0xF900, 0xFAFF},   {0xFE30, 0xFE6F},   {0xFF00, 0xFF60},  {0xFFE0, 0xFFE6},
                           {0x1F300, 0x1F64F}, {0x1F900, 0x1F9FF}, {0x20000, 0x3FFFD}};

template <size_t n> bool _isIn(Range const (&ranges)[n], char32_t c)
{
    return std::any_of(std::begin(ranges), std::end(ranges),
                       [c](Range const& r) { return r.first <= c && c <= r.last; });
}

size_t _columns(char32_t c)
{
    if (c < 0x300) return 1;
    return _isIn(_narrow, c) ? 0 : _isIn(_wide, c) ? 2 : 1;
}

/// Bytes of the beginning that take at most that many columns.
size_t _fitting(std::string_view text, size_t columns)
{
    size_t at = 0;
    while (at < text.size()) {
        Utf8Character const c = firstCharacter(text.substr(at));
        size_t const width = c.length == 0 ? 1 : _columns(c.value);
        if (width > columns) break;
        columns -= width;
        at += std::max(c.length, 1u);
    }
    return at;
}

} // namespace

size_t columnsOf(std::string_view text)
{
    size_t columns = 0;
    for (Utf8Character c; !text.empty(); text.remove_prefix(std::max(c.length, 1u))) {
        c = firstCharacter(text);
        columns += c.length == 0 ? 1 : _columns(c.value);
    }
    return columns;
}

std::string clipped(std::string_view text, size_t columns)
{
    if (_fitting(text, columns) == text.size()) return std::string(text);
    size_t const room = columns > _more.size() ? columns - _more.size() : 0;
    return std::string(text.substr(0, _fitting(text, room))) + std::string(_more);
}

std::string padded(std::string_view text, size_t columns)
{
    std::string out = clipped(text, columns);
    size_t const taken = columnsOf(out);
    return taken < columns ? out.append(columns - taken, ' ') : out;
}

std::vector<std::string> wrapped(std::string_view text, size_t columns, size_t lines)
{
    std::vector<std::string> out;
    while (!text.empty() && out.size() + 1 < lines) {
        size_t end = _fitting(text, columns);
        if (end == 0) break;
        size_t const blank = end < text.size() ? text.rfind(' ', end) : std::string_view::npos;
        if (blank != std::string_view::npos && blank > 0) end = blank;
        out.emplace_back(text.substr(0, end));
        text.remove_prefix(end);
        while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
    }
    if (!text.empty()) out.push_back(clipped(text, columns));
    return out;
}

std::string shownSize(std::uint64_t bytes)
{
    constexpr char const* units[] = {" kB", " MB", " GB", " TB"};
    if (bytes < 1000) return std::to_string(bytes) + (bytes == 1 ? " byte" : " bytes");
    double size = static_cast<double>(bytes) / 1000;
    char const* const* unit = std::begin(units);
    for (; size >= 999.95 && unit + 1 != std::end(units); ++unit) size /= 1000;
    char text[32];
    std::snprintf(text, sizeof text, "%.1f", size);
    return text + std::string(*unit);
}

} // namespace VelmaraCommand
