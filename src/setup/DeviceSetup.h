#pragma once

#include "base/Json.h"

#include <functional>
#include <string_view>

namespace brevanta {

enum class SetupActionOutcome { taken, unknown };

// What the page can have set up on this computer. Main thread only.
class DeviceSetup {
public:
    virtual ~DeviceSetup() = default;

    // Begins the action of this name; `unknown` when there is none, and nothing happens.
    virtual SetupActionOutcome perform(std::string_view action) = 0;

    // What the page is told: an object with "schema" 1.
    [[nodiscard]] virtual Json state() const = 0;

    // Called whenever the state may have become another one. Replaces the handler given before.
    virtual void setChangeHandler(std::function<void()> onChange) = 0;

    // Another document is being shown, or the one that was is gone.
    virtual void pageChanged() = 0;

    // Whether the page may have the content filter removed.
    [[nodiscard]] virtual bool isFilterRemovable() const = 0;

    // Only while it is removable.
    virtual void removeFilter() = 0;
};

}
