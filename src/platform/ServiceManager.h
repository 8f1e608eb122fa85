#pragma once

#include <functional>
#include <optional>

namespace brevanta {

// What launchd says of the blocking service: launchctl(1).
enum class LaunchCheck {
    notInstalled, // Neither launchd knows it, nor is its program file there.
    notRunning, // Its program file is there, but launchd does not know it.
    loaded,
};

// Whether the user lets the service run in the background: the system's Login Items settings.
enum class BackgroundItem { allowed, requiresApproval, unknown };

// What the system knows of the blocking service. Main thread only.
class ServiceManager {
public:
    virtual ~ServiceManager() = default;

    // Both ask the system without holding up the main thread. `onEnd` is called exactly once on the main thread, after
    // the call has returned and within five seconds, unless the manager is destroyed first. What could not be found out
    // is told as nothing, or as `unknown`.
    virtual void checkLaunch(std::function<void(std::optional<LaunchCheck>)> onEnd) = 0;
    virtual void readBackgroundItem(std::function<void(BackgroundItem)> onEnd) = 0;

    // Whether the service's program file is there now: one stat(2).
    [[nodiscard]] virtual bool isProgramInstalled() const = 0;
};

}
