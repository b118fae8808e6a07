#pragma once

#include <map>
#include <string>

#include <velmara/StringOperations.h>

/// Lookups in the maps from codes to printed forms.
namespace Velmara::CodeNames {

/// The printed form; that of code 0 for a code without one.
template <class Code> std::string const& nameOf(std::map<Code, std::string> const& names, Code code)
{
    auto const found = names.find(code);
    return (found == names.end() ? names.begin() : found)->second;
}

/// The first code in ascending order whose printed form satisfies `matches`; 0 if there is none.
template <class Code, class Matches> Code codeOf(std::map<Code, std::string> const& names, Matches matches)
{
    for (auto const& [code, name] : names)
        if (matches(code, name)) return code;
    return Code();
}

} // namespace Velmara::CodeNames
