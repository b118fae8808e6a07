#include "runtime/DataPath.h"

namespace Velmara {

std::string dataPath(char const* fixedPath)
{
    return std::string(VELMARA_DATA_ROOT) + fixedPath;
}

} // namespace Velmara
