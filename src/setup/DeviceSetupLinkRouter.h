#pragma once

#include "setup/DeviceSetupLinkInbox.h"

#include <functional>
#include <optional>
#include <string>

namespace brevanta {

// Keeps the navigation that a setup link asks for until the page has taken and confirmed it. Main thread only.
class DeviceSetupLinkRouter {
public:
    // `now` gives seconds of a monotonic clock, `makeToken` a fresh UUID's text.
    DeviceSetupLinkRouter(std::function<double()> now, std::function<std::string()> makeToken);

    void linkArrived();

    // The inbox's rules.
    [[nodiscard]] std::optional<std::string> take();
    [[nodiscard]] bool isPending() { return take().has_value(); }
    void acknowledge(const std::string& token);

private:
    std::function<double()> m_now;
    std::function<std::string()> m_makeToken;
    DeviceSetupLinkInbox m_inbox;
};

}
