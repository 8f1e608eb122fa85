#pragma once

#include "base/Json.h"
#include "base/LifeToken.h"
#include "daemon/DaemonFailure.h"
#include "filter/ComponentLabels.h"
#include "filter/DaemonHealth.h"
#include "filter/FilterHealth.h"
#include "filter/FilterHealthReport.h"
#include "filter/FilterManager.h"
#include "filter/LaunchFilterActivationPolicy.h"
#include "filter/OffNoticeTracker.h"
#include "install/InstallFlight.h"

#include <functional>
#include <optional>
#include <string>

namespace brevanta {

class MainLoop;
struct BlockingStatus;

// Owns what is known of the two protective components: feeds the polls' ends and the system's answers into the health
// values, and draws the lines, the report and the switched-off notices from them. Main thread only.
class ComponentMonitor final : private FilterObserver {
public:
    struct Dependencies {
        MainLoop& mainLoop;
        Clock& clock;
        SystemLog& log;
        UserDefaults& defaults;
        ServiceManager& services;
        FilterSystem& filterSystem;
        std::string bundledServiceVersion;
        std::function<void(ProtectiveComponent)> postSwitchedOff; // Tells the user.
    };

    // While the service fails, its background item is read again after so many seconds.
    static constexpr double backgroundItemInterval = 4;

    explicit ComponentMonitor(Dependencies dependencies);

    // Asks the system about the service once, before anything is known from it.
    void start();

    // The report that goes with the next status request.
    [[nodiscard]] Json filterHealthReport();

    // How a status request ended that began at `requestStartedAt`, in continuous seconds.
    void pollSucceeded(const BlockingStatus& status, double requestStartedAt);
    void pollFailed(const DaemonFailure& failure, double requestStartedAt);

    // Draws the consequences of the time that has passed.
    void refresh();

    [[nodiscard]] ComponentLine serviceLine() const;
    [[nodiscard]] ComponentLine filterLine() const;

    [[nodiscard]] FilterManager& filterManager() { return m_filterManager; }

    [[nodiscard]] DaemonHealth::State serviceState() const;
    [[nodiscard]] FilterHealth filterHealth() const; // With what our own request waits for.
    [[nodiscard]] FilterStatus filterStatus() const;

    // There is a copy of the filter, or its configuration, that could be removed.
    [[nodiscard]] bool isFilterPresent() const;

    [[nodiscard]] LaunchFilterActivationPolicy::Decision launchFilterDecision(
        LaunchFilterActivationPolicy::LaunchAttempt attempt) const;

    // Whether an update of the service is to be offered; nothing while the service's version is not known.
    [[nodiscard]] std::optional<DaemonUpgradePolicy::Decision> upgradeDecision() const;

    // The program file is not on this computer; counts until the system or a poll says more.
    void serviceProgramMissing();

    // An install of the service, or its removal by an administrator, has begun or ended. What it brings about is not
    // taken for somebody else's doing: while it is under way, in the grace period after one that went well, and after
    // an update until the new service answers.
    void installBegan(InstallProgress progress = InstallProgress::inFlight);
    void installEnded(InstallOutcome outcome);

private:
    void filterPropertiesRead(std::vector<ExtensionRecord> records, double at) override;
    void filterPropertiesFailed(double at) override;
    void filterPreferencesRead(const FilterPreferences& preferences, double at) override;
    void filterPreferencesFailed(double at) override;

    void readBackgroundItem();
    void logUpgradeDecision();

    Dependencies m_dependencies;
    DaemonHealth m_service;
    InstallProgress m_installProgress { InstallProgress::idle };
    FilterHealth m_storedFilter;
    FilterHealthReportSequence m_reports;
    OffNoticeTracker m_offNotices;
    FilterManager m_filterManager;
    std::optional<FilterPreferences> m_preferences; // The last that were read.
    bool m_hasExtension { false }; // By the last records that were read: a copy that is not on its way out.
    std::optional<DaemonUpgradePolicy::Decision> m_loggedDecision;
    std::optional<double> m_backgroundItemAskedAt;
    bool m_upgradeHeld { false }; // We update the service, and the new one has not answered yet.
    LifeToken m_life;
};

}
