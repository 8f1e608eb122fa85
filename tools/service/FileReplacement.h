#pragma once

#include "service/ServiceError.h"

#include <expected>
#include <string>
#include <string_view>

namespace brevanta::service {

// Makes the file, or replaces it as a whole: whoever reads it, and whatever kills this process, it holds the old text
// or the new one. The text is put together in a file beside it whose name ends in ".new".
[[nodiscard]] std::expected<void, ServiceError> replaceFile(const std::string& path, std::string_view text);

}
