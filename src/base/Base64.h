#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace brevanta {

// The bytes in base64 with padding: RFC 4648, section 4.
[[nodiscard]] std::string base64(std::span<const std::uint8_t> bytes);

}
