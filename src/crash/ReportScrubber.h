#pragma once

#include <span>
#include <string>
#include <string_view>

namespace brevanta {

// What stands in a report in the place of what was taken out.
inline constexpr std::string_view removedFromReport = "[removed]";

// Secrets that are shorter are not looked for: they would stand in words that have nothing to do with them.
inline constexpr std::size_t shortestSecret = 8;

// The text without
// - each of `secrets`, wherever it stands,
// - the user information, the query and the fragment of URLs (RFC 3986), relative ones too,
// - bearer tokens (RFC 6750) and JSON Web Tokens (RFC 7519), cut short or whole,
// - the values of keys that speak of tokens, passwords and the like: `"authToken": "x"`, `device_identifier=x`,
//   `Cookie: x`, `--password x`; what is a list or an object goes as a whole.
// It takes out too much rather than too little, and leaves its own marks alone. Time is linear in the text for
// each secret, and memory in the text. Bytes that are not UTF-8 pass as they are. Any thread.
[[nodiscard]] std::string scrubReport(std::string_view text, std::span<const std::string> secrets = {});

// True for the keys of such values, and for those of a URL's query and fragment, whatever the letters' case: all of
// such an entry's value is to be taken out.
[[nodiscard]] bool isSensitiveReportKey(std::string_view key);

}
