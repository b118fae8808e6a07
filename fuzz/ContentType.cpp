// The typed headers Content-Type, Content-Disposition, Content-Transfer-Encoding and MIME-Version
// against a plain second reading, on raw bytes and on text made of fragments; a content type read once
// must also be read the same way again.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include <velmara/Logger.h>

#include "tests/header/HeaderChecks.h"
#include "tests/header/HeaderFragments.h"

namespace {

void check(std::string const& value)
{
    char const* failed = Velmara::HeaderChecks::failedOfValue(value);
    if (!failed) return;
    std::fprintf(stderr, "differs: %s\n", failed);
    std::abort();
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    Velmara::Logger::setSink([](unsigned int, std::string const&) {}); // unknown dispositions are logged
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t n)
{
    check(std::string(reinterpret_cast<char const*>(data), n));
    check(Velmara::headerText(data, n));
    return 0;
}
