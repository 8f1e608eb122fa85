#pragma once

#include <functional>

namespace brevanta {

// What launchd says of the blocking service: launchctl(1).
enum class LaunchCheck {
    notInstalled, // Neither launchd knows it, nor is its program file there.
    notRunning, // Its program file is there, but launchd does not know it.
    loaded,
};

// Whether the user lets the service run in the background: the system's Login Items settings.
enum class BackgroundItem { allowed, requiresApproval, unknown };

struct ServiceObservation {
    LaunchCheck launch { LaunchCheck::notInstalled };
    BackgroundItem backgroundItem { BackgroundItem::unknown };

    bool operator==(const ServiceObservation&) const = default;
};

// What the system knows of the blocking service. Main thread only.
class ServiceManager {
public:
    virtual ~ServiceManager() = default;

    // Asks the system, without holding up the main thread. `onEnd` is called exactly once on the main thread, after
    // this call has returned and within five seconds, unless the manager is destroyed first; what could not be found
    // out reads as `notRunning` or `notInstalled` by the program file alone, and as `unknown`.
    virtual void observe(std::function<void(ServiceObservation)> onEnd) = 0;

    // Whether the service's program file is there now: one stat(2).
    [[nodiscard]] virtual bool isProgramInstalled() const = 0;
};

}
