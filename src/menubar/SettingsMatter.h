#pragma once

#include "filter/DaemonHealth.h"
#include "filter/FilterHealth.h"

namespace brevanta {

// What a component has the user do in the system's settings.
enum class SettingsMatter {
    unknown, // At the moment; what was known before still counts.
    awaited, // The system waits for it.
    switchedOff,
    none,
};

[[nodiscard]] SettingsMatter settingsMatterOf(FilterStatus filter);
[[nodiscard]] SettingsMatter settingsMatterOf(const DaemonHealth::State& service);

// Whether the matter that was known last has been settled now. What was awaited is settled in whatever way it ended.
[[nodiscard]] bool hasSettled(SettingsMatter before, SettingsMatter now);

}
