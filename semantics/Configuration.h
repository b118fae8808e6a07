#pragma once

#include <velmara/Config.h>

namespace Velmara {

/// That of the process; one without any word list where TD::s_initConfig() was never called.
Config& configuration();

} // namespace Velmara
