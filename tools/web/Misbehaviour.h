#pragma once

#include "service/CommandWords.h"
#include "service/ServiceError.h"

#include <chrono>
#include <cstddef>
#include <expected>
#include <optional>
#include <string>
#include <string_view>

namespace brevanta::web {

// One way of treating requests badly: all of them, or the next few.
struct Misbehaviour {
    enum class Mode { refuse, hang, status, redirect, delay, close };

    Mode mode;
    unsigned status = 0;
    std::string url {};
    std::chrono::milliseconds delay {};
    std::optional<std::size_t> remainingTimes {};

    // The words that follow the name of the mode; an error without a text when they do not fit.
    [[nodiscard]] static std::expected<Misbehaviour, service::ServiceError> parse(Mode, service::CommandWords&);
};

}
