#include <velmara/EmailAddress.h>
#include <velmara/Exception.h>

#include <cstdlib>

using namespace Velmara;

namespace {

// What is printed reads back as the same address, so values can be written anew without change.
void checkPrinted(EmailAddress const& address)
{
    if (address.isNull()) return;
    if (EmailAddress::rfc5322Parse(address.asString(), true) != address) std::abort();
    if (address.asString().find_first_of("\r\n") != std::string::npos) std::abort();
}

std::string joined(std::list<EmailAddress> const& addresses)
{
    std::string list;
    for (EmailAddress const& address : addresses) list += (list.empty() ? "" : ", ") + address.asString();
    return list;
}

// Whatever the strict reader accepts, the lenient one reads alike.
void checkStrict(std::string const& text, std::list<EmailAddress> const& addresses)
{
    try {
        if (EmailAddress::rfc5322ParseList(text, false) != addresses) std::abort();
    } catch (Exception const& e) {
        if (e.code() != 5) std::abort();
    }
    try {
        if (EmailAddress::rfc5322Parse(text, false) != EmailAddress::rfc5322Parse(text, true)) std::abort();
    } catch (Exception const& e) {
        if (e.code() != 5) std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, size_t size)
{
    std::string const text(reinterpret_cast<char const*>(data), size);
    std::list<EmailAddress> const addresses = EmailAddress::rfc5322ParseList(text, true);
    for (EmailAddress const& address : addresses) checkPrinted(address);
    if (EmailAddress::rfc5322ParseList(joined(addresses), true) != addresses) std::abort();
    checkPrinted(EmailAddress::rfc5322Parse(text, true));
    for (EmailAddress const& address : EmailAddress::rfc5322ParseList(text, " ")) checkPrinted(address);
    checkStrict(text, addresses);
    return 0;
}
