#include "header/HeaderLists.h"

#include <algorithm>

#include <velmara/StringOperations.h>

namespace Velmara::HeaderLists {

bool isNamed(Header const& header, std::string const& name)
{
    return stringCompareNoCase(header.type(), name);
}

std::list<Header>::const_iterator find(std::list<Header> const& list, std::string const& name)
{
    return std::find_if(list.begin(), list.end(), [&](Header const& header) { return isNamed(header, name); });
}

void refuseNull(Header const& header)
{
    if (!header.isNull()) return;
    Exception refused("HeaderContainer::add", 4, "HeaderImpl", __LINE__);
    refused.stringParameter("Attempted to a Null header");
    throw refused;
}

void append(std::list<Header>& list, std::list<Header> const& headers)
{
    std::for_each(headers.begin(), headers.end(), refuseNull);
    list.insert(list.end(), headers.begin(), headers.end());
}

bool replaceFirst(std::list<Header>& list, Header const& header)
{
    refuseNull(header); // a null header in a list would answer no later search
    auto const found =
        std::find_if(list.begin(), list.end(), [&](Header const& present) { return isNamed(present, header.type()); });
    if (found == list.end()) return false;
    *found = header;
    return true;
}

} // namespace Velmara::HeaderLists
