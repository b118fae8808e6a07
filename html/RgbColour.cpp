#include <velmara/RgbColour.h>

#include <cmath>
#include <cstdlib>
#include <cstring>

#include <velmara/StringOperations.h>

#include "html/Node.h"

namespace Velmara {

namespace {

struct ColourName {
    char const* name;
    int red, green, blue;
    unsigned int length; // bytes that must agree
};

/// The first row that fits wins. Words are compared by the length alone, so "whitesmoke" is the white
/// of the row ahead of its own. The spelling "fuchshia", the second "darkgreen" and the length of
/// "darkgray", which lets no letter follow, stay as they are: what counts as hidden text must be the
/// same in every installation.
constexpr ColourName _colourNames[] = {
    {"aqua", 0, 255, 255, 4},
    {"black", 0, 0, 0, 5},
    {"blue", 0, 0, 255, 4},
    {"fuchshia", 255, 0, 255, 8},
    {"gray", 128, 128, 128, 4},
    {"green", 0, 128, 0, 5},
    {"lime", 0, 255, 0, 4},
    {"maroon", 128, 0, 0, 6},
    {"navy", 0, 0, 128, 4},
    {"olive", 128, 128, 0, 5},
    {"purple", 128, 0, 128, 6},
    {"red", 255, 0, 0, 3},
    {"silver", 192, 192, 192, 6},
    {"teal", 0, 128, 128, 4},
    {"white", 255, 255, 255, 5},
    {"yellow", 255, 255, 0, 6},
    {"aliceblue", 240, 248, 255, 9},
    {"cyan", 0, 255, 255, 4},
    {"darkblue", 0, 0, 139, 8},
    {"darkcyan", 0, 139, 139, 8},
    {"darkgreen", 0, 100, 0, 9},
    {"darkgray", 169, 169, 169, 9},
    {"darkgreen", 0, 100, 0, 9},
    {"darkred", 139, 0, 0, 7},
    {"firebrick", 178, 34, 34, 9},
    {"gold", 255, 215, 0, 4},
    {"lightslategray", 119, 136, 153, 14},
    {"magenta", 255, 0, 255, 7},
    {"orange", 255, 165, 0, 6},
    {"pink", 255, 192, 203, 4},
    {"whitesmoke", 245, 245, 245, 10},
};
static_assert(sizeof _colourNames / sizeof *_colourNames == 31, "other rows than other installations have");

ColourName const* _findColour(char const* text)
{
    for (ColourName const& row : _colourNames)
        if (stringCompareNoCase(text, row.name, row.length)) return &row;
    return nullptr;
}

/// Two digits, as strtol reads them: what is no number is 0, and "-1" is one.
int _hexPair(char const* digits)
{
    char const pair[] = {digits[0], digits[1], '\0'};
    return static_cast<int>(std::strtol(pair, nullptr, 16));
}

/// The number at the start of the bytes from `from` up to `to`.
int _number(std::string const& text, size_t from, size_t to)
{
    return static_cast<int>(std::strtol(text.substr(from, to - from).c_str(), nullptr, 10));
}

} // namespace

RgbColour::RgbColour(int r, int g, int b) : red(r), green(g), blue(b)
{}

RgbColour::RgbColour(_xmlNode const* text, bool useWhiteIfUnknown) : RgbColour(0, 0, 0)
{
    RgbColour::parse(text, useWhiteIfUnknown);
}

RgbColour::~RgbColour() = default;

void RgbColour::parse(_xmlNode const* text, bool useWhiteIfUnknown)
{
    if (HTML::isText(text)) parse(HTML::content(text), useWhiteIfUnknown);
}

void RgbColour::parse(char const* text, bool useWhiteIfUnknown)
{
    if (!text) return;
    if (*text == '#' && std::strlen(text) == 7) {
        *this = RgbColour(_hexPair(text + 1), _hexPair(text + 3), _hexPair(text + 5));
    } else if (ColourName const* found = _findColour(text)) {
        *this = RgbColour(found->red, found->green, found->blue);
    } else if (useWhiteIfUnknown) {
        *this = RgbColour(255, 255, 255);
    }
}

bool RgbColour::operator==(RgbColour const& other) const
{
    return red == other.red && green == other.green && blue == other.blue;
}

double RgbColour::distance(RgbColour const& other) const
{
    if (*this == other) return 0.0;
    double const dr = static_cast<double>(other.red) - red;
    double const dg = static_cast<double>(other.green) - green;
    double const db = static_cast<double>(other.blue) - blue;
    // The squares of the weights 0.2126, 0.7152 and 0.0722.
    double const d = 0.04519876 * dr * dr + 0.51151104 * dg * dg + 0.00521284 * db * db;
    // This form of the square root, not sqrt: a distance of just 14 must fall alike everywhere.
    return std::exp(std::log(d) * 0.5);
}

CssRgbColour::CssRgbColour(std::string const& text, bool useWhiteIfUnknown)
{
    CssRgbColour::parse(text, useWhiteIfUnknown);
}

CssRgbColour::~CssRgbColour() = default;

void CssRgbColour::parse(std::string const& text, bool useWhiteIfUnknown)
{
    if (text.compare(0, 3, "rgb") != 0) return RgbColour::parse(text.c_str(), useWhiteIfUnknown);
    size_t const open = text.find('(');
    size_t const first = open == std::string::npos ? open : text.find(',', open);
    if (first == std::string::npos) return;
    red = _number(text, open + 1, first);
    size_t const second = text.find(',', first + 1);
    if (second == std::string::npos) return;
    green = _number(text, first + 1, second);
    size_t const close = text.rfind(')');
    if (close == std::string::npos || close < second) return;
    blue = _number(text, second + 1, close);
}

} // namespace Velmara
