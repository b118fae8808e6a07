// What a message lacks, once added, is lacking no more, whatever its headers are; and addresses rendered for
// a header hold no 8-bit bytes in names and read as the same addresses.
#include <cstdint>
#include <cstdlib>
#include <string>

#include <velmara/Exception.h>
#include <velmara/HeaderComplianceFactory.h>

using namespace Velmara;

namespace {

void require(bool holds)
{
    if (!holds) std::abort();
}

HeaderContainer headersOf(std::string const& block)
{
    HeaderContainer headers(new HeaderContainerImpl, false);
    BufferMediaIn in(block);
    std::list<Header> found;
    try {
        HeaderContainerImpl::parse(in, found);
    } catch (Exception const&) {
        // A block that is refused has the headers that stood ahead of it.
    }
    headers.add(found);
    return headers;
}

void checkBlock(std::string const& block, EmailAddress const& sender)
{
    HeaderComplianceFactory const factory(true);
    factory->replace(false);
    factory->mimeRequired(true);
    HeaderContainer headers = headersOf(block);
    std::size_t const before = headers.headers().size();
    std::list<Header> missing, nothing;
    factory->process(headers, missing, "host.example", sender);
    require(headers.headers().size() == before && missing.size() <= 4);
    headers.add(missing);
    for (char const* name : {"Message-Id", "Date", "MIME-Version", "Return-Path"})
        require(!headers.find(name).isNull());
    factory->process(headers, nothing, "host.example", sender);
    require(nothing.empty());
}

void checkAddresses(std::string const& text)
{
    std::list<EmailAddress> const addresses = EmailAddress::rfc5322ParseList(text, true);
    std::string const value = emailAddressAsRfc2047String(text);
    require(addresses.empty() == value.empty());
    std::size_t at = 0;
    for (EmailAddress const& address : addresses) {
        std::string const one = emailAddressAsRfc2047String(address);
        require(value.compare(at, one.size(), one) == 0);
        at += one.size() + 2;
    }
    require(addresses.empty() || at == value.size() + 2);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t n)
{
    std::string const text(reinterpret_cast<char const*>(data), n);
    checkBlock(text, EmailAddress::rfc5322Parse(text.substr(0, text.find('\n')), true));
    checkAddresses(text);
    return 0;
}
