#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace brevanta {

// The bytes in base64 with padding: RFC 4648, section 4.
[[nodiscard]] std::string base64(std::span<const std::uint8_t> bytes);

// The bytes again. Nothing for letters of another alphabet, that of URLs included, for white space, and for missing or
// surplus padding. Bits that the padding leaves over are ignored.
[[nodiscard]] std::optional<std::vector<std::uint8_t>> decodedBase64(std::string_view text);

}
