#pragma once

#include <cstdio>
#include <cstdlib>

namespace Velmara {

/// Ends the process with the words of the C library's assert and the unit's name as file.
[[noreturn]] inline void contractBroken(char const* condition, char const* unit, int line, char const* function)
{
    std::fprintf(stderr, "%s:%d: %s: Assertion `%s' failed.\n", unit, line, function, condition);
    std::abort();
}

} // namespace Velmara

/// An assertion that also holds in optimised builds: a signature made behind a broken contract would be
/// stored and compared as if it were one. The text of the condition is what supervisors match in logs.
#define HASH_ASSERT(unit, condition)                                                                                   \
    ((condition) ? static_cast<void>(0) : ::Velmara::contractBroken(#condition, unit, __LINE__, __func__))
