#pragma once

#include "filter/ComponentLine.h"
#include "filter/DaemonHealth.h"
#include "filter/FilterHealth.h"

namespace brevanta {

// The menu's lines for the two protective components: pure functions, one line and at most one remedy each.

struct FilterLineFacts {
    FilterStatus status { FilterStatus::checking };
    bool needsInstall { false }; // There is no filter on this computer that could be switched on.
    bool approvalRequested { false }; // We asked for the filter, and the user has yet to allow it.
};

// `preferences` are the last that were read.
[[nodiscard]] FilterLineFacts filterLineFacts(
    const FilterHealth& health, const std::optional<FilterPreferences>& preferences, double now);

[[nodiscard]] ComponentLine filterLine(const FilterLineFacts& facts);

enum class InstallProgress { idle, inFlight, removing }; // What an administrator was asked for, as long as it goes on.

[[nodiscard]] ComponentLine serviceLine(const DaemonHealth::State& state, InstallProgress install);

}
