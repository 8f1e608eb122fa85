#pragma once

#include "app/BuildConfiguration.h"
#include "platform/ApplicationLifecycle.h"
#include "setup/DeviceSetupNavigation.h"

#include <functional>
#include <memory>
#include <string>

namespace brevanta {

class AlertPanel;
class Clock;
class ComponentHealth;
class DaemonClient;
class DeviceSetup;
class Executor;
class FirstLoadHold;
class LocalSocketConnector;
class LoginRecords;
class MainLoop;
class MainWindow;
class MenuBarController;
class NotificationCenter;
class OpenPanel;
class Placeholder;
class RemovalShellController;
class StatusItem;
class SystemLog;
class UserDefaults;
class WebView;
class WebViewWindow;
class Workspace;

// Everything that the client asks of an operating system. The composition root owns the adapters, and keeps them alive
// longer than the delegate.
struct AppPorts {
    MainLoop& mainLoop;
    Executor& daemonQueue; // A serial queue of its own, for exchanges with the blocking service.
    LocalSocketConnector& localSockets;
    Clock& clock;
    SystemLog& log;
    UserDefaults& defaults;
    ApplicationLifecycle& lifecycle;
    MainWindow& mainWindow;
    StatusItem& statusItem;
    AlertPanel& alerts;
    Workspace& workspace;
    NotificationCenter& notifications;
    LoginRecords& loginRecords;
    WebView& webView;
    Placeholder& placeholder;
    OpenPanel& openPanel;
    std::function<std::string()> newUuid; // A fresh random UUID, RFC 9562 version 4, in its usual form.
    std::string deviceName; // The name that the user gave this computer.
};

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

private:
    void createDaemonClient();
    void createWindow();
    void armLaunchHold();
    void createMenuBarController();
    void decideWindowAtLaunch();
    void settleFilterActivation();

    AppPorts m_ports;
    BuildConfiguration m_configuration;
    std::unique_ptr<DaemonClient> m_daemonClient;
    std::unique_ptr<ComponentHealth> m_health;
    std::unique_ptr<DeviceSetup> m_deviceSetup;
    std::unique_ptr<RemovalShellController> m_removal;
    std::unique_ptr<WebViewWindow> m_webViewWindow;
    std::unique_ptr<FirstLoadHold> m_firstLoadHold;
    std::unique_ptr<MenuBarController> m_menuBarController;
    DeviceSetupNavigation::Throttle m_linkThrottle;
    bool m_launchLinkPending { false }; // A setup link came before there was a window.
};

}
