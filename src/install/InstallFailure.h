#pragma once

#include <string>

namespace brevanta {

struct AdministratorError;

// What an administrator's password is asked for.
enum class FlightTask { install, removal };

// An install or a removal of the blocking service that failed.
struct InstallFailure {
    // For the user, in English: what is the matter, and the one thing to do. What the system wrote stands there only if
    // nobody knows what it means, as one line of details. Secrets are not looked for.
    std::string message;
    std::string report; // For the log and for reports: one line, with all that was written, repeated lines once.

    bool operator==(const InstallFailure&) const = default;
};

// Any error but a cancelled password, about which there is nothing to say. A pure function.
[[nodiscard]] InstallFailure installFailure(const AdministratorError& error, FlightTask task);

// A part of the service that the bundle lacks; `reason` is in English.
[[nodiscard]] InstallFailure incompleteBundleFailure(const std::string& reason);

}
