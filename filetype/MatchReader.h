#pragma once

#include <optional>

#include <velmara/SharedMimeType.h>

struct _xmlNode;

namespace Velmara {

/// Reads one "mime-type" element with its globs, magic and parents; nothing for an element that is
/// none or has no name. Within it, what cannot be read is left out and the rest stays.
std::optional<SharedMimeType> readMimeType(_xmlNode const* element);

} // namespace Velmara
