#pragma once

#include "base/LifeToken.h"
#include "platform/WebView.h"
#include "web/AccountMessages.h"
#include "web/ApplicationPicker.h"
#include "web/BlockingStatusDelivery.h"
#include "web/BridgeTable.h"
#include "web/BrowserFeatures.h"
#include "web/DocumentMemory.h"
#include "web/PageDelivery.h"
#include "web/StateMessages.h"
#include "web/SystemMessages.h"
#include "web/TokenRequest.h"
#include "web/TrustedOrigins.h"

#include <functional>
#include <string>

namespace brevanta {

class Executor;
class MainLoop;
class ShellLoadCoordinator;

// Between the page and the client: takes the page's messages, if they come from the main frame of a trusted origin, and
// keeps the web view on the origins that it may show. Main thread only.
class WebViewBridge final : public ScriptMessageHandler, public WebNavigationDelegate {
public:
    struct Dependencies {
        MainLoop& mainLoop;
        Executor& pageScriptQueue; // Serial; where large scripts are made.
        WebView& webView;
        OpenPanel& openPanel;
        AppAlertPresenter& alerts;
        Workspace& workspace;
        UserDefaults& defaults;
        SystemNotificationCenterClient& notifications;
        HabitReminderPresenter& reminders;
        SystemLog& log;
        DaemonClient& daemonClient;
        DeviceSetup& deviceSetup;
        RemovalShellController& removal;
        Updater* updater; // Null when updates are not configured.
        std::function<void()> bringWindowForward;
        std::string applicationsFolder;
        std::string version; // Of the application, as the next two.
        std::string bundleIdentifier;
        std::string extensionStoreUrl;
    };

    // The origins outlive the bridge.
    WebViewBridge(const TrustedOrigins& origins, Dependencies dependencies);
    ~WebViewBridge() override;
    WebViewBridge(const WebViewBridge&) = delete;
    WebViewBridge& operator=(const WebViewBridge&) = delete;

    // Told of every navigation; null for none.
    void setLoadObserver(ShellLoadCoordinator* observer) { m_loadObserver = observer; }

    [[nodiscard]] TokenRequest& tokenRequest() { return m_tokenRequest; }

    // After every poll. While a dialog of the page is open it could take nothing, so that scripts would pile up.
    void pushBlockingStatus(const std::shared_ptr<const BlockingStatus>& status);

    [[nodiscard]] BrowserFeatures& browserFeatures() { return m_browserFeatures; }

    void applicationDidBecomeActive() { m_systemMessages.applicationDidBecomeActive(); }

    // A setup link waits for the page; it is told once now, and again after each page that has finished loading.
    void navigationIsPending();

    void messageArrived(const ScriptMessage& message) override;

    [[nodiscard]] NavigationDecision decideAction(const NavigationAction& action) override;
    [[nodiscard]] NavigationDecision decideResponse(const NavigationResponse& response) override;
    void didStartProvisional(const WebNavigation& navigation) override;
    void didCommit(const WebNavigation& navigation) override;
    void didFinish(const WebNavigation& navigation) override;
    void didFail(const WebNavigation& navigation, const WebError& error) override;
    void contentProcessDidTerminate() override;
    void downloadRefused() override { m_browserFeatures.missed(MissingFeature::download); }

    // Whether a setup link still waits; asked after each page that has finished loading.
    void setPendingNavigation(std::function<bool()> isPending) { m_isNavigationPending = std::move(isPending); }

private:
    void buildTable();
    void openOutside(const Url& url);
    void requestOnboardingState();

    const TrustedOrigins& m_origins;
    Dependencies m_dependencies;
    DocumentMemory m_document;
    PageDelivery m_delivery;
    BlockingStatusDelivery m_blockingStatus;
    TokenRequest m_tokenRequest;
    AccountMessages m_accountMessages;
    StateMessages m_stateMessages;
    SystemMessages m_systemMessages;
    ApplicationPicker m_applicationPicker;
    BrowserFeatures m_browserFeatures;
    BridgeTable m_table;
    ShellLoadCoordinator* m_loadObserver { nullptr };
    std::function<bool()> m_isNavigationPending;
    LifeToken m_life;
};

}
