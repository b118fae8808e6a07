#include <velmara/Exception.h>
#include <velmara/Uri.h>

#include <cstdlib>

#include "runtime/Ascii.h"

using namespace Velmara;

namespace {

// What a resolver is asked for: printable ASCII in lower case, and nothing that would end a host.
void checkCharacters(std::string const& host)
{
    if (host.size() > 253) std::abort();
    bool const literal = host.front() == '[' && host.back() == ']';
    for (unsigned char c : host) {
        if (c <= ' ' || c >= 0x7f || c != toLower(c)) std::abort();
        if (!literal && std::string("#/:<>?@[\\]^`{|}%").find(static_cast<char>(c)) != std::string::npos) std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, size_t size)
{
    std::string const text(reinterpret_cast<char const*>(data), size);
    try {
        Uri const uri(text);
        if (uri.asString() != text || uri.scheme().empty()) std::abort();
        std::string const host = uri.hostname().asString();
        if (host.empty()) return 0;
        checkCharacters(host);
        // The host is the end of the road: a second reading finds nothing more to undo.
        if (Uri("http://" + host).hostname().asString() != host) std::abort();
        if (uri.scheme() == "http" && Uri("https:" + host + "/x").hostname().asString() != host) std::abort();
    } catch (Exception const& e) {
        if (e.code() != 5) std::abort();
    }
    return 0;
}
