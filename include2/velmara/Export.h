#pragma once

#include <cstddef>
#include <cstdint>

/// Marks what the shared library offers; everything else stays hidden.
#define VELMARA_EXPORT __attribute__((visibility("default")))

namespace Velmara {

/// The types of bytes and of their counts in the interfaces of streams.
typedef unsigned char uchar_t;
typedef unsigned int uint_t;

} // namespace Velmara
