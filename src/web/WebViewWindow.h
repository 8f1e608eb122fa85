#pragma once

#include "setup/DeviceSetupLinkReplyHandler.h"
#include "setup/DeviceSetupLinkRouter.h"
#include "web/MediaCapturePermissionDelegate.h"
#include "web/ShellLoadCoordinator.h"
#include "web/TrustedOrigins.h"
#include "web/WebInspectorSwitch.h"
#include "web/WebShell.h"
#include "web/WebViewBridge.h"

#include <functional>
#include <string>

namespace brevanta {

class Executor;
class MainWindow;

// The one window, with the web application in it: owns everything between the web view and the rest of the client.
// Main thread only.
class WebViewWindow final : public WebShell {
public:
    struct Dependencies {
        MainLoop& mainLoop;
        Executor& pageScriptQueue; // Serial; where large scripts are made.
        Clock& clock;
        SystemLog& log;
        UserDefaults& defaults;
        MainWindow& window;
        WebView& webView;
        Placeholder& placeholder;
        OpenPanel& openPanel;
        AppAlertPresenter& alerts;
        Workspace& workspace;
        SystemNotificationCenterClient& notifications;
        HabitReminderPresenter& reminders;
        DaemonClient& daemonClient;
        DeviceSetup& deviceSetup;
        RemovalShellController& removal;
        Updater* updater; // Null when updates are not configured.
        TrustedOrigins origins;
        std::function<void()> activateApplication;
        std::function<std::string()> newUuid;
        std::string deviceName;
        std::string appUrl;
        std::string applicationsFolder; // Absolute.
        std::string version; // Of the application, as the next two.
        std::string bundleIdentifier;
        std::string extensionStoreUrl;
    };

    // Starts the web view and builds the window, which stays hidden.
    explicit WebViewWindow(Dependencies dependencies);
    ~WebViewWindow() override;
    WebViewWindow(const WebViewWindow&) = delete;
    WebViewWindow& operator=(const WebViewWindow&) = delete;

    // In front of everything, with the keyboard.
    void bringToFront();

    // The user asked for the window: as `bringToFront`, and a page that is missing is tried again.
    void open();

    // A setup link was accepted.
    void deviceSetupLinkArrived();

    [[nodiscard]] ShellLoadCoordinator& loadCoordinator() { return m_loadCoordinator; }

    void applicationDidBecomeActive();
    void systemDidWake() { m_inspectorSwitch.evaluate(); }

    void requestToken() override { m_bridge.tokenRequest().make(); }
    void withdrawTokenRequest() override { m_bridge.tokenRequest().withdraw(); }
    [[nodiscard]] RecoverAnswer recover() override;
    void reload() override { m_loadCoordinator.userRetry(); }
    void pushBlockingStatus(const std::shared_ptr<const BlockingStatus>& status) override;

private:
    [[nodiscard]] WebView& startedWebView();
    [[nodiscard]] std::optional<std::string> appUrl() const;

    Dependencies m_dependencies;
    WebViewBridge m_bridge;
    DeviceSetupLinkRouter m_linkRouter;
    DeviceSetupLinkReplyHandler m_linkReplyHandler;
    MediaCapturePermissionDelegate m_mediaCaptureDelegate;
    ShellLoadCoordinator m_loadCoordinator;
    WebInspectorSwitch m_inspectorSwitch;
};

}
