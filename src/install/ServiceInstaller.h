#pragma once

namespace brevanta {

// Installs, updates or restarts the blocking service: one and the same action. Main thread only.
class ServiceInstaller {
public:
    virtual ~ServiceInstaller() = default;

    // Begins an install, for which the user is asked for an administrator's password; does nothing while one is under
    // way. The user is told how it ended.
    virtual void begin() = 0;

    [[nodiscard]] virtual bool isInFlight() const = 0;
};

}
