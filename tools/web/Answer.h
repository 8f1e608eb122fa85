#pragma once

#include "service/ServiceError.h"

#include <expected>
#include <functional>
#include <string>

namespace brevanta::web {

// What a command answers (a text, often empty, or an error), and who is to be told: once, at once or later.
using Result = std::expected<std::string, service::ServiceError>;
using Answer = std::function<void(const Result&)>;

}
