#include <velmara/StringConversions.h>

#include <cstring>

#include <velmara/EncodedWord.h>

#include "charset/AddressText.h"
#include "runtime/BufferView.h"

namespace Velmara {

namespace {

/// Up to the first NUL: callers were given C strings, and what stands behind a NUL was never shown.
std::string _cString(Buffer const& buffer)
{
    return std::string(untilNul(viewOf(buffer)));
}

std::string _withAddress(std::string const& name, EmailAddress const& address)
{
    return name + " <" + address.address() + '>';
}

std::string _shownAddress(EmailAddress const& address, VMRStaticCharSetFallbacks const* fallbacks)
{
    if (address.displayName().empty()) return address.address();
    return _withAddress(_cString(stringToUtf8(address.displayName(), fallbacks)), address);
}

/// `show` applied to each address of the list, joined; "" if anything goes wrong.
template <class Show> std::string _eachAddress(std::string const& text, Show show)
{
    std::string joined;
    try {
        for (EmailAddress const& address : EmailAddress::rfc5322ParseList(text, true)) {
            if (!joined.empty()) joined += ", ";
            joined += show(address);
        }
    } catch (Exception const&) {
        return std::string();
    }
    return joined;
}

/// The reference for a byte of HTML, null for one that stands for itself.
constexpr char const* _reference(char c)
{
    switch (c) {
    case '"':
        return "&quot;";
    case '&':
        return "&amp;";
    case '<':
        return "&lt;";
    case '>':
        return "&gt;";
    default:
        return nullptr;
    }
}

std::string _nameForHtml(std::string const& name)
{
    bool const mayBeEncoded = name.find("=?") != std::string::npos;
    return vmara_html_encode(mayBeEncoded ? _cString(stringDecodeRfc2047(name)) : name.c_str());
}

std::string _addressForHtml(EmailAddress const& address)
{
    std::string const shown = "&lt;" + address.address() + "&gt;";
    return address.displayName().empty() ? shown : _nameForHtml(address.displayName()) + ' ' + shown;
}

constexpr size_t _longestReference = 6; // "&quot;"

/// How much of the text fits in `room` without half a character or half a reference at the end.
size_t _wholeUpTo(std::string const& text, size_t room)
{
    if (text.size() <= room) return text.size();
    auto const isTrail = [&](size_t at) { return (static_cast<unsigned char>(text[at]) & 0xC0) == 0x80; };
    size_t const amp = text.rfind('&', room);
    if (amp != std::string::npos && room - amp < _longestReference && text.find(';', amp) >= room) return amp;
    size_t at = room;
    while (at > 0 && room - at < 3 && isTrail(at)) --at;
    return isTrail(at) ? room : at; // text that is no UTF-8 is cut anywhere
}

} // namespace

std::string addressForHeader(EmailAddress const& address)
{
    if (address.displayName().empty()) return address.address();
    return _withAddress(vmara_encode_rfc2047(address.displayName(), "UTF-8"), address);
}

std::string vmara_html_encode(std::string const& text)
{
    if (text.find_first_of("<>\"&") == std::string::npos) return text;
    std::string escaped;
    escaped.reserve(text.size() + text.size() / 8);
    for (char c : text) {
        if (char const* reference = _reference(c))
            escaped += reference;
        else if (c != '\0')
            escaped += c;
    }
    return escaped;
}

std::string stringToHtmlEscapedUTF8(std::string const& text, VMRStaticCharSetFallbacks const* fallbacks)
{
    return vmara_html_encode(_cString(stringToUtf8(text, fallbacks)));
}

std::string emailAddressToUTF8(std::string const& text, VMRStaticCharSetFallbacks const* fallbacks)
{
    return _eachAddress(text, [&](EmailAddress const& address) { return _shownAddress(address, fallbacks); });
}

std::string emailAddressToHtmlEscapedUTF8(std::string const& text, VMRStaticCharSetFallbacks const* fallbacks)
{
    return vmara_html_encode(emailAddressToUTF8(text, fallbacks));
}

std::string stringToValidEmailAddressRfc822HeaderValue(std::string const& text)
{
    return _eachAddress(text, addressForHeader);
}

} // namespace Velmara

using namespace Velmara;

extern "C" long vmara_emailaddress_get_decoded_html(EmailAddress const* address, char* dst, unsigned long size)
{
    if (!address || !dst || size == 0) return -1;
    std::string const text = _addressForHtml(*address);
    // The address may hold a NUL, and what is told is the length of a C string.
    size_t const length = _wholeUpTo(text.c_str(), size - 1);
    std::memcpy(dst, text.data(), length);
    dst[length] = '\0';
    return static_cast<long>(length);
}
