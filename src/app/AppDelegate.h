#pragma once

#include "app/BuildConfiguration.h"
#include "platform/ApplicationLifecycle.h"

#include <memory>

namespace brevanta {

class AlertPanel;
class Clock;
class ComponentHealth;
class DaemonClient;
class Executor;
class LocalSocketConnector;
class LoginRecords;
class MainLoop;
class MainWindow;
class MenuBarController;
class NotificationCenter;
class StatusItem;
class SystemLog;
class UserDefaults;
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
};

// Builds every long-lived object of the client at launch, in a fixed order, and answers the application object.
// Main thread only.
class AppDelegate final : public ApplicationObserver {
public:
    AppDelegate(AppPorts ports, BuildConfiguration configuration);
    ~AppDelegate() override;

    void applicationWillFinishLaunching() override;
    void applicationDidFinishLaunching() override;
    [[nodiscard]] TerminationDecision applicationShouldTerminate() override;
    void applicationShouldReopen() override;
    void applicationWillTerminate() override;

private:
    void createDaemonClient();
    void createMenuBarController();
    void decideWindowAtLaunch();
    void bringWindowToFront();

    AppPorts m_ports;
    BuildConfiguration m_configuration;
    std::unique_ptr<DaemonClient> m_daemonClient;
    std::unique_ptr<ComponentHealth> m_health;
    std::unique_ptr<MenuBarController> m_menuBarController;
};

}
