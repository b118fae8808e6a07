#pragma once

#include <string>
#include <string_view>

#include "JsonLine.h"

/// How text from a mail reaches a terminal. Mail is hostile: what it holds must not
/// move the cursor, change colours or break a line.
namespace VelmaraCommand {

/// The text with control characters and bytes that are no UTF-8 written as \xNN. C1 controls and the
/// characters that turn the direction of writing count as control characters.
std::string shown(std::string_view text);

/// A header value as a reader would see it: UTF-8, with encoded words decoded.
std::string decoded(std::string const& value);

/// Whether standard output is a terminal that may be given colour (NO_COLOR forbids it).
bool colourWanted();

} // namespace VelmaraCommand
