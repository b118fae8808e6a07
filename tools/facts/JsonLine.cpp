// Text is judged while it is written: bytes that stand for themselves are copied in runs, and only a byte
// outside of them is looked at as a character. Whether something was lost is known at the end of the
// string, so its Base64 follows the field at once, and nothing is read twice that lost nothing.
#include "JsonLine.h"

#include <algorithm>
#include <cstdint>
#include <iostream>
#include <string_view>

#include <velmara/Buffer.h>

#include "Fingerprint.h"
#include "Utf8.h"

namespace VelmaraCommand {

namespace {

/// Which bytes are written as they are, whatever stands around them.
struct Plain {
    constexpr Plain() : is()
    {
        for (int c = ' '; c < 0x7F; ++c) is[c] = c != '"' && c != '\\';
    }
    bool is[256];
};
constexpr Plain _plain;

size_t _lengthOfRun(std::string_view text)
{
    char const* at = text.data();
    char const* const end = at + text.size();
    while (at != end && _plain.is[static_cast<unsigned char>(*at)]) ++at;
    return static_cast<size_t>(at - text.data());
}

/// Of a control character, or another of the basic plane.
void _appendEscape(std::string& out, char32_t character)
{
    constexpr char digits[] = "0123456789abcdef";
    out += "\\u";
    for (int shift = 12; shift >= 0; shift -= 4) out += digits[character >> shift & 15];
}

void _appendCharacter(std::string& out, std::string_view bytes, char32_t character)
{
    switch (character) {
    case '"':
        out += "\\\"";
        return;
    case '\\':
        out += "\\\\";
        return;
    case '\n':
        out += "\\n";
        return;
    case '\r':
        out += "\\r";
        return;
    case '\t':
        out += "\\t";
        return;
    default:
        break;
    }
    if (steersText(character))
        _appendEscape(out, character);
    else
        out += bytes;
}

/// Of what a character could have begun with, as everyone counts it: the cut "\xE2\x82" is one mark.
size_t _lengthOfLost(std::string_view text)
{
    auto const byte = [&](size_t i) { return i < text.size() ? static_cast<unsigned char>(text[i]) : 0; };
    int const first = byte(0);
    size_t const most = first < 0xC2 || first > 0xF4 ? 1 : first < 0xE0 ? 1 : first < 0xF0 ? 2 : 3;
    int const from = first == 0xE0 ? 0xA0 : first == 0xF0 ? 0x90 : 0x80;
    int const to = first == 0xED ? 0x9F : first == 0xF4 ? 0x8F : 0xBF;
    if (most == 1 || byte(1) < from || byte(1) > to) return 1;
    return most == 3 && (byte(2) & 0xC0) == 0x80 ? 3 : 2;
}

/// Tells how much it took. False if that was no character.
bool _appendFirst(std::string& out, std::string_view text, size_t& length)
{
    Utf8Character const character = firstCharacter(text);
    length = character.length == 0 ? _lengthOfLost(text) : character.length;
    if (character.length == 0)
        out += "\xEF\xBF\xBD";
    else
        _appendCharacter(out, text.substr(0, length), character.value);
    return character.length != 0;
}

/// True if all of it could be written.
bool _appendString(std::string& out, std::string_view text)
{
    bool whole = true;
    out += '"';
    while (!text.empty()) {
        size_t length = _lengthOfRun(text);
        if (length > 0)
            out.append(text.data(), length);
        else
            whole = _appendFirst(out, text, length) && whole;
        text.remove_prefix(length);
    }
    out += '"';
    return whole;
}

bool _isUtf8(std::string_view text)
{
    while (!text.empty()) {
        size_t const n = std::max<size_t>(_lengthOfRun(text), firstCharacter(text).length);
        if (n == 0) return false;
        text.remove_prefix(n);
    }
    return true;
}

void _appendBase64(std::string& out, std::string const& bytes)
{
    out += '"';
    out += Velmara::Buffer(bytes.data(), static_cast<unsigned int>(bytes.size()), false).toBase64String();
    out += '"';
}

/// What an array lost, element by element.
void _appendLost(std::string& out, Json const& array)
{
    char before = '[';
    for (Json const& element : array) {
        out += before;
        before = ',';
        if (element.is_array() && !element.empty())
            _appendLost(out, element);
        else if (element.is_string() && !_isUtf8(element.get_ref<std::string const&>()))
            _appendBase64(out, element.get_ref<std::string const&>());
        else
            out += "null";
    }
    out += ']';
}

bool _appendValue(std::string& out, Json const& value);

bool _appendArray(std::string& out, Json const& array)
{
    bool whole = true;
    char const* separator = "";
    out += '[';
    for (Json const& element : array) {
        out += separator;
        separator = ",";
        whole = _appendValue(out, element) && whole;
    }
    out += ']';
    return whole;
}

void _appendFields(std::string& out, Json const& object, char const* separator)
{
    for (auto const& [name, value] : object.items()) {
        out += separator;
        separator = ",";
        _appendString(out, name);
        out += ':';
        if (_appendValue(out, value)) continue;
        out += ',';
        _appendString(out, name + "Base64");
        out += ':';
        value.is_array() ? _appendLost(out, value) : _appendBase64(out, value.get_ref<std::string const&>());
    }
}

/// False if bytes of it were lost for which a place beside is needed; an object has it within.
bool _appendValue(std::string& out, Json const& value)
{
    switch (value.type()) {
    case Json::value_t::string:
        return _appendString(out, value.get_ref<std::string const&>());
    case Json::value_t::array:
        return _appendArray(out, value);
    case Json::value_t::object:
        out += '{';
        _appendFields(out, value, "");
        out += '}';
        return true;
    default:
        out += value.dump();
        return true;
    }
}

} // namespace

void setIfAny(Json& json, char const* field, std::string const& text)
{
    if (!text.empty()) json[field] = text;
}

void appendJsonLine(std::string& out, Json const& object)
{
    out += "{\"schema\":\"";
    out += jsonSchema;
    out += "\",\"fingerprint\":\"";
    out += fingerprint();
    out += '"';
    _appendFields(out, object, ",");
    out += "}\n";
}

void writeJsonLine(Json const& object)
{
    std::string line;
    appendJsonLine(line, object);
    std::cout << line;
}

} // namespace VelmaraCommand
