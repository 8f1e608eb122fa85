#pragma once

#include <string>
#include <string_view>

namespace brevanta {

// What a system or a program wrote, on one line: lines that are the same stand there once, where the first of them was,
// with their number. Empty for a text that is blank. Any text; bytes that are not UTF-8 pass as they are.
[[nodiscard]] std::string foldedLines(std::string_view output);

inline constexpr std::size_t maxDetailsBytes = 200; // What somebody who helps the user wants to be told.

// What stands below the words for the user when nobody knows the failure: an empty line, and "Details: " with the
// folded lines, of which `maxDetailsBytes` are shown at most. Nothing for a text that is blank.
[[nodiscard]] std::string failureDetails(std::string_view output);

}
