#pragma once

#include <string>

#include <velmara/ContentType.h>

namespace Velmara {

/// The media type that a ContentType with that value has, told without reading its parameters: most
/// parts of a message are asked for nothing else.
ContentType::MediaType mediaTypeOf(std::string const& value);

} // namespace Velmara
