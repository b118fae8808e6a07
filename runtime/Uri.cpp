#include <velmara/Uri.h>

#include <algorithm>
#include <iterator>
#include <string_view>

#include <velmara/Exception.h>
#include <velmara/StringOperations.h>

#include "runtime/Ascii.h"
#include "runtime/UriHost.h"

namespace Velmara {

namespace {

/// The text as browsers see it: without control characters, and blanks at the ends.
std::string _visible(std::string const& text)
{
    std::string visible;
    visible.reserve(text.size());
    std::copy_if(text.begin(), text.end(), std::back_inserter(visible),
                 [](unsigned char c) { return c >= ' ' && c != 0x7f; });
    size_t const first = visible.find_first_not_of(' ');
    if (first == std::string::npos) return std::string();
    return visible.substr(first, visible.find_last_not_of(' ') + 1 - first);
}

/// Of a visible text; npos where it begins with no scheme.
size_t _schemeLength(std::string_view text)
{
    if (text.empty() || !isAlpha(static_cast<unsigned char>(text[0]))) return std::string_view::npos;
    size_t end = 1;
    while (end < text.size() && isSchemeByte(static_cast<unsigned char>(text[end]))) ++end;
    return end < text.size() && text[end] == ':' ? end : std::string_view::npos;
}

bool _isSlash(char c)
{
    return c == '/' || c == '\\';
}

size_t _slashes(std::string_view text)
{
    return static_cast<size_t>(std::find_if_not(text.begin(), text.end(), _isSlash) - text.begin());
}

std::string_view _authority(std::string_view text)
{
    return text.substr(0, text.find_first_of("/\\?#"));
}

std::string _webHost(std::string_view rest)
{
    return uriHostOfAuthority(_authority(rest.substr(_slashes(rest))));
}

std::string _otherHost(std::string_view rest)
{
    return _slashes(rest) < 2 ? std::string() : uriHostOfAuthority(_authority(rest.substr(2)));
}

bool _isDrive(std::string_view authority)
{
    return authority.size() == 2 && isAlpha(static_cast<unsigned char>(authority[0])) &&
           (authority[1] == ':' || authority[1] == '|');
}

/// "file:///x" is a local file, "file://host/x" and "file:////host/x" are files of a host.
std::string _fileHost(std::string_view rest)
{
    size_t const slashes = _slashes(rest);
    if (slashes < 2 || slashes == 3) return std::string();
    std::string_view const authority = _authority(rest.substr(slashes));
    return _isDrive(authority) ? std::string() : uriHostOfAuthority(authority);
}

/// Of addresses between commas, the domain of the first that has one.
std::string _domainIn(std::string_view addresses)
{
    for (;;) {
        size_t const comma = addresses.find(',');
        std::string const address = uriUnescaped(addresses.substr(0, comma));
        size_t const at = address.rfind('@');
        if (at != std::string::npos) return uriHostOfDomain(std::string_view(address).substr(at + 1));
        if (comma == std::string_view::npos) return std::string();
        addresses.remove_prefix(comma + 1);
    }
}

std::string _mailHost(std::string_view rest)
{
    rest = rest.substr(0, rest.find('#'));
    size_t const query = rest.find('?');
    std::string host = _domainIn(rest.substr(0, query));
    if (!host.empty() || query == std::string_view::npos) return host;
    for (std::string_view fields = rest.substr(query);;) {
        fields.remove_prefix(1);
        size_t const next = fields.find('&');
        std::string_view const field = fields.substr(0, next), to = "to=";
        if (sameNoCase(field.substr(0, to.size()), to)) return _domainIn(field.substr(to.size()));
        if (next == std::string_view::npos) return std::string();
        fields.remove_prefix(next);
    }
}

struct SchemeRow {
    char const* scheme;
    std::string (*host)(std::string_view rest); // of what stands behind the colon
};

constexpr SchemeRow _schemes[] = {
    {"http", _webHost},  {"https", _webHost}, {"mailto", _mailHost}, {"ftp", _webHost},
    {"file", _fileHost}, {"ws", _webHost},    {"wss", _webHost},
};

} // namespace

Uri::Uri(std::string const& text) : m_text(text)
{
    std::string const visible = _visible(text);
    size_t const length = _schemeLength(visible);
    if (length == std::string::npos) {
        Exception bad("Uri", 5, "Uri", __LINE__);
        bad.stringParameter(text);
        throw bad;
    }
    m_scheme = stringToLower(visible.substr(0, length));
}

HostName Uri::hostname() const
{
    std::string const visible = _visible(m_text);
    std::string_view const rest = std::string_view(visible).substr(m_scheme.size() + 1);
    auto const row = std::find_if(std::begin(_schemes), std::end(_schemes),
                                  [this](SchemeRow const& known) { return m_scheme == known.scheme; });
    return HostName(row == std::end(_schemes) ? _otherHost(rest) : row->host(rest), true, false);
}

UriContainer::UriContainer() = default;
UriContainer::~UriContainer() = default;

void UriContainer::add(Uri const& uri, bool unique)
{
    Entries& entries = m_entries[m_current];
    bool const isNew = entries.texts.insert(uri.asString()).second;
    if (isNew || !unique) entries.uris.push_back(uri);
}

std::list<Uri> const& UriContainer::hrefs(unsigned long id) const
{
    static std::list<Uri> const none;
    auto const found = m_entries.find(id);
    return found == m_entries.end() ? none : found->second.uris;
}

} // namespace Velmara
