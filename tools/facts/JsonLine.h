#pragma once

#include <string>

#include <nlohmann/json.hpp>

/// JSON for programs: one object a line, in the schema that docs/json.md describes.
///
/// Lines are valid UTF-8 whatever a mail holds. What is no character comes out as U+FFFD, and then the
/// bytes of the whole text stand beside in Base64: of the field "name" in "nameBase64"; of an array
/// of strings in an array of the same length with null for each element that lost nothing. Characters
/// that would steer a terminal are written as \u escapes, which are the same to a reader of JSON.
///
/// Limits: names of fields are ours, never a mail's; in one that is no UTF-8 the bytes are just replaced.
namespace VelmaraCommand {

/// Keeps the order in which fields are set.
using Json = nlohmann::ordered_json;

/// Counts up when a field goes or changes its meaning; a new field does not change it.
constexpr char const jsonSchema[] = "velmara/1";

/// Sets a field unless the text is empty.
void setIfAny(Json& json, char const* field, std::string const& text);

/// Appends an object on a line of its own, with "schema" and "fingerprint" in front. From any thread;
/// the cost is linear, and no copy is made of text that loses nothing.
void appendJsonLine(std::string& out, Json const& object);

/// The same on standard output.
void writeJsonLine(Json const& object);

} // namespace VelmaraCommand
