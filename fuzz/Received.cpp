// Trace headers against a plain second reading, on raw bytes and on text made of fragments.
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "tests/header/PlainReceived.h"

namespace {

void check(std::string const& value)
{
    char const* failed = Velmara::PlainReceived::failed(value);
    if (!failed) return;
    std::fprintf(stderr, "differs: %s\n", failed);
    std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t n)
{
    check(std::string(reinterpret_cast<char const*>(data), n));
    check(Velmara::PlainReceived::text(data, n));
    return 0;
}
