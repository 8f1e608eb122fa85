#pragma once

#include <functional>
#include <string>
#include <vector>

namespace brevanta {

enum class AlertStyle { informational, warning };

struct Alert {
    std::string identifier; // Names the alert for `withdraw`; at most one alert of a name is on screen.
    AlertStyle style { AlertStyle::informational };
    std::string message;
    std::string informativeText;
    std::vector<std::string> buttons; // At least one; the first is the default one.

    bool operator==(const Alert&) const = default;
};

enum class AlertEnd { button, withdrawn };

struct AlertResponse {
    AlertEnd end { AlertEnd::withdrawn };
    std::size_t button { 0 }; // Index into Alert::buttons. Closing the alert without a button counts as its last one.

    bool operator==(const AlertResponse&) const = default;
};

// Modal alerts. Main thread only. Timers and posted work go on while one is open, and an open alert never keeps the
// application from quitting. A host may show alerts one after another; one that waits its turn counts as on screen.
class AlertPanel {
public:
    virtual ~AlertPanel() = default;

    // Shows the alert and returns at once. `onEnd` is called exactly once, on the main thread, after this call has
    // returned, unless the panel is destroyed first. An alert whose identifier is on screen already ends as withdrawn
    // without being shown; one that has left the screen may count as being there until its end has been told.
    virtual void present(const Alert& alert, std::function<void(AlertResponse)> onEnd) = 0;

    // Takes the alert off the screen; it ends as withdrawn, after this call has returned. Does nothing when no such
    // alert is shown.
    virtual void withdraw(const std::string& identifier) = 0;
};

}
