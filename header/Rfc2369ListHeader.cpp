#include <velmara/Rfc2369ListHeader.h>

#include <string_view>

#include "runtime/Ascii.h"

namespace Velmara {

Rfc2369ListHeaderBaseImpl::~Rfc2369ListHeaderBaseImpl() = default;

void Rfc2369ListHeaderBaseImpl::parse() const
{
    std::string_view const text = value();
    size_t const none = std::string_view::npos;
    for (size_t open = 0, close = 0; (open = text.find('<', close)) != none;) {
        // A ">" right behind the "<" ends nothing: "<>http://a.example/>" is one item.
        close = open + 2 < text.size() ? text.find('>', open + 2) : none;
        if (close == none) return;
        UriContainer found;
        UriSniffer::search(found, std::string(trimmed(text.substr(open + 1, close - open - 1))), 0, false);
        std::list<Uri> const& uris = found.hrefs(0);
        m_uris.insert(m_uris.end(), uris.begin(), uris.end());
    }
}

/// Nothing remembers that the value was read: a second question gives its URIs twice. Callers ask once.
std::list<Uri> const& Rfc2369ListHeaderBaseImpl::uris() const
{
    parse();
    return m_uris;
}

Rfc2369ListHeaderBase::Rfc2369ListHeaderBase(std::string const& value)
{
    if (!value.empty()) create(value);
}

Rfc2369ListHeaderBase::Rfc2369ListHeaderBase(Header const& other)
{
    assignNameAndValue(other);
}

HeaderImpl* Rfc2369ListHeaderBase::newImpl()
{
    return new Rfc2369ListHeaderBaseImpl;
}

Header& Rfc2369ListHeaderBase::operator=(Header const& other)
{
    assignNameAndValue(other);
    return *this;
}

std::list<Uri> const& Rfc2369ListHeaderBase::uris() const
{
    if (isNull()) throw HeaderException(__LINE__, "HeaderTemplate");
    return implementation<Rfc2369ListHeaderBaseImpl>().uris();
}

} // namespace Velmara
