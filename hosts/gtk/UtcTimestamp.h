#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace brevanta {

// Seconds since 1970-01-01 00:00 UTC as "2026-11-21T12:00:00.000Z", a date-time of RFC 3339 with exactly three digits
// behind the point; rounded to the nearest millisecond. Nothing outside of the years 0000 to 9999.
[[nodiscard]] std::optional<std::string> formatUtcTimestamp(double secondsSince1970);

// Reads that form and no other: nothing for a date that no calendar has, a leap second or another offset.
[[nodiscard]] std::optional<double> parseUtcTimestamp(std::string_view text);

}
