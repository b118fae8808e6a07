#include <velmara/Uri.h>

#include <cstdlib>

using namespace Velmara;

namespace {

void check(std::string const& text, bool bareNames)
{
    UriContainer found;
    UriSniffer::search(found, text, 0, bareNames);
    for (Uri const& uri : found.hrefs(0)) {
        // Nothing is made up, but for the scheme of what stood there without one.
        std::string const asFound = uri.asString(), web = "http://";
        bool const stands = text.find(asFound) != std::string::npos;
        if (!stands &&
            (asFound.compare(0, web.size(), web) != 0 || text.find(asFound.substr(web.size())) == std::string::npos))
            std::abort();
        // A URI by itself is found as what it is.
        UriContainer again;
        UriSniffer::search(again, asFound, 0, false);
        if (again.hrefs(0).empty() || again.hrefs(0).front() != uri) std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, size_t size)
{
    std::string const text(reinterpret_cast<char const*>(data), size);
    check(text, false);
    check(text, true);
    return 0;
}
