#pragma once

#include "filter/FilterHealth.h"

#include <optional>
#include <string_view>

namespace brevanta {

// Decides whether the content filter is activated without being asked for, once in a launch: only to replace an older
// one that the user has let in before. Pure functions.
namespace LaunchFilterActivationPolicy {

enum class Decision {
    activate, // Every active extension is older than the one in the application.
    nothingToSubmit, // No extension was ever activated: the first time is the user's to start.
    nothingToDo, // An activation was submitted already, or there is nothing that should or can be replaced.
    undecided, // What extensions there are is not known, or no longer.
};

enum class LaunchAttempt { notYet, made };

// `bundled` is FilterSystem::bundledExtension, `attempt` whether this launch has submitted an activation, and `now` is
// in continuous seconds. Older is what has the smaller short version or, those being equal, build version; what has
// missing or unreadable versions is older than nothing.
[[nodiscard]] Decision decide(
    const FilterHealth& health, const std::optional<ExtensionRecord>& bundled, LaunchAttempt attempt, double now);

// For the log, without a tag.
[[nodiscard]] std::string_view describe(Decision decision);

}

}
