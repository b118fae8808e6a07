#include <velmara/Installation.h>

#include <algorithm>
#include <cstdlib>

#include <libxml/parser.h>
#include <libxml/xmlversion.h>
#include <unicode/uversion.h>

#include "runtime/DataPath.h"

namespace Velmara {

std::string Installation::version()
{
    return VELMARA_VERSION;
}

std::string Installation::icuVersion()
{
    UVersionInfo numbers;
    char text[U_MAX_VERSION_STRING_LENGTH];
    u_getVersion(numbers);
    u_versionToString(numbers, text);
    return text;
}

/// libxml2 gives its number in one piece, "20914", with the name of an unreleased state behind it.
std::string Installation::libxml2Version()
{
    std::string const text = xmlParserVersion;
    long const number = std::strtol(text.c_str(), nullptr, 10);
    return std::to_string(number / 10000) + '.' + std::to_string(number / 100 % 100) + '.' +
           std::to_string(number % 100) + text.substr(std::min(text.find_first_not_of("0123456789"), text.size()));
}

std::string Installation::typeDatabase()
{
    return dataPath("/var/spool/etc/shared_mime_info.xml");
}

std::string Installation::magicFile()
{
    return dataPath("/panelweb/antispam/magic/magic.vmara");
}

std::string Installation::wordDirectory()
{
    return dataPath("/var/spool/etc/dict");
}

} // namespace Velmara
