#pragma once

#include <string>
#include <vector>

namespace Velmara::Hostile {

/// A line for each case at a small size and for each of these message files: a digest of trees, headers,
/// texts, signatures and tokens, and the name. The locale is the one of the environment, for the C library
/// and for streams.
int dump(std::vector<std::string> const& files);
/// The same before it is digested, of the case or file of that name.
int show(std::string const& name);

} // namespace Velmara::Hostile
