#pragma once

#include <velmara/Export.h>

namespace Velmara {

/// The place for strings that MessageProperties carries; it has no operations yet.
class VELMARA_EXPORT StringContainer {
public:
    StringContainer() = default;
};

} // namespace Velmara
