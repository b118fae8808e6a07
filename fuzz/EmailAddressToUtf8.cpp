// Address lists as people and headers see them: the HTML form is the escaped plain one and cannot leave
// its element, a header value holds no 8-bit names and reads as the same addresses again, and the C
// function stays within its buffer and ends its text.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include <velmara/Logger.h>
#include <velmara/StringConversions.h>

using namespace Velmara;

namespace {

void claim(bool holds, char const* what)
{
    if (holds) return;
    std::fprintf(stderr, "does not hold: %s\n", what);
    std::abort();
}

void checkHtml(std::string const& text, VMRStaticCharSetFallbacks const* fallbacks)
{
    std::string const html = emailAddressToHtmlEscapedUTF8(text, fallbacks);
    claim(html == vmara_html_encode(emailAddressToUTF8(text, fallbacks)), "HTML is the escaped text");
    claim(html.find_first_of("<>\"") == std::string::npos, "nothing leaves the element");
    claim(stringToHtmlEscapedUTF8(text, fallbacks).find_first_of("<>\"") == std::string::npos, "nor from a value");
}

void checkHeader(std::string const& text)
{
    std::list<EmailAddress> const addresses = EmailAddress::rfc5322ParseList(text, true);
    std::string const value = stringToValidEmailAddressRfc822HeaderValue(text);
    claim(addresses.empty() == value.empty(), "a value for each list that has an address");
    size_t at = 0;
    for (EmailAddress const& address : addresses) {
        size_t const found = value.find(address.address(), at);
        claim(found != std::string::npos, "each address in its order");
        at = found + address.address().size();
    }
}

void checkDecodedHtml(EmailAddress const& address)
{
    for (size_t size : {1, 2, 7, 20, 4096}) {
        std::vector<char> dst(size, '#');
        long const length = vmara_emailaddress_get_decoded_html(&address, dst.data(), size);
        claim(length >= 0 && static_cast<size_t>(length) < size, "the text fits");
        claim(std::strlen(dst.data()) == static_cast<size_t>(length), "the text ends where it says");
    }
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    Logger::setSink([](unsigned int, std::string const&) {});
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t n)
{
    static VMRStaticCharSetFallbacksImpl<int> fallbacks(1);
    std::string const text(reinterpret_cast<char const*>(data), n);
    checkHtml(text, nullptr);
    checkHtml(text, &fallbacks);
    checkHeader(text);
    for (EmailAddress const& address : EmailAddress::rfc5322ParseList(text, true)) checkDecodedHtml(address);
    return 0;
}
