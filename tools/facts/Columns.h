#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// Text in the columns of a terminal. What is given has been through shown() already.
namespace VelmaraCommand {

/// Columns that a text takes: none for a combining mark, two for an ideograph and its like.
size_t columnsOf(std::string_view text);

/// The text if it takes at most that many columns, else its beginning and "...".
std::string clipped(std::string_view text, size_t columns);
/// The same, filled up with blanks.
std::string padded(std::string_view text, size_t columns);

/// The first lines of a text that is broken at blanks, or where there are none, anywhere; the last ends in
/// "..." if there is more.
std::vector<std::string> wrapped(std::string_view text, size_t columns, size_t lines);

/// "999 bytes", "1.5 kB", "12.0 MB".
std::string shownSize(std::uint64_t bytes);

} // namespace VelmaraCommand
