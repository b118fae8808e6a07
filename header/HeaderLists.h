#pragma once

#include <list>
#include <string>

#include <velmara/Header.h>

/// What the two kinds of header list do alike. Names are compared without regard to ASCII case.
namespace Velmara::HeaderLists {

bool isNamed(Header const& header, std::string const& name);

/// The first header of that name, or the end.
std::list<Header>::const_iterator find(std::list<Header> const& list, std::string const& name);

/// Throws Exception "HeaderContainer::add" (code 4) for a null header.
void refuseNull(Header const& header);

/// All or, when one of them is null, none.
void append(std::list<Header>& list, std::list<Header> const& headers);

/// Assigns to the first header of the same name; false if there is none.
bool replaceFirst(std::list<Header>& list, Header const& header);

} // namespace Velmara::HeaderLists
