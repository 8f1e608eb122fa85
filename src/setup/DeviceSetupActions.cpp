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
    } else if (action == activateFilter) {
        begin(action);
    } else {
        return SetupActionOutcome::unknown;
    }
    return SetupActionOutcome::taken;
}

Json DeviceSetupActions::state() const
{
    return { { "schema", 1 },
        { "actions", { onboardingStarted, onboardingEnded, activateFilter, openFilterSettings, openLoginItems } },
        { "running", m_running.empty() ? Json(nullptr) : Json(m_running) }, { "onboarding", m_onboardingActive },
        { "service", std::visit(ServiceStateName {}, m_dependencies.monitor.serviceState()) },
        { "filter", reportName(m_dependencies.monitor.filterStatus()) } };
}

// A document that has gone leads nobody through anything.
void DeviceSetupActions::pageChanged() { setOnboarding(false); }

bool DeviceSetupActions::isFilterRemovable() const
{
    return !m_dependencies.services.isProgramInstalled() && m_dependencies.monitor.isFilterPresent();
}

void DeviceSetupActions::removeFilter() { m_dependencies.monitor.filterManager().remove(); }

void DeviceSetupActions::componentsChanged()
{
    if (m_onChange)
        m_onChange();
}

void DeviceSetupActions::setOnboarding(bool active)
{
    if (std::exchange(m_onboardingActive, active) != active)
        componentsChanged();
}

void DeviceSetupActions::begin(std::string_view action)
{
    if (!m_running.empty())
        return m_dependencies.log.log(
            "[DeviceSetup] " + std::string(action) + " ignored: " + m_running + " is under way");
    m_running = action;
    componentsChanged();
    m_dependencies.activateFilter(m_life.guard([this] { ended(); }));
}

void DeviceSetupActions::ended()
{
    m_running.clear();
    componentsChanged();
}

}
