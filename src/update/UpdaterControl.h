#pragma once

#include "base/Json.h"

#include <optional>
#include <string>
#include <string_view>

namespace brevanta {

// The application's updater. Main thread only.
class UpdaterControl {
public:
    virtual ~UpdaterControl() = default;

    [[nodiscard]] virtual bool automaticChecks() const = 0;
    virtual void setAutomaticChecks(bool on) = 0;

    // Looks for an update now, and shows the user what came of it.
    virtual void checkNow() = 0;
};

enum class UpdaterCommand { getState, setAutomaticChecksOn, setAutomaticChecksOff, checkNow };

// The command that the page names; nothing for any other text.
[[nodiscard]] std::optional<UpdaterCommand> updaterCommand(std::string_view name);

// Without an updater a command does nothing.
void perform(UpdaterCommand command, UpdaterControl* updater);

// What the page is told of the updater, of which there may be none. `version` is the application's.
[[nodiscard]] Json updaterState(const UpdaterControl* updater, const std::string& version);

}
