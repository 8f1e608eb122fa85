#pragma once

#include <expected>
#include <string>
#include <utility>

namespace brevanta {

// What is wrong with a file of the stand-in system, or with a change to it: one line for a person.
struct StandInError {
    std::string message;

    bool operator==(const StandInError&) const = default;
};

[[nodiscard]] inline std::unexpected<StandInError> standInError(std::string message)
{
    return std::unexpected(StandInError { std::move(message) });
}

}
