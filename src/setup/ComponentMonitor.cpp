#include "setup/ComponentMonitor.h"

#include "daemon/BlockingStatus.h"
#include "daemon/DaemonFailure.h"
#include "platform/Clock.h"
#include "platform/MainLoop.h"
#include "platform/ServiceManager.h"
#include "platform/SystemLog.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <utility>

namespace brevanta {

ComponentMonitor::ComponentMonitor(Dependencies dependencies)
    : m_dependencies(std::move(dependencies))
    , m_offNotices(m_dependencies.defaults, m_dependencies.log,
          [this](ProtectiveComponent component, std::int64_t) { m_dependencies.postSwitchedOff(component); })
    , m_filterManager(
          m_dependencies.filterSystem, m_dependencies.mainLoop, m_dependencies.clock, m_dependencies.log, *this)
{
    m_service.bundledVersion = m_dependencies.bundledServiceVersion;
}

// What launchd says counts only until the first poll has ended.
void ComponentMonitor::start()
{
    m_dependencies.services.checkLaunch(m_life.guard([this](std::optional<LaunchCheck> check) {
        if (check)
            m_service.launchCheck = check;
        refresh();
    }));
    readBackgroundItem();
}

Json ComponentMonitor::filterHealthReport()
{
    return m_reports.next(
        filterHealth(), m_dependencies.clock.continuousSeconds(), m_dependencies.clock.rawMonotonicNanoseconds());
}

void ComponentMonitor::pollSucceeded(const BlockingStatus& status, double requestStartedAt)
{
    m_service.recordSuccess(status.daemonVersion, requestStartedAt);
    logUpgradeDecision();
    if (const auto line = m_reports.answered(status.filterHealthResult))
        m_dependencies.log.log(*line);
    refresh();
    if (std::holds_alternative<DaemonHealth::Running>(serviceState()))
        m_upgradeHeld = false;
}

void ComponentMonitor::pollFailed(const DaemonFailure& failure, double requestStartedAt)
{
    m_service.recordFailure(
        DaemonHealth::kindOf(failure), m_dependencies.services.isProgramInstalled(), requestStartedAt);
    const double now = m_dependencies.clock.continuousSeconds();
    if (!m_backgroundItemAskedAt || now - *m_backgroundItemAskedAt >= backgroundItemInterval)
        readBackgroundItem();
    refresh();
}

// The verdicts also change by time alone.
void ComponentMonitor::refresh()
{
    const double now = m_dependencies.clock.continuousSeconds();
    m_offNotices.update(ProtectiveComponent::blockingService, conclusiveReading(m_service, m_upgradeHeld, now));
    m_offNotices.update(
        ProtectiveComponent::contentFilter, conclusiveReading(filterHealth(), m_service, m_upgradeHeld, now));
}

ComponentLine ComponentMonitor::serviceLine() const { return brevanta::serviceLine(serviceState(), m_installProgress); }

ComponentLine ComponentMonitor::filterLine() const
{
    return brevanta::filterLine(
        filterLineFacts(filterHealth(), m_preferences, m_dependencies.clock.continuousSeconds()));
}

DaemonHealth::State ComponentMonitor::serviceState() const
{
    return m_service.state(m_dependencies.clock.continuousSeconds());
}

FilterHealth ComponentMonitor::filterHealth() const
{
    auto health = m_storedFilter;
    health.requestAwaitingApproval = m_filterManager.isAwaitingUserApproval();
    return health;
}

FilterStatus ComponentMonitor::filterStatus() const
{
    return filterHealth().status(m_dependencies.clock.continuousSeconds());
}

bool ComponentMonitor::isFilterPresent() const
{
    return m_hasExtension || (m_preferences && m_preferences->isConfigured);
}

LaunchFilterActivationPolicy::Decision ComponentMonitor::launchFilterDecision(
    LaunchFilterActivationPolicy::LaunchAttempt attempt) const
{
    return LaunchFilterActivationPolicy::decide(
        filterHealth(), m_filterManager.bundledExtension(), attempt, m_dependencies.clock.continuousSeconds());
}

std::optional<DaemonUpgradePolicy::Decision> ComponentMonitor::upgradeDecision() const
{
    const auto state = serviceState();
    const auto* const running = std::get_if<DaemonHealth::Running>(&state);
    return running ? std::optional(running->upgrade) : std::nullopt;
}

void ComponentMonitor::serviceProgramMissing()
{
    if (m_service.launchCheck)
        return;
    m_service.launchCheck = LaunchCheck::notInstalled;
    refresh();
}

void ComponentMonitor::installBegan(InstallProgress progress)
{
    m_installProgress = progress;
    const auto decision = upgradeDecision(); // As long as an install is under way there is none.
    m_upgradeHeld = decision && std::holds_alternative<DaemonUpgradePolicy::Upgrade>(*decision);
    m_service.installInFlight = true;
    refresh();
}

void ComponentMonitor::installEnded(InstallOutcome outcome)
{
    m_installProgress = InstallProgress::idle;
    m_service.installInFlight = false;
    if (outcome == InstallOutcome::installed)
        m_service.graceStartedAt = m_dependencies.clock.continuousSeconds();
    else
        m_upgradeHeld = false;
    refresh();
}

void ComponentMonitor::filterPropertiesRead(std::vector<ExtensionRecord> records, double at)
{
    m_hasExtension = std::ranges::any_of(records, [](const auto& record) { return !record.isUninstalling; });
    m_storedFilter.recordProperties(std::move(records), at);
    refresh();
}

void ComponentMonitor::filterPropertiesFailed(double at)
{
    m_storedFilter.recordPropertiesFailure(at, m_dependencies.clock.continuousSeconds());
    refresh();
}

void ComponentMonitor::filterPreferencesRead(const FilterPreferences& preferences, double at)
{
    m_preferences = preferences;
    m_storedFilter.config = FilterHealth::Enabled { preferences.isEnabled, at };
    refresh();
}

void ComponentMonitor::filterPreferencesFailed(double at)
{
    m_storedFilter.config = FilterHealth::ConfigFailed { at };
    refresh();
}

void ComponentMonitor::readBackgroundItem()
{
    const double now = m_dependencies.clock.continuousSeconds();
    m_backgroundItemAskedAt = now;
    m_dependencies.services.readBackgroundItem(m_life.guard([this, now](BackgroundItem item) {
        m_service.recordBackgroundItem(item, now);
        refresh();
    }));
}

void ComponentMonitor::logUpgradeDecision()
{
    const auto decision = upgradeDecision();
    if (!decision || decision == m_loggedDecision)
        return;
    m_loggedDecision = decision;
    m_dependencies.log.log(DaemonUpgradePolicy::describe(*decision));
}

}
