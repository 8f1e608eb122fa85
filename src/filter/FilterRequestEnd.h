#pragma once

#include "filter/LaunchActivationOutcome.h"
#include "platform/FilterSystem.h"

#include <optional>
#include <string>

namespace brevanta {

// How far a request for the filter has come when its caller is told: at its end, or when it waits for the user.
struct FilterRequestEnd {
    // Our own check found that the extension that is there needs no replacing: the request was skipped.
    enum class Kept { no, extensionOff, extensionEnabled };

    LaunchActivationOutcome outcome;
    Kept kept { Kept::no };
    std::optional<FilterError> error; // Of a request that failed; nothing when the system did not answer in time.

    bool operator==(const FilterRequestEnd&) const = default;
};

// For the log: "completed, an older extension was replaced".
[[nodiscard]] std::string describe(const FilterRequestEnd& end);

// For the user: what is the matter with a request that failed, and what to do. Domain, code and the system's words
// stand there only if nobody knows what they mean, as one line of details, which may still hold a secret.
[[nodiscard]] std::string failureText(const FilterRequestEnd& end);

}
