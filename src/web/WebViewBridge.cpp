#include "web/WebViewBridge.h"

#include "base/Text.h"
#include "install/RemovalShellController.h"
#include "platform/MainLoop.h"
#include "platform/SystemLog.h"
#include "platform/Workspace.h"
#include "setup/DeviceSetup.h"
#include "web/PageScripts.h"
#include "web/ShellLoadCoordinator.h"

#include <utility>

namespace brevanta {

namespace {

// What the desktop opens for a page. Any other scheme would start a program, or open a settings pane, for whoever
// wrote the link.
bool isForOutside(const Url& url)
{
    const auto scheme = lowerCased(url.scheme);
    return scheme == "https" || scheme == "http" || scheme == "mailto";
}

}

WebViewBridge::WebViewBridge(const TrustedOrigins& origins, Dependencies dependencies)
    : m_origins(origins)
    , m_dependencies(std::move(dependencies))
    , m_delivery(m_dependencies.webView, m_origins, m_dependencies.log)
    , m_blockingStatus(m_dependencies.pageScriptQueue, m_dependencies.mainLoop, m_delivery)
    , m_tokenRequest(m_delivery, m_document)
    , m_accountMessages(
          m_dependencies.daemonClient, m_dependencies.removal, m_dependencies.reminders, m_dependencies.log)
    , m_stateMessages(
          { m_dependencies.daemonClient, m_dependencies.deviceSetup, m_dependencies.removal, m_dependencies.updater,
              m_delivery, m_blockingStatus, m_document, m_dependencies.log, m_dependencies.version })
    , m_systemMessages({ m_dependencies.notifications, m_dependencies.workspace, m_dependencies.defaults, m_delivery,
          m_document, m_dependencies.log, m_dependencies.bundleIdentifier, m_dependencies.extensionStoreUrl })
    , m_applicationPicker({ m_dependencies.openPanel, m_dependencies.workspace, m_delivery, m_dependencies.log,
          m_dependencies.bringWindowForward, m_dependencies.applicationsFolder })
    , m_browserFeatures({ m_dependencies.mainLoop, m_dependencies.webView, m_dependencies.alerts, m_origins, m_document,
          m_dependencies.log })
{
    buildTable();
    m_dependencies.removal.addObserver(m_life.guard([this] { m_stateMessages.removalChanged(); }));
    m_dependencies.deviceSetup.setChangeHandler([this] { m_stateMessages.deviceSetupChanged(); });
}

WebViewBridge::~WebViewBridge() { m_dependencies.deviceSetup.setChangeHandler({}); }

// The order in which a message is compared.
void WebViewBridge::buildTable()
{
    m_accountMessages.addTokenAndLogout(m_table);
    m_stateMessages.addSetupAndUpdater(m_table);
    m_accountMessages.addForceSync(m_table);
    m_applicationPicker.addTo(m_table);
    m_stateMessages.addBlocking(m_table);
    m_systemMessages.addNotificationsAndStore(m_table);
    m_stateMessages.addSetupState(m_table);
    m_stateMessages.addRemoval(m_table);
    m_systemMessages.addLocalePreference(m_table);
}

void WebViewBridge::messageArrived(const ScriptMessage& message)
{
    const auto read = readBridgeMessage(message.body);
    if (!read)
        return;
    const auto& [isMainFrame, protocol, host] = message.frame;
    if (!m_origins.isTrustedMainFrame(message.frame))
        return m_dependencies.log.log("[WebViewBridge] Ignoring '" + clipped(read->type, maxLoggedBytes)
            + "' message — untrusted source frame (mainFrame=" + (isMainFrame ? "true" : "false")
            + ", origin=" + protocol + "://" + host + ")");
    m_table.dispatch(*read);
}

NavigationDecision WebViewBridge::decideAction(const NavigationAction& action)
{
    if (!action.url)
        return NavigationDecision::cancel;
    if (m_origins.isNavigationAllowed(*action.url))
        return NavigationDecision::allow;
    if (action.type == NavigationType::linkActivated && isForOutside(*action.url))
        openOutside(*action.url);
    else
        m_dependencies.log.log(
            "[WebViewBridge] Cancelled navigation to non-allowed origin: " + clipped(action.url->text, maxLoggedBytes));
    return NavigationDecision::cancel;
}

// A server in trouble answers with an error page, which the engine would show as if it were the application. While the
// application itself is being loaded that counts as a failure, so that it is tried again; a page that the user has
// navigated to is shown as it is.
NavigationDecision WebViewBridge::decideResponse(const NavigationResponse& response)
{
    constexpr int firstServerError = 500;
    if (response.httpStatus < firstServerError || !m_loadObserver || !m_loadObserver->awaitsOwnNavigation())
        return NavigationDecision::allow;
    m_dependencies.log.log("[ShellLoad] the server answered with status " + std::to_string(response.httpStatus));
    return NavigationDecision::cancel;
}

void WebViewBridge::didStartProvisional(const WebNavigation& navigation)
{
    if (m_loadObserver)
        m_loadObserver->didStartProvisional(navigation);
}

void WebViewBridge::didCommit(const WebNavigation& navigation)
{
    m_browserFeatures.dismissDialog();
    m_document = {};
    if (m_loadObserver)
        m_loadObserver->didCommit(navigation);
    m_dependencies.deviceSetup.pageChanged();
}

void WebViewBridge::didFinish(const WebNavigation& navigation)
{
    if (m_loadObserver)
        m_loadObserver->didFinish(navigation);
    m_document.isComplete = true;
    m_tokenRequest.documentCompleted();
    requestOnboardingState();
    if (m_isNavigationPending && m_isNavigationPending())
        navigationIsPending();
}

void WebViewBridge::didFail(const WebNavigation& navigation, const WebError& error)
{
    if (m_loadObserver)
        m_loadObserver->didFail(navigation, error);
    m_document.isComplete = true;
    m_tokenRequest.documentCompleted();
    requestOnboardingState();
}

void WebViewBridge::contentProcessDidTerminate()
{
    m_browserFeatures.dismissDialog();
    if (m_loadObserver)
        m_loadObserver->contentProcessDidTerminate();
    m_dependencies.deviceSetup.pageChanged();
}

void WebViewBridge::pushBlockingStatus(const std::shared_ptr<const BlockingStatus>& status)
{
    if (!m_browserFeatures.isDialogOpen())
        m_blockingStatus.push(status);
}

void WebViewBridge::navigationIsPending()
{
    m_dependencies.mainLoop.post(
        m_life.guard([this] { m_delivery.deliver(std::string(PageScripts::navigationPending)); }));
}

void WebViewBridge::requestOnboardingState()
{
    m_dependencies.mainLoop.post(
        m_life.guard([this] { m_delivery.deliver(std::string(PageScripts::requestOnboardingState)); }));
}

void WebViewBridge::openOutside(const Url& url)
{
    m_dependencies.workspace.openUrl(url.text, m_life.guard([this](OpenOutcome outcome) {
        if (outcome == OpenOutcome::refused)
            m_dependencies.log.log("[WebViewBridge] the default browser refused a link");
    }));
}

}
