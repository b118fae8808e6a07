// Attachment names. A name comes plain (`name=a`), which may hold encoded words although no standard
// allows it, or in segments whose names go on with "*": `name*0*=utf-8''a%20; name*1=b` is "a b". One
// segment that ends in "*" makes the whole text an extended one, with the character set ahead of its
// first single quote and %XX for bytes; `name*0=a; name*1=b` is joined and read as a plain one.
#include "header/AttachmentNames.h"

#include <velmara/EncodedWord.h>
#include <velmara/VmaraConv.h>

#include "runtime/Ascii.h"
#include "runtime/BufferView.h"

namespace Velmara {

namespace {

struct _Collected {
    std::string text;
    bool extended = false;
};

_Collected _collect(std::list<TypeAndValue> const& parameters, std::string_view name)
{
    _Collected collected;
    for (TypeAndValue const& parameter : parameters) {
        std::string const& type = parameter.type();
        if (type.compare(0, name.size(), name) != 0) continue;
        // The plain form is the one that all mail clients know and show.
        if (type.size() == name.size()) return {parameter.value(), false};
        if (type[name.size()] != '*') continue;
        collected.text += parameter.value();
        collected.extended = collected.extended || type.back() == '*';
    }
    return collected;
}

/// Undoes %XX. A "%" without two digits costs itself and the byte that is no digit, or itself and its
/// one digit: names that installations exchange have to lose the same bytes.
std::string _unescaped(std::string_view text)
{
    enum { Plain, AtFirstDigit, AtSecondDigit } state = Plain;
    int high = 0;
    std::string bytes;
    bytes.reserve(text.size());
    for (char c : text) {
        int const digit = hexValue(static_cast<unsigned char>(c));
        if (state == Plain) {
            if (c == '%')
                state = AtFirstDigit;
            else
                bytes += c;
        } else if (state == AtFirstDigit) {
            high = digit;
            state = digit < 0 ? Plain : AtSecondDigit;
        } else {
            bytes += digit < 0 ? c : static_cast<char>(high << 4 | digit);
            state = Plain;
        }
    }
    return bytes;
}

/// `charset'language'data`; the language tells nothing of the bytes. Without a name ahead of two
/// quotes the set is that of RFC 2231's default.
std::string _decoded(std::string const& text)
{
    size_t const first = text.find('\'');
    size_t const second = first == std::string::npos ? first : text.find('\'', first + 1);
    bool const named = second != std::string::npos && first > 0;
    size_t const start = second == std::string::npos ? 0 : second + 1;
    std::string const bytes = _unescaped(std::string_view(text).substr(start));
    Buffer const utf8 = VmaraConv::toUtf8(named ? text.substr(0, first) : "us-ascii", bytes.data(),
                                          static_cast<unsigned int>(bytes.size()), 0, true, true);
    return std::string(viewOf(utf8));
}

} // namespace

std::string collectRfc2231Parameter(std::list<TypeAndValue> const& parameters, std::string_view name)
{
    _Collected const collected = _collect(parameters, name);
    return collected.extended ? _decoded(collected.text) : std::string(viewOf(stringToUtf8(collected.text, nullptr)));
}

} // namespace Velmara
