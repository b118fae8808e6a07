#include <velmara/HeaderComplianceFactory.h>

#include <velmara/HeaderValues.h>
#include <velmara/MimeVersion.h>
#include <velmara/StringConversions.h>

#include "charset/AddressText.h"

namespace Velmara {

namespace {

char const* const _messageId = "Message-Id";
char const* const _date = "Date";
char const* const _returnPath = "Return-Path";

tm _localTime()
{
    time_t const now = ::time(nullptr);
    tm local{};
    ::localtime_r(&now, &local);
    return local;
}

} // namespace

void _HeaderComplianceFactory::mimeRequired(bool required)
{
    m_mimeRequired = required;
}

bool _HeaderComplianceFactory::mimeRequired() const
{
    return m_mimeRequired;
}

void _HeaderComplianceFactory::replace(bool replaced)
{
    m_replace = replaced;
}

bool _HeaderComplianceFactory::replace() const
{
    return m_replace;
}

Header _HeaderComplianceFactory::createDate(tm const* time)
{
    return Header(_date, LW::createHeaderDateValue(time));
}

Header _HeaderComplianceFactory::createMessageId(std::string const& host, tm const* time)
{
    return Header(_messageId, LW::createHeaderMessageIdValue(host, time));
}

void _HeaderComplianceFactory::process(HeaderContainer const& headers, std::list<Header>& out, std::string const& host,
                                       EmailAddress const& sender) const
{
    auto const isMissing = [&](std::string const& name) { return headers.find(name).isNull(); };
    tm const now = _localTime(); // taken once, so that both headers tell the same second
    if (m_replace || isMissing(_messageId)) out.push_back(createMessageId(host, &now));
    if (m_replace || isMissing(_date)) out.push_back(createDate(&now));
    if (m_mimeRequired && isMissing(MimeVersion::htype)) out.emplace_back(MimeVersion::htype, "1.0");
    if (isMissing(_returnPath)) out.emplace_back(_returnPath, sender.isNull() ? "<>" : sender.address());
}

HeaderComplianceFactory::HeaderComplianceFactory(bool) : shared_ptr(std::make_shared<_HeaderComplianceFactory>())
{}

std::string emailAddressAsRfc2047String(EmailAddress const& address)
{
    return address.isNull() ? std::string() : addressForHeader(address);
}

std::string emailAddressAsRfc2047String(std::string const& list)
{
    return stringToValidEmailAddressRfc822HeaderValue(list);
}

} // namespace Velmara
