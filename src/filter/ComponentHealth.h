#pragma once

#include "base/Json.h"
#include "daemon/DaemonFailure.h"

#include <optional>
#include <string>

namespace brevanta {

struct BlockingStatus;

// What choosing a component's menu line does.
enum class ComponentAction {
    none,
    installService,
    restartService,
    updateService,
    openLoginItemsSettings,
    activateFilter,
    openFilterApproval,
};

// One component's line in the menu.
struct ComponentLine {
    std::string title;
    ComponentAction action { ComponentAction::none };

    bool operator==(const ComponentLine&) const = default;
};

// What is known of the two protective components: the blocking service and the content filter. Main thread only.
class ComponentHealth {
public:
    virtual ~ComponentHealth() = default;

    // The report that goes with the next status request; nothing when there is none to be sent.
    [[nodiscard]] virtual std::optional<Json> filterHealthReport() = 0;

    // How a status request ended that began at `requestStartedAt`, in continuous seconds.
    virtual void pollSucceeded(const BlockingStatus& status, double requestStartedAt) = 0;
    virtual void pollFailed(const DaemonFailure& failure, double requestStartedAt) = 0;

    // Draws the consequences of the time that has passed.
    virtual void refresh() = 0;

    [[nodiscard]] virtual ComponentLine serviceLine() const = 0;
    [[nodiscard]] virtual ComponentLine filterLine() const = 0;
};

}
