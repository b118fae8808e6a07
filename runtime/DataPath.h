#pragma once

#include <string>

namespace Velmara {

/// Where a data file with a fixed path such as "/var/spool/etc/dict" is looked for: there, or below
/// the folder that the build was given as VELMARA_DATA_ROOT, so that developers need no root.
std::string dataPath(char const* fixedPath);

} // namespace Velmara
