#pragma once

#include <list>
#include <string>
#include <string_view>

#include <velmara/TypeAndValue.h>

namespace Velmara {

/// The parameter `name` in UTF-8, put together from its extended segments (RFC 2231) where it has no
/// plain form; "" without either. Names are compared with their case.
///
/// Segments are joined in the order of the list, for clients write them so; their numbers are not read.
/// A plain `name=` beats all segments. What cannot be decoded is dropped or replaced, and a character
/// set that nobody knows gives "". The cost is that of the text.
std::string collectRfc2231Parameter(std::list<TypeAndValue> const& parameters, std::string_view name);

} // namespace Velmara
