#pragma once

#include <optional>
#include <string>

#include <velmara/MediaIn.h>

namespace Velmara {

/// A file that may be missing: a list that is not installed adds nothing.
inline std::optional<FileMediaIn> openedIfThere(std::string const& path)
{
    try {
        return FileMediaIn(path);
    } catch (Exception const&) {
        return std::nullopt;
    }
}

} // namespace Velmara
