#pragma once

#include <cstddef>
#include <cstdint>

/// Marks what the shared library offers; everything else stays hidden.
#define VELMARA_EXPORT __attribute__((visibility("default")))

namespace Velmara {

typedef unsigned char uchar_t;
typedef unsigned int uint_t;

} // namespace Velmara
