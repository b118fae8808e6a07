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

HeaderWithEmailAddressBase::HeaderWithEmailAddressBase(std::string const& value)
{
    if (!value.empty()) create(value);
}

HeaderWithEmailAddressBase::HeaderWithEmailAddressBase(Header const& other)
{
    assignNameAndValue(other);
}

HeaderImpl* HeaderWithEmailAddressBase::newImpl()
{
    return new HeaderWithEmailAddressBaseImpl;
}

Header& HeaderWithEmailAddressBase::operator=(Header const& other)
{
    assignNameAndValue(other);
    return *this;
}

EmailAddress const& HeaderWithEmailAddressBase::address() const
{
    if (isNull()) throw HeaderException(__LINE__, "HeaderTemplate");
    return implementation<HeaderWithEmailAddressBaseImpl>().address();
}

HeaderWithEmailAddressListBase::HeaderWithEmailAddressListBase(std::string const& value)
{
    if (!value.empty()) create(value);
}

HeaderWithEmailAddressListBase::HeaderWithEmailAddressListBase(Header const& other)
{
    assignNameAndValue(other);
}

HeaderImpl* HeaderWithEmailAddressListBase::newImpl()
{
    return new HeaderWithEmailAddressListBaseImpl;
}

Header& HeaderWithEmailAddressListBase::operator=(Header const& other)
{
    assignNameAndValue(other);
    return *this;
}

std::list<EmailAddress> const& HeaderWithEmailAddressListBase::addresses() const
{
    if (isNull()) throw HeaderException(__LINE__, "HeaderTemplate");
    return implementation<HeaderWithEmailAddressListBaseImpl>().addresses();
}

} // namespace Velmara
