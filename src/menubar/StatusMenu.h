#pragma once

#include "filter/ComponentLine.h"
#include "platform/StatusItem.h"

#include <optional>
#include <string>

namespace brevanta {

// The lines of the status menu, by what choosing them asks for.
enum class MenuCommand : int {
    openWindow = 1,
    showVersion,
    checkForUpdates,
    reloadWindow,
    contentFilter,
    showFilterRestart,
    blockingService,
    restartService,
    showBlocking,
    showActiveTask,
    showReason,
    quit,
};

enum class ServiceContact { notAskedYet, answering, starting, unreachable };
enum class Availability { absent, available };
enum class QuitLine { offered, held, heldByRemoval }; // Held: the quit was chosen, and waits for an install to end.

// Everything that the status item shows, in the client's own terms.
struct StatusMenuState {
    std::string version; // Of the running application.
    ServiceContact contact { ServiceContact::notAskedYet };
    bool blocking { false }; // This and the next three count only while the service answers.
    double energy { 0 };
    std::optional<std::string> activeTaskTitle;
    std::optional<std::string> blockReason;
    ComponentLine service;
    ComponentLine filter;
    bool filterNeedsRestart { false }; // What was asked of the filter takes effect when this computer restarts.
    Availability updater { Availability::absent };
    QuitLine quit { QuitLine::offered };
};

// A pure function: the same state always gives an equal content. What is stale is never shown: while the service does
// not answer, neither a task nor a reason is. Lines that have nothing to do are disabled.
[[nodiscard]] StatusItemContent statusItemContent(const StatusMenuState& state);

}
