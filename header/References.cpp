#include <velmara/References.h>

#include <algorithm>
#include <set>

#include <velmara/HeaderWithEmailAddress.h>

namespace Velmara {

ReferencesImpl::ReferencesImpl()
{
    type(References::htype);
}

ReferencesImpl::~ReferencesImpl() = default;

void ReferencesImpl::read() const
{
    m_addresses = EmailAddress::rfc5322ParseList(value(), " ");
}

std::list<EmailAddress> const& ReferencesImpl::addresses() const
{
    parse();
    return m_addresses;
}

std::list<EmailAddress> const& References::addresses() const
{
    if (isNull()) throw HeaderException(__LINE__);
    return impl().addresses();
}

namespace {

using Domains = std::set<std::string>;

void _collect(HeaderWithEmailAddressListBase const& header, Domains& domains)
{
    if (header.isNull()) return;
    for (EmailAddress const& address : header.addresses()) domains.insert(address.domain());
}

Domains _recipients(HeaderContainer const& headers)
{
    Domains domains;
    _collect(HeaderTo(headers.find(toType())), domains);
    _collect(HeaderCc(headers.find(ccType())), domains);
    return domains;
}

bool _refersTo(HeaderContainer const& headers, Domains const& domains)
{
    auto const isOneOfThem = [&](EmailAddress const& id) { return !id.isNull() && domains.count(id.domain()) > 0; };
    HeaderInReplyTo const inReplyTo(headers.find(inReplyToType()));
    if (!inReplyTo.isNull() && isOneOfThem(inReplyTo.address())) return true;
    References const references(headers.find(References::htype));
    if (references.isNull()) return false;
    return std::any_of(references.addresses().begin(), references.addresses().end(), isOneOfThem);
}

} // namespace

bool inReplyToDomainMatch(HeaderContainer const& headers)
{
    try {
        return _refersTo(headers, _recipients(headers));
    } catch (std::exception const&) {
        return false;
    }
}

bool inReplyToDomainMatch(HeaderContainer const& headers, EmailAddress const& address)
{
    if (address.isNull()) return false;
    try {
        return _refersTo(headers, {address.domain()});
    } catch (std::exception const&) {
        return false;
    }
}

} // namespace Velmara
