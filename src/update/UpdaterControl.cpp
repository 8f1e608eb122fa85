#include "update/UpdaterControl.h"

#include <algorithm>
#include <array>
#include <nlohmann/json.hpp>
#include <utility>

namespace brevanta {

namespace {

constexpr std::array<std::pair<std::string_view, UpdaterCommand>, 4> commands { {
    { "get_updater_state", UpdaterCommand::getState },
    { "set_updater_auto_checks_on", UpdaterCommand::setAutomaticChecksOn },
    { "set_updater_auto_checks_off", UpdaterCommand::setAutomaticChecksOff },
    { "updater_check_now", UpdaterCommand::checkNow },
} };

}

std::optional<UpdaterCommand> updaterCommand(std::string_view name)
{
    const auto* const found = std::ranges::find(commands, name, [](const auto& entry) { return entry.first; });
    return found == commands.end() ? std::nullopt : std::optional(found->second);
}

void perform(UpdaterCommand command, UpdaterControl* updater)
{
    if (!updater)
        return;
    switch (command) {
    case UpdaterCommand::getState:
        return;
    case UpdaterCommand::setAutomaticChecksOn:
        return updater->setAutomaticChecks(true);
    case UpdaterCommand::setAutomaticChecksOff:
        return updater->setAutomaticChecks(false);
    case UpdaterCommand::checkNow:
        return updater->checkNow();
    }
}

Json updaterState(const UpdaterControl* updater, const std::string& version)
{
    return { { "available", updater != nullptr }, { "automaticChecks", updater && updater->automaticChecks() },
        { "version", version } };
}

}
