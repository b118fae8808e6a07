#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// The dates of mail headers, for showing how long a message took from hop to hop.
namespace VelmaraCommand {

/// Seconds since 1970 of a date of RFC 5322 with its obsolete forms: years of two digits, zones by
/// name, seconds left out, comments anywhere. Nothing where any of it cannot be read, an unknown zone
/// included: a guess would make a delay of hours.
std::optional<std::int64_t> readMailDate(std::string_view text);

/// "2024-01-01 00:00:00 UTC".
std::string shownTime(std::int64_t seconds);

/// "3 s", "2 min 5 s", "1 h 0 min", "2 d 3 h"; with a "-" in front if time runs backward.
std::string shownDelay(std::int64_t seconds);

} // namespace VelmaraCommand
