#pragma once

#include <string>

/// Names compare without regard to ASCII case.
namespace Velmara {

/// The name under which texts labelled `name` are really written, null for most names.
char const* charSetReplacement(std::string const& name);

/// The character set to read on with when a text labelled `name` is given up, null for most names.
char const* retryCharSet(std::string const& name);

} // namespace Velmara
