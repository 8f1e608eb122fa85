#pragma once

#include <expected>
#include <string>
#include <utility>

namespace brevanta::service {

// Everything that can fail here ends as one line for a person: on a terminal, on the control socket or in an "error"
// reply.
struct ServiceError {
    std::string message;
};

inline std::unexpected<ServiceError> fail(std::string message)
{
    return std::unexpected(ServiceError { std::move(message) });
}

}
