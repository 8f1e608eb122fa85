#include "web/WebViewWindow.h"

#include "platform/Clock.h"
#include "platform/MainWindow.h"
#include "web/DeviceIdentity.h"
#include "web/PageScripts.h"

#include <utility>

namespace brevanta {

namespace {

constexpr int contentWidth = 1200;
constexpr int contentHeight = 800;

}

// The members are built in the order in which they need one another: the web view is started, and the window built
// around it, before anything loads or looks at it.
WebViewWindow::WebViewWindow(Dependencies dependencies)
    : m_dependencies(std::move(dependencies))
    , m_bridge(m_dependencies.origins,
          { m_dependencies.mainLoop, m_dependencies.pageScriptQueue, m_dependencies.webView, m_dependencies.openPanel,
              m_dependencies.alerts, m_dependencies.workspace, m_dependencies.defaults, m_dependencies.notifications,
              m_dependencies.reminders, m_dependencies.log, m_dependencies.daemonClient, m_dependencies.deviceSetup,
              m_dependencies.removal, m_dependencies.updater, [this] { bringToFront(); },
              m_dependencies.applicationsFolder, m_dependencies.version, m_dependencies.bundleIdentifier,
              m_dependencies.extensionStoreUrl })
    , m_linkRouter([this] { return m_dependencies.clock.continuousSeconds(); }, m_dependencies.newUuid)
    , m_linkReplyHandler(m_linkRouter,
          [this](auto protocol, auto host) { return m_dependencies.origins.isBridgeTrusted(protocol, host); })
    , m_mediaCaptureDelegate(
          m_dependencies.origins, m_dependencies.openPanel, m_dependencies.log, [this] { bringToFront(); })
    , m_loadCoordinator({ startedWebView(), m_dependencies.placeholder, m_dependencies.mainLoop, m_dependencies.clock,
          m_dependencies.log, [this] { return appUrl(); }, [this] { m_bridge.browserFeatures().dismissDialog(); } })
    , m_inspectorSwitch({ m_dependencies.webView, m_dependencies.defaults, m_dependencies.mainLoop,
          m_dependencies.clock, m_dependencies.log })
{
    m_bridge.setLoadObserver(&m_loadCoordinator);
    m_bridge.setPendingNavigation([this] { return m_linkRouter.isPending(); });
}

WebViewWindow::~WebViewWindow()
{
    m_dependencies.webView.detach();
    m_bridge.setLoadObserver(nullptr);
}

WebView& WebViewWindow::startedWebView()
{
    m_dependencies.webView.start({
        .messageHandlers = { { "kestrelune", m_bridge } },
        .replyHandlers = { { "kestreluneNav", m_linkReplyHandler } },
        .applicationNameForUserAgent = "KestreluneMac/" + m_dependencies.version,
        .documentStartScript
        = PageScripts::documentStart(persistentDeviceIdentifier(m_dependencies.defaults, m_dependencies.newUuid),
            m_dependencies.deviceName, m_dependencies.version),
        .navigationDelegate = m_bridge,
        .uiDelegate = m_mediaCaptureDelegate,
        .browserDelegate = m_bridge.browserFeatures(),
    });
    m_dependencies.window.build({ .title = "Brevanta", .width = contentWidth, .height = contentHeight });
    return m_dependencies.webView;
}

std::optional<std::string> WebViewWindow::appUrl() const
{
    return m_dependencies.appUrl.empty() ? std::nullopt : std::optional(m_dependencies.appUrl);
}

void WebViewWindow::bringToFront()
{
    m_dependencies.window.showInFront();
    m_dependencies.activateApplication();
}

void WebViewWindow::open()
{
    bringToFront();
    m_loadCoordinator.windowOpened();
}

void WebViewWindow::deviceSetupLinkArrived()
{
    m_linkRouter.linkArrived();
    m_bridge.navigationIsPending();
}

void WebViewWindow::applicationDidBecomeActive()
{
    m_inspectorSwitch.evaluate();
    m_bridge.applicationDidBecomeActive();
}

RecoverAnswer WebViewWindow::recover()
{
    const auto recovery = m_loadCoordinator.recover(ShellRecoverSource::authWatchdog);
    return recovery == ShellLoadCoordinator::Recovery::started ? RecoverAnswer::started : RecoverAnswer::deferred;
}

void WebViewWindow::pushBlockingStatus(const std::shared_ptr<const BlockingStatus>& status)
{
    m_bridge.pushBlockingStatus(status);
}

}
