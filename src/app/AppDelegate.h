#pragma once

#include "app/AppPorts.h"
#include "app/BuildConfiguration.h"
#include "app/InstallHold.h"
#include "platform/ApplicationLifecycle.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace brevanta {

class AppAlertPresenter;
class AppLocationGate;
class ComponentMonitor;
class CrashReporting;
class DaemonClient;
class DeviceSetupActions;
class FirstLoadHold;
class LaunchRegistrations;
class MenuBarController;
class Notices;
class RemovalCompletion;
class RemovalShellController;
class ServiceInstallation;
class SetupLinks;
class SharedBlockStateWriter;
class StatusConsumer;
class TrustedOrigins;
class Updater;
class WebViewWindow;

// Builds every long-lived object of the client at launch, in a fixed order, and answers the application object.
// Main thread only.
class AppDelegate final : public ApplicationObserver {
public:
    AppDelegate(AppPorts ports, BuildConfiguration configuration);
    ~AppDelegate() override;

    void applicationWillFinishLaunching() override;
    void applicationDidFinishLaunching() override;
    void applicationDidOpenUrl(const Url& url) override;
    void applicationDidBecomeActive() override;
    void systemDidWake() override;
    [[nodiscard]] TerminationDecision applicationShouldTerminate() override;
    void applicationShouldReopen() override;
    void applicationWillTerminate() override;

    // An update wants the application to end and to start anew. After `later`, `relaunch` is called once when the
    // install that is under way has ended; after `now` it is not called.
    [[nodiscard]] RelaunchDecision updaterShouldRelaunch(std::function<void()> relaunch);

private:
    void startUpdater();
    void createDaemonClient();
    void createInstallation();
    void installChanged();
    [[nodiscard]] bool isRemoving() const;
    void createComponentMonitor();
    void createWindow();
    void armLaunchHold();
    void createMenuBarController();
    void decideWindowAtLaunch();
    [[nodiscard]] std::vector<StatusConsumer*> statusConsumers();
    [[nodiscard]] TrustedOrigins trustedOrigins() const;
    [[nodiscard]] bool isTrusted(const std::string& url) const;

    AppPorts m_ports;
    BuildConfiguration m_configuration;
    std::unique_ptr<CrashReporting> m_crashReporting;
    std::unique_ptr<AppLocationGate> m_locationGate;
    std::unique_ptr<DaemonClient> m_daemonClient;
    std::unique_ptr<SharedBlockStateWriter> m_sharedStateWriter;
    std::unique_ptr<AppAlertPresenter> m_alerts;
    std::unique_ptr<Notices> m_notices;
    std::unique_ptr<ServiceInstallation> m_installation;
    std::unique_ptr<ComponentMonitor> m_monitor;
    std::unique_ptr<DeviceSetupActions> m_deviceSetup;
    std::unique_ptr<RemovalShellController> m_removal;
    std::unique_ptr<RemovalCompletion> m_removalCompletion;
    std::unique_ptr<WebViewWindow> m_webViewWindow;
    std::unique_ptr<FirstLoadHold> m_firstLoadHold;
    std::unique_ptr<MenuBarController> m_menuBarController;
    std::unique_ptr<LaunchRegistrations> m_registrations;
    std::unique_ptr<SetupLinks> m_links;
    Updater* m_updater { nullptr }; // Null when updates are not configured.
};

}
