#pragma once

#include "service/ServiceError.h"

#include <cstdint>
#include <expected>
#include <string>

namespace brevanta::service {

// Counts the launches of a service in a file, so that each knows itself to be later than the one before. The count is
// on disk before it is used: a run that is killed at once has still had its number.
[[nodiscard]] std::expected<std::uint64_t, ServiceError> takeNextLaunchOrder(const std::string& path);

}
