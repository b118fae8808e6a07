// Reads the elements of the type database into records.
//
// The dialect is narrower than that of desktop programs and has turns of its own. Installations match
// types in each other's statistics, so they are kept as they are:
//
//   - Every number is hexadecimal, with "0x" or without, and is as long as its digits say, whatever
//     its type is called: big32 "23" is the one byte 0x23.
//   - A 0 byte of a number is stored as "X"; the tests do the same to the content before they compare.
//   - Digits are not checked: "0xg1" is the byte 16 * 16 + 1, kept to 8 bits.
//   - An unknown escape in a text ends the reading of escapes, and the rest is copied as it stands.
//
// An element that cannot be read is dropped alone: its parent and its siblings stay. Depth is bounded
// by the XML reader, which refuses documents nested deeper than 256.
#include "filetype/MatchReader.h"

#include <libxml/tree.h>

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <string_view>

#include "filetype/MagicMask.h"
#include "runtime/Ascii.h"

namespace Velmara {

namespace {

using Match = SharedMimeType::Magic::Match;
using Attribute = std::optional<std::string>;

struct TypeName {
    int type;
    std::string_view name;
};

constexpr TypeName _typeNames[] = {
    {Match::String, "string"}, {Match::Big16, "big16"},       {Match::Big32, "big32"},       {Match::Host16, "host16"},
    {Match::Host32, "host32"}, {Match::Little16, "little16"}, {Match::Little32, "little32"}, {Match::Byte, "byte"},
};

bool _isElement(xmlNode const* node, char const* name)
{
    return node->type == XML_ELEMENT_NODE && xmlStrEqual(node->name, reinterpret_cast<xmlChar const*>(name));
}

Attribute _attribute(xmlNode const* node, char const* name)
{
    xmlChar* const text = xmlGetProp(node, reinterpret_cast<xmlChar const*>(name));
    if (!text) return std::nullopt;
    std::string value(reinterpret_cast<char const*>(text));
    xmlFree(text);
    return value;
}

int _decimal(char const* text)
{
    return static_cast<int>(std::strtol(text, nullptr, 10));
}

int _decimalOr(Attribute const& text, int otherwise)
{
    return text ? _decimal(text->c_str()) : otherwise;
}

// ---- numbers --------------------------------------------------------------------------------

/// "host" is little-endian: the appliances are.
bool _isLittleEndian(int type)
{
    return type == Match::Host16 || type == Match::Host32 || type == Match::Little16 || type == Match::Little32;
}

void _cutPrefix(std::string& digits)
{
    if (digits.compare(0, 2, "0x") == 0) digits.erase(0, 2);
}

/// Digits are paired from the front, and a last single one stands by itself.
template <class Text> std::string _pairsReversed(Text const& digits)
{
    std::string reversed;
    for (size_t at = (digits.size() + 1) / 2; at-- > 0;) reversed.append(digits, at * 2, 2);
    return reversed;
}

/// Any character is taken for a digit.
unsigned _digitValue(unsigned char c)
{
    if (isDigit(c)) return c - '0';
    return static_cast<unsigned>(c - (c >= 'a' && c <= 'z' ? 'a' - 10 : 'A' - 10));
}

std::string _bytesOfDigits(std::string_view digits)
{
    std::string bytes;
    for (size_t at = 0; at < digits.size(); at += 2) {
        unsigned value = _digitValue(static_cast<unsigned char>(digits[at]));
        if (digits.size() - at > 1) value = value * 16 + _digitValue(static_cast<unsigned char>(digits[at + 1]));
        bytes += static_cast<char>(withoutZero(static_cast<unsigned char>(value)));
    }
    return bytes;
}

std::string _number(std::string digits, int type)
{
    _cutPrefix(digits);
    std::string bytes = _bytesOfDigits(digits);
    if (_isLittleEndian(type)) std::reverse(bytes.begin(), bytes.end());
    return bytes;
}

std::string _byte(std::string digits)
{
    _cutPrefix(digits);
    return _bytesOfDigits(std::string_view(digits).substr(0, 2));
}

// ---- texts ----------------------------------------------------------------------------------

struct Escape {
    char name, byte;
};

constexpr Escape _escapes[] = {{'"', '"'},  {'&', '&'},  {'\\', '\\'}, {'b', '\b'}, {'f', '\f'},
                               {'n', '\n'}, {'r', '\r'}, {'t', '\t'},  {'v', '\v'}};

bool _isOctal(char c)
{
    return c >= '0' && c <= '7';
}

/// Both read at least nothing, advance behind what they read, and keep the value to 8 bits.
char _octal(std::string_view text, size_t& at)
{
    unsigned value = 0;
    for (size_t const end = std::min(text.size(), at + 3); at < end && _isOctal(text[at]); ++at)
        value = value * 8 + static_cast<unsigned>(text[at] - '0');
    return static_cast<char>(value);
}

char _hexadecimal(std::string_view text, size_t& at)
{
    size_t const from = at;
    unsigned value = 0;
    for (size_t const end = std::min(text.size(), at + 2); at < end && isHexDigit(static_cast<unsigned char>(text[at]));
         ++at)
        value = value * 16 + static_cast<unsigned>(hexValue(static_cast<unsigned char>(text[at])));
    return at == from ? 'x' : static_cast<char>(value);
}

/// Reads what stands behind a backslash and gives the place behind it; the end if reading is over.
size_t _unescape(std::string_view text, size_t at, std::string& bytes)
{
    if (at == text.size()) return at;
    auto const known = std::find_if(std::begin(_escapes), std::end(_escapes),
                                    [&](Escape const& escape) { return escape.name == text[at]; });
    if (known != std::end(_escapes)) {
        bytes += known->byte;
        return at + 1;
    }
    if (_isOctal(text[at])) {
        bytes += _octal(text, at);
        return at;
    }
    if (text[at] == 'x') {
        bytes += _hexadecimal(text, ++at);
        return at;
    }
    bytes += text.substr(at);
    return text.size();
}

std::string _text(std::string_view text)
{
    std::string bytes;
    for (size_t at = 0; at < text.size();) {
        if (text[at] != '\\')
            bytes += text[at++];
        else
            at = _unescape(text, at + 1, bytes);
    }
    return bytes;
}

// ---- tests ----------------------------------------------------------------------------------

bool _readType(xmlNode const* element, Match& match)
{
    Attribute const name = _attribute(element, "type");
    auto const row = std::find_if(std::begin(_typeNames), std::end(_typeNames),
                                  [&](TypeName const& known) { return name && known.name == *name; });
    if (row == std::end(_typeNames)) return false;
    match.type = row->type;
    return true;
}

void _readMask(xmlNode const* element, Match& match)
{
    Attribute mask = _attribute(element, "mask");
    if (!mask) return;
    _cutPrefix(*mask);
    match.hasMask = !mask->empty();
    match.mask = _isLittleEndian(match.type) ? _pairsReversed(*mask) : *mask;
}

bool _readValue(xmlNode const* element, Match& match)
{
    Attribute const value = _attribute(element, "value");
    if (!value || value->empty()) return false;
    if (match.type == Match::String) {
        match.value = _text(*value);
        if (match.hasMask) match.value = masked(match.value, match.mask);
    } else
        match.value = match.type == Match::Byte ? _byte(*value) : _number(*value, match.type);
    return true;
}

bool _readOffset(xmlNode const* element, Match& match)
{
    Attribute const offset = _attribute(element, "offset");
    if (!offset) return false;
    size_t const colon = offset->find(':');
    match.offsetStart = _decimal(offset->c_str());
    match.offsetEnd = colon == std::string::npos ? match.offsetStart : _decimal(offset->c_str() + colon + 1);
    return match.offsetStart >= 0 && match.offsetStart <= match.offsetEnd;
}

void _readMatches(xmlNode const* parent, std::vector<Match>& matches);

void _readMatch(xmlNode const* element, std::vector<Match>& matches)
{
    Match match;
    if (!_isElement(element, "match") || !_readType(element, match)) return;
    _readMask(element, match);
    if (!_readValue(element, match) || !_readOffset(element, match)) return;
    _readMatches(element, match.matches);
    matches.push_back(std::move(match));
}

void _readMatches(xmlNode const* parent, std::vector<Match>& matches)
{
    for (xmlNode const* child = parent->children; child; child = child->next) _readMatch(child, matches);
}

// ---- types ----------------------------------------------------------------------------------

SharedMimeType::GlobPattern _readGlob(xmlNode const* element)
{
    SharedMimeType::GlobPattern glob;
    glob.pattern = _attribute(element, "pattern").value_or("");
    glob.weight = _decimalOr(_attribute(element, "weight"), glob.weight);
    glob.ignoreCase = _attribute(element, "case-sensitive") != "true";
    return glob;
}

SharedMimeType::Magic _readMagic(xmlNode const* element)
{
    SharedMimeType::Magic magic;
    magic.priority = _decimalOr(_attribute(element, "priority"), magic.priority);
    _readMatches(element, magic.matches);
    return magic;
}

void _readPart(xmlNode const* element, SharedMimeType& type)
{
    if (_isElement(element, "sub-class-of")) {
        if (Attribute const parent = _attribute(element, "type")) type.subClassOf.insert(*parent);
    } else if (_isElement(element, "glob"))
        type.globs.push_back(_readGlob(element));
    else if (_isElement(element, "magic"))
        type.magics.push_back(_readMagic(element));
}

} // namespace

std::optional<SharedMimeType> readMimeType(_xmlNode const* element)
{
    if (!_isElement(element, "mime-type")) return std::nullopt;
    SharedMimeType type;
    type.mimeType = _attribute(element, "type").value_or("");
    if (type.mimeType.empty()) return std::nullopt;
    for (xmlNode const* child = element->children; child; child = child->next) _readPart(child, type);
    return type;
}

} // namespace Velmara
