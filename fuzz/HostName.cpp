#include <velmara/HostName.h>
#include <velmara/IPAddress.h>
#include <velmara/Uri.h>

#include <cstdlib>

using namespace Velmara;

extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, size_t size)
{
    std::string const text(reinterpret_cast<char const*>(data), size);
    HostName const any(text, true, false), loose(text, false, false), strict(text, false, true), host(text, true, true);
    if (any.asString() != text) std::abort();
    // Each way of reading accepts what the narrower one does.
    if (!strict.isNull() && (loose.isNull() || host != strict)) std::abort();
    if (!host.isNull() && strict.isNull() != IPAddress::isValidIPAddress(text)) std::abort();
    if (strict.isNull()) return 0;
    // A well-formed name is the host of a link to it, unless it ends in a number or is punycode.
    std::string name = text;
    if (name.back() == '.') name.pop_back();
    HostName const reached = Uri("http://" + name).hostname();
    if (!reached.isNull() && reached != HostName(name, true, false) && !IPAddress::isValidIPAddress(reached.asString()))
        std::abort();
    return 0;
}
