#include <velmara/IPAddress.h>

#include <cstdlib>

using namespace Velmara;

extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, size_t size)
{
    std::string const text(reinterpret_cast<char const*>(data), size);
    IPAddress const address(text);
    if (address.isNull() == IPAddress::isValidIPAddress(text)) std::abort();
    // Both printed forms are the same address, and a network of one.
    for (bool const compressed : {true, false}) {
        if (!address.isNull() && IPAddress(address.asString(compressed)) != address) std::abort();
        if (!address.isNull() && !IPAddressMask(address.asString(compressed)).matches(address)) std::abort();
    }
    IPAddressMask const mask(text);
    if (IPAddressMask(mask.asString()) != mask) std::abort();
    if (!mask.isNull() && !mask.matches(IPAddress(text.substr(0, text.find('/'))))) std::abort();
    return 0;
}
