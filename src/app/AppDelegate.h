#pragma once

#include "app/AppLocationPolicy.h"
#include "app/BuildConfiguration.h"
#include "app/InstallHold.h"
#include "filter/SystemSettings.h"
#include "platform/ApplicationLifecycle.h"
#include "platform/Url.h"
#include "setup/DeviceSetupNavigation.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace brevanta {

class Administrator;
class AlertPanel;
class AppAlertPresenter;
class AppLocationGate;
class Clock;
class ComponentMonitor;
class DaemonClient;
class DeviceSetupActions;
class Executor;
class FileStore;
class FilterSystem;
class FirstLoadHold;
class LaunchRegistrations;
class LocalSocketConnector;
class LoginItem;
class LoginRecords;
class MainLoop;
class MainWindow;
class MenuBarController;
class NotificationCenter;
class Notices;
class OpenPanel;
class Placeholder;
class ProgramRunner;
class RemovalShellController;
class ServiceInstallation;
class ServiceManager;
class SharedBlockStateWriter;
class StatusConsumer;
class StatusItem;
class SystemLog;
class TrustedOrigins;
class UserDefaults;
class WebView;
class WebViewWindow;
class Workspace;

// Everything that the client asks of an operating system. The composition root owns the adapters, and keeps them alive
// longer than the delegate.
struct AppPorts {
    MainLoop& mainLoop;
    Executor& daemonQueue; // A serial queue of its own, for exchanges with the blocking service.
    Executor& sharedStateQueue; // Another one, for the files that the content filter and the browsers read.
    Executor& pageScriptQueue; // Another one, for scripts that are too large to be made on the main thread.
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
    ServiceManager& services;
    FilterSystem& filterSystem;
    FileStore& files;
    // The folder that the client shares with the content filter; nothing while there is none. Any thread.
    std::function<std::optional<std::filesystem::path>()> sharedContainer;
    SystemVersion systemVersion;
    std::function<std::string()> newUuid; // A fresh random UUID, RFC 9562 version 4, in its usual form.
    std::string deviceName; // The name that the user gave this computer.
    // As the system reads it; nothing when it is none.
    std::function<std::optional<Url>(const std::string& text)> parseUrl;
    std::filesystem::path resources; // The folder of what the application ships with: sounds, texts.
    std::filesystem::path home; // The user's folder.
    std::vector<std::string> systemLanguages; // Those that the user prefers, as in `chooseNoticeLanguage`.
    std::filesystem::path bundle; // The application's bundle; empty when it cannot be located.
    Administrator& administrator;
    LoginItem& loginItem;
    ProgramRunner& programs;
    std::function<AppLocationPolicy::Context()> location; // Where the application runs from.
    // The names of the browsers here that run in a sandbox of their own. Any thread; null where there are none.
    std::function<std::vector<std::string>()> confinedBrowsers {};
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

    // An update wants the application to end and to start anew. After `later`, `relaunch` is called once when the
    // install that is under way has ended; after `now` it is not called.
    [[nodiscard]] RelaunchDecision updaterShouldRelaunch(std::function<void()> relaunch);

private:
    void createDaemonClient();
    void createInstallation();
    void installChanged();
    void createComponentMonitor();
    void createWindow();
    void armLaunchHold();
    void createMenuBarController();
    void decideWindowAtLaunch();
    void registerNativeMessaging();
    [[nodiscard]] std::vector<StatusConsumer*> statusConsumers();
    [[nodiscard]] TrustedOrigins trustedOrigins() const;
    [[nodiscard]] bool isTrusted(const std::string& url) const;

    AppPorts m_ports;
    BuildConfiguration m_configuration;
    std::unique_ptr<AppLocationGate> m_locationGate;
    std::unique_ptr<DaemonClient> m_daemonClient;
    std::unique_ptr<SharedBlockStateWriter> m_sharedStateWriter;
    std::unique_ptr<AppAlertPresenter> m_alerts;
    std::unique_ptr<Notices> m_notices;
    std::unique_ptr<ServiceInstallation> m_installation;
    std::unique_ptr<ComponentMonitor> m_monitor;
    std::unique_ptr<DeviceSetupActions> m_deviceSetup;
    std::unique_ptr<RemovalShellController> m_removal;
    std::unique_ptr<WebViewWindow> m_webViewWindow;
    std::unique_ptr<FirstLoadHold> m_firstLoadHold;
    std::unique_ptr<MenuBarController> m_menuBarController;
    std::unique_ptr<LaunchRegistrations> m_registrations;
    DeviceSetupNavigation::Throttle m_linkThrottle;
    bool m_launchLinkPending { false }; // A setup link came before there was a window.
};

}
