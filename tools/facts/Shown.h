#pragma once

#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

/// How text from a mail reaches a terminal or a JSON reader. Mail is hostile: what it holds must not
/// move the cursor, change colours or break a line.
namespace VelmaraCommand {

/// Keeps the order in which fields are set.
using Json = nlohmann::ordered_json;

/// The text with control characters and bytes that are no UTF-8 written as \xNN. C1 controls and the
/// characters that turn the direction of writing count as control characters.
std::string shown(std::string_view text);

/// A header value as a reader would see it: UTF-8, with encoded words decoded.
std::string decoded(std::string const& value);

/// Sets a field unless the text is empty.
void setIfAny(Json& json, char const* field, std::string const& text);

/// Writes one JSON value on a line of its own. The text is always valid UTF-8: bytes that are none
/// come out as U+FFFD.
void writeJsonLine(Json const& value);

/// Whether standard output is a terminal that may be given colour (NO_COLOR forbids it).
bool colourWanted();

} // namespace VelmaraCommand
