#pragma once

#include <string>
#include <string_view>

namespace brevanta {

// True for a key whose value is secret: "authToken", "X-Api-Key", "device_identifier".
[[nodiscard]] bool isSecretKey(std::string_view key);

// The text with `removedFromReport` for the value behind each secret key: `key: x`, `key = x`, `"key": "x"`, also when
// the quotes are escaped, `key%3Dx` and `--key x`. A value in quotes or brackets goes up to the closing one; others up
// to a delimiter, and those that may hold delimiters (passwords, headers) up to the end of the line. Linear time.
[[nodiscard]] std::string withoutSecretValues(std::string_view text);

}
