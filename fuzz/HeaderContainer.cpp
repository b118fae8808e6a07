// The reader of header blocks against a plain second reading, on raw bytes and on text made of
// fragments.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "tests/header/HeaderChecks.h"
#include "tests/header/HeaderFragments.h"

namespace {

void check(std::string const& block)
{
    char const* failed = Velmara::HeaderChecks::failedOfBlock(block);
    if (!failed) return;
    std::fprintf(stderr, "differs: %s\n", failed);
    std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t n)
{
    check(std::string(reinterpret_cast<char const*>(data), n));
    check(Velmara::headerText(data, n));
    return 0;
}
