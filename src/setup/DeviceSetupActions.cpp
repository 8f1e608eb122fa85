#include "setup/DeviceSetupActions.h"

#include "platform/ServiceManager.h"
#include "platform/SystemLog.h"
#include "setup/ComponentMonitor.h"

#include <nlohmann/json.hpp>
#include <utility>

namespace brevanta {

namespace {

constexpr std::string_view onboardingStarted = "setup_onboarding_started";
constexpr std::string_view onboardingEnded = "setup_onboarding_ended";
constexpr std::string_view installService = "setup_install_service";
constexpr std::string_view updateService = "setup_update_service";
constexpr std::string_view activateFilter = "setup_activate_filter";
constexpr std::string_view openFilterSettings = "setup_open_filter_settings";
constexpr std::string_view openLoginItems = "setup_open_login_items";

struct ServiceStateName {
    const char* operator()(const DaemonHealth::Running&) const { return "running"; }
    const char* operator()(const DaemonHealth::Checking&) const { return "checking"; }
    const char* operator()(const DaemonHealth::NotInstalled&) const { return "notInstalled"; }
    const char* operator()(const DaemonHealth::NotRunning&) const { return "notRunning"; }
    const char* operator()(const DaemonHealth::TurnedOffInSettings&) const { return "turnedOffInSettings"; }
    const char* operator()(const DaemonHealth::Starting&) const { return "starting"; }
    const char* operator()(const DaemonHealth::Unreachable&) const { return "unreachable"; }
};

}

DeviceSetupActions::DeviceSetupActions(Dependencies dependencies)
    : m_dependencies(std::move(dependencies))
{
}

SetupActionOutcome DeviceSetupActions::perform(std::string_view action)
{
    if (action == onboardingStarted || action == onboardingEnded) {
        setOnboarding(action == onboardingStarted);
    } else if (action == openFilterSettings) {
        m_dependencies.openFilterSettings();
    } else if (action == openLoginItems) {
        m_dependencies.openLoginItems();
    } else if (action == installService) {
        begin(action, m_dependencies.installService);
    } else if (action == updateService) {
        beginUpdate();
    } else if (action == activateFilter) {
        begin(action, m_dependencies.activateFilter);
    } else {
        return SetupActionOutcome::unknown;
    }
    return SetupActionOutcome::taken;
}

Json DeviceSetupActions::state() const
{
    return { { "schema", 1 },
        { "actions",
            { onboardingStarted, onboardingEnded, installService, updateService, activateFilter, openFilterSettings,
                openLoginItems } },
        { "running", running().empty() ? Json(nullptr) : Json(running()) }, { "onboarding", m_onboardingActive },
        { "service", std::visit(ServiceStateName {}, m_dependencies.monitor.serviceState()) },
        { "filter", reportName(m_dependencies.monitor.filterStatus()) } };
}

// A document that has gone leads nobody through anything.
void DeviceSetupActions::pageChanged() { setOnboarding(false); }

bool DeviceSetupActions::isFilterRemovable() const
{
    return !m_dependencies.services.isProgramInstalled() && m_dependencies.monitor.isFilterPresent();
}

void DeviceSetupActions::removeFilter() { m_dependencies.removeFilter(); }

void DeviceSetupActions::launched(ServiceProgram program)
{
    if (program == ServiceProgram::present)
        return;
    m_dependencies.monitor.serviceProgramMissing();
    componentsChanged();
}

void DeviceSetupActions::componentsChanged()
{
    if (m_onChange)
        m_onChange();
}

void DeviceSetupActions::setOnboarding(bool active)
{
    if (std::exchange(m_onboardingActive, active) == active)
        return;
    m_dependencies.onboardingChanged();
    componentsChanged();
}

void DeviceSetupActions::begin(std::string_view action, const Start& start)
{
    if (const auto underWay = running(); !underWay.empty())
        return m_dependencies.log.log(
            "[DeviceSetup] " + std::string(action) + " ignored: " + std::string(underWay) + " is under way");
    m_running = action;
    componentsChanged();
    start(m_life.guard([this] { ended(); }));
}

void DeviceSetupActions::beginUpdate()
{
    const auto decision = m_dependencies.monitor.upgradeDecision();
    const bool isOffered = decision && std::holds_alternative<DaemonUpgradePolicy::Upgrade>(*decision);
    // While one is under way nothing is offered; that it is under way says more.
    if (!isOffered && running().empty())
        return m_dependencies.log.log("[DeviceSetup] setup_update_service ignored: there is no update to be offered");
    begin(updateService, m_dependencies.installService);
}

void DeviceSetupActions::ended()
{
    m_running.clear();
    componentsChanged();
}

// An install that was begun elsewhere is the page's business too: until it has ended, no other can begin.
std::string_view DeviceSetupActions::running() const
{
    return m_running.empty() && m_dependencies.isInstalling() ? installService : std::string_view(m_running);
}

}
