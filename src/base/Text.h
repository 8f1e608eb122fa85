#pragma once

#include <span>
#include <string>
#include <string_view>

namespace brevanta {

// The number with exactly `decimals` digits behind a point, whatever the process's locale: printf's "%.2f" in the C
// locale. Infinity and not-a-number read "inf" and "nan".
[[nodiscard]] std::string formatFixed(double number, int decimals);

// The text on one line: line feeds, carriage returns, tabs and other control characters become spaces.
[[nodiscard]] std::string singleLine(std::string_view text);

// The text with its ASCII capitals in lower case, whatever the process's locale; other letters stay as they are.
[[nodiscard]] std::string lowerCased(std::string_view text);

// The text, or its first `maxBytes` bytes and "…" when it is longer; never cut inside of a character.
[[nodiscard]] std::string clipped(std::string_view text, std::size_t maxBytes);

// Of a text from outside, in a line of the log: nobody is to flood it.
inline constexpr std::size_t maxLoggedBytes = 200;

// "gain, loss"; empty for no names.
[[nodiscard]] std::string commaSeparated(std::span<const std::string> names);

// Whether the UTF-8 text has nothing but white space: the characters with the property White_Space of Unicode's
// PropList.txt, a no-break and an ideographic space among them.
[[nodiscard]] bool isBlank(std::string_view utf8);

// How many Unicode code points the UTF-8 text has; each byte that starts none counts as nothing.
[[nodiscard]] std::size_t codePointCount(std::string_view utf8);

}
