#pragma once

#include "gtk/standin/NamedValues.h"
#include "gtk/standin/StandInError.h"
#include "platform/ServiceManager.h"

#include <expected>
#include <string>
#include <string_view>

namespace brevanta {

inline constexpr std::array backgroundItemNames { NamedValue { "allowed", BackgroundItem::allowed },
    NamedValue { "requiresApproval", BackgroundItem::requiresApproval },
    NamedValue { "unknown", BackgroundItem::unknown } };

// What stands for launchd and the Login Items settings. As it is made, it is a machine that has never seen the service.
struct ServiceStandIn {
    bool isLoaded { false };
    BackgroundItem backgroundItem { BackgroundItem::unknown };

    bool operator==(const ServiceStandIn&) const = default;
};

// An object of JSON; tools/system/README.md shows it. What is absent is as on a machine without the service.
[[nodiscard]] std::expected<ServiceStandIn, StandInError> decodeServiceStandIn(std::string_view text);
[[nodiscard]] std::string encode(const ServiceStandIn& standIn);

}
