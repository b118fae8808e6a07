#pragma once

#include <cstddef>

#include <velmara/Export.h>

namespace Velmara {

/// A converter of the C interface below.
struct cVmaraCnv;

} // namespace Velmara

using Velmara::cVmaraCnv;

extern "C" {

/// A converter in the manner of iconv, but with the source first: the reverse of iconv_open. Null if a
/// name is unknown. Bad bytes become U+FFFD; equal names copy.
VELMARA_EXPORT cVmaraCnv* vmaracnv_open(char const* from, char const* to);

/// Converts from `*in` to `*out` and moves both on, with the lengths that are left. 0 when all input
/// and all output are through, otherwise -1 with errno E2BIG, also for a null handle.
///
/// What does not fit waits inside and comes first at the next call. An unfinished character waits too,
/// unseen: there is no call that ends the text, so success does not mean that its last bytes are out.
VELMARA_EXPORT int vmaracnv(cVmaraCnv* handle, char** in, size_t* inLeft, char** out, size_t* outLeft);

/// Destroys a converter with what waits in it; null is accepted.
VELMARA_EXPORT void vmaracnv_close(cVmaraCnv* handle);

} // extern "C"

namespace Velmara {
using ::vmaracnv;
using ::vmaracnv_close;
using ::vmaracnv_open;
} // namespace Velmara
