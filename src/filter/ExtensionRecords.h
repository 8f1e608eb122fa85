#pragma once

#include "filter/FilterHealth.h"

#include <compare>

namespace brevanta {

// Whether this copy of the filter extension is the one at work: enabled, and neither waiting for the user nor going.
[[nodiscard]] bool isActive(const ExtensionRecord& record);

// By short version and then, those being equal, build version. Versions that are missing or unreadable compare with
// nothing.
[[nodiscard]] std::partial_ordering compareVersions(const ExtensionRecord& left, const ExtensionRecord& right);

// The system's last answer, whatever its age; nothing when there is none or when the last question failed. Lives as
// long as the health is not changed.
[[nodiscard]] const FilterHealth::Records* lastRecords(const FilterHealth& health);

// The same, unless it is older than FilterHealth::propertiesLifetime.
[[nodiscard]] const FilterHealth::Records* freshRecords(const FilterHealth& health, double now);

}
