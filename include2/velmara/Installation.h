#pragma once

#include <string>

#include <velmara/Export.h>

namespace Velmara {

/// What the results for a message depend on beside its bytes: the versions of this library and of what
/// it calls, and the data files. Two installations that agree in all of it agree in every result.
///
/// The paths are those from which the process-wide objects read, the prefix of the build included; no
/// file need be there. Nothing is cached: the versions are those of the libraries that the process runs
/// with, not of the headers that it was built with. Safe from any thread.
class VELMARA_EXPORT Installation {
public:
    /// Of this library, "1.0.0".
    static std::string version();
    /// Of ICU, "72.1": it converts character sets and host names.
    static std::string icuVersion();
    /// Of libxml2, "2.9.14": it reads HTML and the type database.
    static std::string libxml2Version();

    /// The XML file that SharedMimeInfoImpl reads.
    static std::string typeDatabase();
    /// The file that MagicImpl names to libmagic, which takes a compiled one with ".mgc" behind its name
    /// instead, if there is one.
    static std::string magicFile();
    /// The directory that TD::s_initConfig() has read; which files of it is told by Config.
    static std::string wordDirectory();
};

} // namespace Velmara
