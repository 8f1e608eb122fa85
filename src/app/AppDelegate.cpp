#include "app/AppDelegate.h"

#include "app/WindowAtLaunch.h"
#include "daemon/DaemonClient.h"
#include "daemon/SocketTransport.h"
#include "filter/UnobservedHealth.h"
#include "menubar/MenuBarController.h"
#include "platform/Clock.h"
#include "platform/LocalSocket.h"
#include "platform/LoginRecords.h"
#include "platform/MainLoop.h"
#include "platform/MainWindow.h"
#include "platform/SystemLog.h"

#include <cassert>

namespace brevanta {

AppDelegate::AppDelegate(AppPorts ports, BuildConfiguration configuration)
    : m_ports(ports)
    , m_configuration(std::move(configuration))
{
}

AppDelegate::~AppDelegate() = default;

void AppDelegate::applicationWillFinishLaunching() { assert(m_ports.mainLoop.isMainThread()); }

// The launch order.
void AppDelegate::applicationDidFinishLaunching()
{
    assert(m_ports.mainLoop.isMainThread());
    m_ports.lifecycle.setActivationPolicy(ActivationPolicy::regular);
    createDaemonClient();
    createMenuBarController();
    decideWindowAtLaunch();
}

TerminationDecision AppDelegate::applicationShouldTerminate() { return TerminationDecision::now; }

void AppDelegate::applicationShouldReopen() { bringWindowToFront(); }

void AppDelegate::applicationWillTerminate()
{
    // A service that hangs must not hold the quit: the exchange under way is cut off, and nobody waits for its answer.
    // Nothing is destroyed here, since the quit may have been chosen in a menu whose handler is still on the stack.
    m_ports.localSockets.interrupt();
}

void AppDelegate::createDaemonClient()
{
    m_daemonClient = std::make_unique<DaemonClient>(
        std::make_unique<SocketTransport>(m_configuration.socketPath, m_ports.localSockets), m_ports.daemonQueue,
        m_ports.mainLoop);
}

void AppDelegate::createMenuBarController()
{
    m_health = std::make_unique<UnobservedHealth>();
    m_menuBarController = std::make_unique<MenuBarController>(MenuBarController::Dependencies {
        .mainLoop = m_ports.mainLoop,
        .clock = m_ports.clock,
        .log = m_ports.log,
        .statusItem = m_ports.statusItem,
        .notifications = m_ports.notifications,
        .daemonClient = *m_daemonClient,
        .health = *m_health,
        .webShell = nullptr,
        .consumers = {},
        .version = m_configuration.version,
        .openWindow = [this] { bringWindowToFront(); },
        .quit = [this] { m_ports.lifecycle.terminate(); },
    });
    m_menuBarController->start();
}

void AppDelegate::decideWindowAtLaunch()
{
    const auto login = m_ports.loginRecords.consoleLoginTime();
    const auto sinceLogin = login ? std::optional(m_ports.clock.wallSeconds() - *login) : std::nullopt;
    m_ports.log.log(describeWindowAtLaunch(sinceLogin));
    if (windowAtLaunch(sinceLogin) == WindowAtLaunch::shown)
        return bringWindowToFront();
    if (m_ports.statusItem.visibility() == StatusItemVisibility::noHost) {
        m_ports.log.log("[Launch] no bar shows the status item: showing the window");
        bringWindowToFront();
    }
}

void AppDelegate::bringWindowToFront()
{
    m_ports.mainWindow.showInFront();
    m_ports.lifecycle.activate();
}

}
