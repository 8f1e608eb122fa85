#pragma once

#include "gtk/standin/NamedValues.h"
#include "gtk/standin/StandInError.h"
#include "platform/ServiceManager.h"

#include <cstdint>
#include <expected>
#include <optional>
#include <string>
#include <string_view>

namespace brevanta {

inline constexpr std::array backgroundItemNames { NamedValue { "allowed", BackgroundItem::allowed },
    NamedValue { "requiresApproval", BackgroundItem::requiresApproval },
    NamedValue { "unknown", BackgroundItem::unknown } };

// A process by its number and by when it began, in clock ticks since the start of the machine (proc(5)): of two
// processes that had the number one after the other, it is the one that began then.
struct ServiceProcess {
    int processId { 0 };
    std::int64_t startTicks { 0 };

    bool operator==(const ServiceProcess&) const = default;
};

// What stands for launchd and the Login Items settings. As it is made, it is a machine that has never seen the service.
struct ServiceStandIn {
    bool isLoaded { false };
    BackgroundItem backgroundItem { BackgroundItem::unknown };
    int refusals { 0 }; // How many attempts to load the service still fail.
    std::optional<ServiceProcess> process {}; // What was started when it was loaded; it may have ended since.

    bool operator==(const ServiceStandIn&) const = default;
};

// An object of JSON; tools/system/README.md shows it. What is absent is as on a machine without the service.
[[nodiscard]] std::expected<ServiceStandIn, StandInError> decodeServiceStandIn(std::string_view text);
[[nodiscard]] std::string encode(const ServiceStandIn& standIn);

}
