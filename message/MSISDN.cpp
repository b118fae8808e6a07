#include <velmara/MSISDN.h>

#include <ostream>

namespace Velmara {

MSISDN::MSISDN() = default;

MSISDN::MSISDN(char const* number) : m_number(number ? number : "")
{}

MSISDN::MSISDN(std::string const& number) : m_number(number)
{}

MSISDN::~MSISDN() = default;

bool MSISDN::isNull() const
{
    return m_number.empty();
}

std::string const& MSISDN::asString() const
{
    return m_number;
}

bool MSISDN::operator==(MSISDN const& other) const
{
    return m_number == other.m_number;
}

bool MSISDN::operator<(MSISDN const& other) const
{
    return m_number < other.m_number;
}

std::ostream& operator<<(std::ostream& out, MSISDN const& number)
{
    return out << number.asString();
}

} // namespace Velmara
