#pragma once

#include "service/ServiceError.h"

#include <expected>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

namespace brevanta::service {

// JSON text that is nested deeper than this is refused before it is parsed, since writing a value takes stack for every
// level of it, and what comes over a socket may be made to have millions.
constexpr std::size_t deepestNesting = 128;

[[nodiscard]] std::expected<nlohmann::json, ServiceError> parseJson(std::string_view);

// Compact, on one line. Bytes that are no UTF-8 are replaced.
[[nodiscard]] std::string jsonText(const nlohmann::json&);

}
