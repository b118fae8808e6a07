#include <velmara/HeaderWithEmailAddress.h>

namespace Velmara {

HeaderWithEmailAddressBaseImpl::~HeaderWithEmailAddressBaseImpl() = default;

void HeaderWithEmailAddressBaseImpl::read() const
{
    m_address = EmailAddress::rfc5322Parse(value(), true);
}

EmailAddress const& HeaderWithEmailAddressBaseImpl::address() const
{
    parse();
    return m_address;
}

HeaderWithEmailAddressListBaseImpl::~HeaderWithEmailAddressListBaseImpl() = default;

void HeaderWithEmailAddressListBaseImpl::read() const
{
    m_addresses = EmailAddress::rfc5322ParseList(value(), true);
}

std::list<EmailAddress> const& HeaderWithEmailAddressListBaseImpl::addresses() const
{
    parse();
    return m_addresses;
}

EmailAddress const& HeaderWithEmailAddressBase::address() const
{
    if (isNull()) throw HeaderException(__LINE__, "HeaderTemplate");
    return implementation<HeaderWithEmailAddressBaseImpl>().address();
}

std::list<EmailAddress> const& HeaderWithEmailAddressListBase::addresses() const
{
    if (isNull()) throw HeaderException(__LINE__, "HeaderTemplate");
    return implementation<HeaderWithEmailAddressListBaseImpl>().addresses();
}

} // namespace Velmara
