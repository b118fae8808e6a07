#pragma once

#include <cstring>
#include <string>

namespace Velmara {

/// Whether a name of the vocabulary equals `text` without regard to case, or with `substring` contains
/// it. Nothing matches a null text.
inline bool nameMatches(std::string const& name, char const* text, bool substring)
{
    if (!text) return false;
    return substring ? ::strcasestr(name.c_str(), text) != nullptr : ::strcasecmp(name.c_str(), text) == 0;
}

} // namespace Velmara
