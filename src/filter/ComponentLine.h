#pragma once

#include <string>

namespace brevanta {

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

}
