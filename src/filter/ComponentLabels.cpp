#include "filter/ComponentLabels.h"

namespace brevanta {

namespace {

struct ServiceLine {
    InstallProgress install;

    ComponentLine operator()(const DaemonHealth::Running& running) const
    {
        const bool isOutdated = std::holds_alternative<DaemonUpgradePolicy::Upgrade>(running.upgrade);
        return { DaemonUpgradePolicy::menuTitle(running.upgrade),
            isOutdated ? ComponentAction::updateService : ComponentAction::none };
    }
    ComponentLine operator()(const DaemonHealth::Checking&) const
    {
        return { "Blocking Service: Checking…", ComponentAction::none };
    }
    ComponentLine operator()(const DaemonHealth::NotInstalled&) const
    {
        return { "⚠ Install Blocking Service…", ComponentAction::installService };
    }
    ComponentLine operator()(const DaemonHealth::NotRunning&) const { return restart(); }
    ComponentLine operator()(const DaemonHealth::TurnedOffInSettings&) const
    {
        return { "⚠ Blocking Service Turned Off in System Settings…", ComponentAction::openLoginItemsSettings };
    }
    ComponentLine operator()(const DaemonHealth::Starting&) const
    {
        switch (install) {
        case InstallProgress::inFlight:
            return { "Blocking Service: installing…", ComponentAction::none };
        case InstallProgress::removing:
            return { "Blocking Service: removing…", ComponentAction::none };
        case InstallProgress::idle:
            break;
        }
        return { "Blocking Service: starting…", ComponentAction::none };
    }
    ComponentLine operator()(const DaemonHealth::Unreachable&) const { return restart(); }

    static ComponentLine restart() { return { "⚠ Restart Blocking Service…", ComponentAction::restartService }; }
};

// Whether a filter that is off is so because there is nothing that could be switched on.
bool hasNothingToSwitchOn(const FilterHealth& health, const std::optional<FilterPreferences>& preferences, double now)
{
    switch (health.extensionState(now)) {
    case FilterHealth::ExtensionState::absent:
        return true;
    case FilterHealth::ExtensionState::active:
        return preferences && !preferences->isConfigured;
    case FilterHealth::ExtensionState::awaitingApproval:
    case FilterHealth::ExtensionState::unknown:
        break;
    }
    return false;
}

}

FilterLineFacts filterLineFacts(
    const FilterHealth& health, const std::optional<FilterPreferences>& preferences, double now)
{
    const auto status = health.status(now);
    // Whether it is our request that waits or one of an earlier run: the user has to do the same.
    return { .status = status,
        .needsInstall = status == FilterStatus::off && hasNothingToSwitchOn(health, preferences, now),
        .approvalRequested = status == FilterStatus::awaitingApproval };
}

ComponentLine filterLine(const FilterLineFacts& facts)
{
    if (facts.approvalRequested)
        return { "⚠ Approve Content Filter in System Settings…", ComponentAction::openFilterApproval };
    if (facts.needsInstall && facts.status != FilterStatus::on)
        return { "⚠ Install Content Filter…", ComponentAction::activateFilter };
    switch (facts.status) {
    case FilterStatus::checking:
        return { "Content Filter: Checking…", ComponentAction::none };
    case FilterStatus::cantCheck:
        return { "Content Filter: Can't check", ComponentAction::none };
    case FilterStatus::awaitingApproval:
        return { "Content Filter: Waiting for approval", ComponentAction::none };
    case FilterStatus::off:
        return { "⚠ Content Filter: Off", ComponentAction::none };
    case FilterStatus::on:
        break;
    }
    return { "✓ Content Filter", ComponentAction::none };
}

ComponentLine serviceLine(const DaemonHealth::State& state, InstallProgress install)
{
    return std::visit(ServiceLine { install }, state);
}

}
