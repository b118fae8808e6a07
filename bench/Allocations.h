#pragma once

#include <malloc.h>

#include <algorithm>
#include <cstddef>

/// Counts what a benchmark allocates, by standing in front of the C library's malloc. To be included
/// by the one source of a program.
namespace Allocations {

inline unsigned long calls = 0;
inline unsigned long live = 0, peak = 0; // bytes

inline void* count(void* p)
{
    ++calls;
    live += malloc_usable_size(p);
    peak = std::max(peak, live);
    return p;
}

} // namespace Allocations

extern "C" {

void* __libc_malloc(size_t n);
void* __libc_realloc(void* p, size_t n);
void __libc_free(void* p);

void* malloc(size_t n)
{
    return Allocations::count(__libc_malloc(n));
}

void* realloc(void* p, size_t n)
{
    Allocations::live -= malloc_usable_size(p);
    return Allocations::count(__libc_realloc(p, n));
}

void free(void* p)
{
    Allocations::live -= malloc_usable_size(p);
    __libc_free(p);
}
}
