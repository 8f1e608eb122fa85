#pragma once

#include "daemon/DaemonCredentialRecovery.h"
#include "filter/ComponentLine.h"
#include "menubar/CoinNotices.h"
#include "menubar/ContentFilterPass.h"
#include "menubar/DaemonUpgradePrompt.h"
#include "menubar/FilterRequests.h"
#include "menubar/FilterSettingsGuide.h"
#include "menubar/PollLoop.h"
#include "menubar/StatusMenu.h"
#include "menubar/TokenWatchdog.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace brevanta {

class AppAlertPresenter;
class ComponentMonitor;
class DeviceSetupActions;
class NotificationHelper;
class ServiceInstaller;
class StatusConsumer;
class SystemLog;
class Updater;
class WebShell;

// Owns the status item's content and the poll loop that drives the client: each status is handed on in one fixed order.
// Created once at launch; main thread only.
class MenuBarController final : private PollObserver {
public:
    struct Dependencies {
        MainLoop& mainLoop;
        Clock& clock;
        SystemLog& log;
        StatusItem& statusItem;
        NotificationCenter& notifications;
        NotificationHelper& notificationHelper;
        DaemonClient& daemonClient;
        Workspace& workspace;
        AppAlertPresenter& alerts;
        ComponentMonitor& monitor;
        DeviceSetupActions& deviceSetup;
        ServiceInstaller& installer;
        WebShell& webShell;
        Updater* updater { nullptr }; // Null when updates are not configured.
        std::vector<StatusConsumer*> consumers; // In the order in which each status is handed to them.
        std::string version;
        SystemVersion systemVersion;
        std::function<void(const LaunchActivationOutcome&)> onFilterActivationSettled;
        std::function<void()> openWindow;
        std::function<void()> quit;
    };

    // Shows the status item at once, with nothing known yet.
    explicit MenuBarController(Dependencies dependencies);
    ~MenuBarController() override;

    // Begins to poll. Called once.
    void start();

    // What is known of the two components may have changed: shows it everywhere.
    void componentsChanged();

    // The page has begun to lead the user through the set-up, or no longer does.
    void onboardingChanged() { m_upgradePrompt.update(); }

    // The user has quit the application, which goes on until the install or removal under way has ended.
    void showQuitHeld(QuitLine line);

    [[nodiscard]] FilterSettingsGuide& settingsGuide() { return m_settingsGuide; }
    [[nodiscard]] FilterRequests& filterRequests() { return m_filterRequests; }

    // How long after launch a service that does not answer counts as starting. The service's own start takes a few
    // seconds after a login; the length is that of the grace period after an install.
    static constexpr double startUpGrace = 20;

private:
    void pollBegan() override;
    [[nodiscard]] std::optional<Json> filterHealthReport() override;
    void pollEnded(double startedAt, const PollResult& result) override;
    void ticked() override;

    void statusArrived(const std::shared_ptr<const BlockingStatus>& status, double startedAt);
    void statusFailed(const DaemonFailure& failure, double startedAt);
    void postCoinNotices(const BlockingStatus& status);
    void runTokenWatchdog(const TokenWatchdog::Event& event);
    void requestCredentialIfMissing(const BlockingStatus& status);
    void signalPage(const std::string& line);
    void rememberDisplay(const BlockingStatus& status);
    void forgetDisplay();
    void refreshStatusItem();
    void chosen(MenuItemId item);
    void perform(ComponentAction action);

    Dependencies m_dependencies;
    double m_startedAt;
    StatusMenuState m_state;
    std::string m_lastFailure; // What the log was last told of; empty while the service answers.
    CoinNotices m_coinNotices;
    TokenWatchdog m_tokenWatchdog;
    DaemonCredentialRecovery m_credentialRecovery;
    FilterSettingsGuide m_settingsGuide;
    FilterRequests m_filterRequests;
    DaemonUpgradePrompt m_upgradePrompt;
    ContentFilterPass m_filterPass;
    PollLoop m_pollLoop;
};

}
