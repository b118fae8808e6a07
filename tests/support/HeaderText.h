#pragma once

#include <list>
#include <string>

#include <velmara/Header.h>

namespace Velmara {

/// "name=value" joined by "|": parameters of a typed header.
template <class Typed> std::string parametersOf(Typed const& header)
{
    std::string text;
    for (TypeAndValue const& parameter : header.parameters()) {
        if (!text.empty()) text += '|';
        text += parameter.type() + '=' + parameter.value();
    }
    return text;
}

/// "name[value]" joined by blanks.
inline std::string shown(std::list<Header> const& headers)
{
    std::string text;
    for (Header const& header : headers) {
        if (!text.empty()) text += ' ';
        text += header.type() + '[' + header.value() + ']';
    }
    return text;
}

} // namespace Velmara
