#pragma once

#include "platform/Url.h"

#include <optional>

namespace brevanta {

// Links of the application's own scheme that ask for the device setup screen. Pure.
struct DeviceSetupNavigation {
    // brevanta://open/device-setup: scheme and host in any case, no user, password or port, one trailing slash allowed,
    // whatever query.
    [[nodiscard]] static bool isDeviceSetupLink(const Url& url);

    // Lets one link through every two seconds, so that a page cannot hold the window in front.
    class Throttle {
    public:
        // `uptime` is the system's, in seconds. An accepted link starts the two seconds anew; a clock that has gone
        // backwards accepts.
        [[nodiscard]] bool accepts(double uptime);

    private:
        std::optional<double> m_lastAcceptedAt;
    };
};

}
