// What stands between the slashes of a link and the name that is looked up. Browsers do it in this
// order, and the order is what disguises rely on: user information is cut off ahead of the decoding,
// so "%40" hides no host; names are decoded and mapped (UTS #46) ahead of the search for numbers, so
// digits of full width do make an address; characters that no host can have are searched last, in
// what came out.
//
//     user:pass@EXAMPLE%2ecom:80    example.com
//     0x7f.1                        127.0.0.1
//     a%2fb                         none: a slash in the name itself
//
// A name of ASCII without a label "xn--" maps to its lower-case form, so ICU sees the others only. Its
// work can grow with the square of the labels; names too long for any host are shortened first by the
// linear mapping that drops invisible characters, and are none if they stay too long.
#include "runtime/UriHost.h"

#include <algorithm>
#include <memory>
#include <new>

#include <arpa/inet.h>
#include <unicode/bytestream.h>
#include <unicode/idna.h>
#include <unicode/normalizer2.h>

#include <velmara/IPAddress.h>
#include <velmara/StringOperations.h>

#include "runtime/Ascii.h"

namespace Velmara {

namespace {

constexpr size_t _longestName = 253;    // what the DNS can look up
constexpr size_t _longestMapped = 1024; // bytes that ICU is given; 253 characters have fewer

/// Not a character of any domain, in the reading of browsers.
bool _isForbidden(unsigned char c)
{
    return c <= ' ' || c == 0x7f ||
           std::string_view("#/:<>?@[\\]^`{|}%").find(static_cast<char>(c)) != std::string_view::npos;
}

bool _isPlain(std::string const& name)
{
    return !stringContains8bitChar(name) && name.find("xn--") == std::string::npos;
}

/// A name is not another one because memory was short.
void _checkMemory(UErrorCode status)
{
    if (status == U_MEMORY_ALLOCATION_ERROR) throw std::bad_alloc();
}

/// Drops what is invisible and folds widths and case; "" where that leaves it too long.
std::string _shortened(std::string const& name)
{
    UErrorCode status = U_ZERO_ERROR;
    icu::Normalizer2 const* fold = icu::Normalizer2::getNFKCCasefoldInstance(status);
    _checkMemory(status);
    if (U_FAILURE(status)) return std::string();
    std::string folded;
    icu::StringByteSink<std::string> sink(&folded);
    fold->normalizeUTF8(0, icu::StringPiece(name.data(), static_cast<int32_t>(name.size())), sink, nullptr, status);
    _checkMemory(status);
    return U_SUCCESS(status) && folded.size() <= _longestMapped ? folded : std::string();
}

/// Read while the process starts: if memory is missing then, ICU remembers that for good.
[[maybe_unused]] bool const s_foldingIsSetUp = [] {
    UErrorCode status = U_ZERO_ERROR;
    icu::Normalizer2::getNFKCCasefoldInstance(status);
    return U_SUCCESS(status);
}();

icu::IDNA const* _idna()
{
    static std::unique_ptr<icu::IDNA const> const idna = [] {
        UErrorCode status = U_ZERO_ERROR;
        std::unique_ptr<icu::IDNA const> made(icu::IDNA::createUTS46Instance(
            UIDNA_NONTRANSITIONAL_TO_ASCII | UIDNA_CHECK_BIDI | UIDNA_CHECK_CONTEXTJ, status));
        _checkMemory(status); // the next call tries again
        return made;
    }();
    return idna.get();
}

/// What registries forbid but resolvers answer.
constexpr uint32_t _harmless = UIDNA_ERROR_EMPTY_LABEL | UIDNA_ERROR_LABEL_TOO_LONG | UIDNA_ERROR_DOMAIN_NAME_TOO_LONG |
                               UIDNA_ERROR_LEADING_HYPHEN | UIDNA_ERROR_TRAILING_HYPHEN | UIDNA_ERROR_HYPHEN_3_4;

std::string _toAscii(std::string const& name)
{
    std::string const mappable = name.size() > _longestMapped ? _shortened(name) : name;
    if (mappable.empty() || !_idna()) return std::string();
    UErrorCode status = U_ZERO_ERROR;
    icu::IDNAInfo info;
    std::string ascii;
    icu::StringByteSink<std::string> sink(&ascii);
    _idna()->nameToASCII_UTF8(mappable, sink, info, status);
    _checkMemory(status);
    return U_SUCCESS(status) && !(info.getErrors() & ~_harmless) ? ascii : std::string();
}

std::string_view _lastLabel(std::string_view name)
{
    size_t const dot = name.rfind('.');
    return dot == std::string_view::npos ? name : name.substr(dot + 1);
}

bool _isHexPrefix(std::string_view label)
{
    return label.size() >= 2 && label[0] == '0' && label[1] == 'x';
}

bool _isNumber(std::string_view label)
{
    if (_isHexPrefix(label)) {
        label.remove_prefix(2);
        return std::all_of(label.begin(), label.end(), isHexDigit);
    }
    return !label.empty() && std::all_of(label.begin(), label.end(), isDigit);
}

/// Browsers take "0x" for 0; the system's reader does not.
void _completeZeros(std::string& name)
{
    for (size_t at = 0; (at = name.find("0x", at)) != std::string::npos; ++at) {
        bool const whole = (at == 0 || name[at - 1] == '.') && (at + 2 == name.size() || name[at + 2] == '.');
        if (whole) name.erase(at + 1, 1);
    }
}

/// A name that ends in a number is an address or nothing.
std::string _ofNumbers(std::string name)
{
    _completeZeros(name);
    in_addr address;
    char text[INET_ADDRSTRLEN];
    if (!inet_aton(name.c_str(), &address)) return std::string();
    return inet_ntop(AF_INET, &address, text, sizeof text);
}

std::string _ofName(std::string_view text)
{
    std::string name = stringToLower(uriUnescaped(text));
    if (!_isPlain(name)) name = _toAscii(name);
    while (!name.empty() && name.back() == '.') name.pop_back();
    if (name.size() > _longestName || std::any_of(name.begin(), name.end(), _isForbidden)) return std::string();
    return _isNumber(_lastLabel(name)) ? _ofNumbers(name) : name;
}

/// Of what stands in brackets.
std::string _ofLiteral(std::string_view text)
{
    IPAddress const address((std::string(text)));
    return address.length() == 16 ? '[' + address.asString(true) + ']' : std::string();
}

} // namespace

std::string uriUnescaped(std::string_view text)
{
    std::string plain;
    plain.reserve(text.size());
    for (size_t i = 0; i < text.size(); ++i) {
        bool const escape = text[i] == '%' && text.size() - i > 2 &&
                            isHexDigit(static_cast<unsigned char>(text[i + 1])) &&
                            isHexDigit(static_cast<unsigned char>(text[i + 2]));
        if (!escape) {
            plain += text[i];
            continue;
        }
        plain += static_cast<char>(hexValue(static_cast<unsigned char>(text[i + 1])) * 16 +
                                   hexValue(static_cast<unsigned char>(text[i + 2])));
        i += 2;
    }
    return plain;
}

std::string uriHostOfAuthority(std::string_view authority)
{
    size_t const user = authority.rfind('@');
    if (user != std::string_view::npos) authority.remove_prefix(user + 1);
    if (authority.empty()) return std::string();
    if (authority.front() != '[') return _ofName(authority.substr(0, authority.find(':')));
    size_t const end = authority.find(']');
    if (end == std::string_view::npos) return std::string();
    std::string_view const behind = authority.substr(end + 1);
    return behind.empty() || behind.front() == ':' ? _ofLiteral(authority.substr(1, end - 1)) : std::string();
}

std::string uriHostOfDomain(std::string_view domain)
{
    if (domain.size() < 2 || domain.front() != '[' || domain.back() != ']') return _ofName(domain);
    domain = domain.substr(1, domain.size() - 2);
    std::string_view const prefix = "IPv6:";
    if (sameNoCase(domain.substr(0, prefix.size()), prefix)) return _ofLiteral(domain.substr(prefix.size()));
    return _ofName(domain);
}

} // namespace Velmara
