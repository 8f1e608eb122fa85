#include "app/AppDelegate.h"

#include "app/AppLocationGate.h"
#include "app/CrashReportingAtLaunch.h"
#include "app/FirstLoadHold.h"
#include "app/LaunchRegistrations.h"
#include "app/Notices.h"
#include "app/RemovalCompletion.h"
#include "app/ServiceInstallation.h"
#include "app/SetupLinks.h"
#include "app/WindowAtLaunch.h"
#include "crash/CrashReporting.h"
#include "daemon/DaemonClient.h"
#include "daemon/SharedBlockStateWriter.h"
#include "daemon/SocketTransport.h"
#include "install/RemovalShellController.h"
#include "menubar/MenuBarController.h"
#include "notify/NotificationSounds.h"
#include "platform/Clock.h"
#include "platform/LocalSocket.h"
#include "platform/MainLoop.h"
#include "platform/ServiceManager.h"
#include "platform/SystemLog.h"
#include "platform/Updater.h"
#include "setup/ComponentMonitor.h"
#include "setup/DeviceSetupActions.h"
#include "track/AppAlertPresenter.h"
#include "update/UpdaterPolicy.h"
#include "web/WebViewWindow.h"

#include <cassert>
#include <utility>

namespace brevanta {

AppDelegate::AppDelegate(AppPorts ports, BuildConfiguration configuration)
    : m_ports(std::move(ports))
    , m_configuration(std::move(configuration))
    , m_links(std::make_unique<SetupLinks>(m_ports.clock, m_ports.log))
{
}

AppDelegate::~AppDelegate() = default;

void AppDelegate::applicationWillFinishLaunching() { assert(m_ports.mainLoop.isMainThread()); }

// The launch order.
void AppDelegate::applicationDidFinishLaunching()
{
    assert(m_ports.mainLoop.isMainThread());
    m_crashReporting = startCrashReporting(m_ports, m_configuration);
    m_locationGate = std::make_unique<AppLocationGate>(AppLocationGate::Dependencies { .mainLoop = m_ports.mainLoop,
        .log = m_ports.log,
        .lifecycle = m_ports.lifecycle,
        .alerts = m_ports.alerts,
        .workspace = m_ports.workspace });
    if (m_locationGate->check(m_ports.location()) == LaunchPermission::refused)
        return;
    installNotificationSounds(m_ports.files, m_ports.log, m_ports.resources, m_ports.home);
    startUpdater();
    m_ports.lifecycle.setActivationPolicy(ActivationPolicy::regular);
    createDaemonClient();
    m_notices = std::make_unique<Notices>(Notices::Dependencies {
        .mainLoop = m_ports.mainLoop,
        .clock = m_ports.clock,
        .log = m_ports.log,
        .defaults = m_ports.defaults,
        .files = m_ports.files,
        .center = m_ports.notifications,
        .workspace = m_ports.workspace,
        .resources = m_ports.resources,
        .systemLanguages = m_ports.systemLanguages,
    });
    createComponentMonitor();
    createInstallation();
    createWindow();
    armLaunchHold();
    createMenuBarController();
    decideWindowAtLaunch();
    m_webViewWindow->loadCoordinator().prepare();
    m_registrations = std::make_unique<LaunchRegistrations>(m_ports, m_configuration);
    m_registrations->begin();
    m_deviceSetup->launched(lookForServiceProgram(m_ports.services));
    m_notices->awaitClicks(
        [this](const std::string& url) { return isTrusted(url); }, [this] { m_webViewWindow->open(); });
}

void AppDelegate::applicationDidOpenUrl(const Url& url) { m_links->arrived(url); }

void AppDelegate::applicationDidBecomeActive()
{
    if (m_webViewWindow)
        m_webViewWindow->applicationDidBecomeActive();
}

void AppDelegate::systemDidWake()
{
    if (m_webViewWindow)
        m_webViewWindow->systemDidWake();
}

TerminationDecision AppDelegate::applicationShouldTerminate()
{
    return m_installation ? m_installation->shouldTerminate() : TerminationDecision::now;
}

RelaunchDecision AppDelegate::updaterShouldRelaunch(std::function<void()> relaunch)
{
    return m_installation ? m_installation->shouldRelaunch(std::move(relaunch)) : RelaunchDecision::now;
}

void AppDelegate::applicationShouldReopen()
{
    if (m_webViewWindow)
        m_webViewWindow->bringToFront();
}

void AppDelegate::applicationWillTerminate()
{
    // A service that hangs must not hold the quit: the exchange under way is cut off, and nobody waits for its answer.
    // Nothing is destroyed here, since the quit may have been chosen in a menu whose handler is still on the stack.
    m_ports.localSockets.interrupt();
}

void AppDelegate::startUpdater()
{
    if (!UpdaterPolicy::configuration(m_ports.updaterFeed, m_ports.updaterKey, m_ports.parseUrl))
        return;
    m_updater = &m_ports.updater;
    m_updater->start([this](std::function<void()> relaunch) { return updaterShouldRelaunch(std::move(relaunch)); });
}

void AppDelegate::createDaemonClient()
{
    m_daemonClient = std::make_unique<DaemonClient>(
        std::make_unique<SocketTransport>(m_configuration.socketPath, m_ports.localSockets), m_ports.daemonQueue,
        m_ports.mainLoop);
}

void AppDelegate::createComponentMonitor()
{
    m_sharedStateWriter = std::make_unique<SharedBlockStateWriter>(SharedBlockStateWriter::Dependencies {
        .queue = m_ports.sharedStateQueue,
        .files = m_ports.files,
        .container = m_ports.sharedContainer,
        .fileName = std::string(sharedBlockStateFileName(m_configuration.flavour == Flavour::dev ? "dev" : "prod")),
    });
    m_alerts = std::make_unique<AppAlertPresenter>(m_ports.alerts, m_ports.mainLoop);
    m_monitor = std::make_unique<ComponentMonitor>(ComponentMonitor::Dependencies {
        .mainLoop = m_ports.mainLoop,
        .clock = m_ports.clock,
        .log = m_ports.log,
        .defaults = m_ports.defaults,
        .services = m_ports.services,
        .filterSystem = m_ports.filterSystem,
        .bundledServiceVersion = m_configuration.version,
        .postSwitchedOff = [this](ProtectiveComponent component) { m_notices->postSwitchedOff(component); },
    });
}

void AppDelegate::createInstallation()
{
    m_installation = std::make_unique<ServiceInstallation>(ServiceInstallation::Dependencies {
        .administrator = m_ports.administrator,
        .log = m_ports.log,
        .files = m_ports.files,
        .alerts = *m_alerts,
        .lifecycle = m_ports.lifecycle,
        .bundle = m_ports.bundle,
        .root = m_configuration.root,
        .changed = [this] { installChanged(); },
        .failed =
            [this](const std::string& message) {
                m_crashReporting->capture({ .kind = isRemoving() ? "removal" : "install", .message = message });
            },
        .showQuitHeld
        = [this] { m_menuBarController->showQuitHeld(isRemoving() ? QuitLine::heldByRemoval : QuitLine::held); },
    });
}

void AppDelegate::installChanged()
{
    auto& flight = m_installation->flight();
    if (flight.isInFlight())
        m_monitor->installBegan(isRemoving() ? InstallProgress::removing : InstallProgress::inFlight);
    else
        flight.whenEnded([this](InstallOutcome outcome) {
            m_monitor->installEnded(outcome);
            if (outcome == InstallOutcome::installed)
                m_removal->serviceInstalled();
        });
    m_menuBarController->componentsChanged();
}

bool AppDelegate::isRemoving() const { return m_installation->flight().task() == FlightTask::removal; }

void AppDelegate::createWindow()
{
    m_deviceSetup = std::make_unique<DeviceSetupActions>(DeviceSetupActions::Dependencies {
        .monitor = *m_monitor,
        .services = m_ports.services,
        .log = m_ports.log,
        .installService = [this](std::function<void()> onEnd) { m_installation->install(std::move(onEnd)); },
        .isInstalling = [this] { return m_installation->flight().isInFlight(); },
        .activateFilter
        = [this](std::function<void()> onEnd) { m_menuBarController->filterRequests().activate(std::move(onEnd)); },
        .removeFilter = [this] { m_menuBarController->filterRequests().remove(); },
        .openFilterSettings = [this] { m_menuBarController->settingsGuide().openFilterApprovalPane(); },
        .openLoginItems = [this] { m_menuBarController->settingsGuide().openLoginItemsSettings(); },
        .onboardingChanged = [this] { m_menuBarController->onboardingChanged(); },
    });
    m_removal = std::make_unique<RemovalShellController>(
        *m_daemonClient, m_installation->flight(), m_ports.services, m_ports.log);
    m_removal->addObserver([this] {
        if (m_removal->shell().isRemoved())
            m_sharedStateWriter->clear();
    });
    m_removalCompletion = std::make_unique<RemovalCompletion>(RemovalCompletion::Dependencies { .removal = *m_removal,
        .installation = *m_installation,
        .services = m_ports.services,
        .clock = m_ports.clock,
        .alerts = *m_alerts,
        .log = m_ports.log });
    m_webViewWindow = std::make_unique<WebViewWindow>(WebViewWindow::Dependencies {
        .mainLoop = m_ports.mainLoop,
        .pageScriptQueue = m_ports.pageScriptQueue,
        .clock = m_ports.clock,
        .log = m_ports.log,
        .defaults = m_ports.defaults,
        .window = m_ports.mainWindow,
        .webView = m_ports.webView,
        .placeholder = m_ports.placeholder,
        .openPanel = m_ports.openPanel,
        .alerts = *m_alerts,
        .workspace = m_ports.workspace,
        .notifications = m_notices->client(),
        .reminders = m_notices->reminders(),
        .daemonClient = *m_daemonClient,
        .deviceSetup = *m_deviceSetup,
        .removal = *m_removal,
        .updater = m_updater,
        .origins = trustedOrigins(),
        .activateApplication = [this] { m_ports.lifecycle.activate(); },
        .newUuid = m_ports.newUuid,
        .deviceName = m_ports.deviceName,
        .appUrl = m_configuration.appUrl,
        .applicationsFolder = (m_configuration.root / "Applications").string(),
        .version = m_configuration.version,
        .bundleIdentifier = m_configuration.bundleIdentifier,
        .extensionStoreUrl = m_configuration.extensionStoreUrl,
    });
}

void AppDelegate::armLaunchHold()
{
    m_firstLoadHold = std::make_unique<FirstLoadHold>(
        m_ports.mainLoop, [this](const std::string& reason) { m_webViewWindow->loadCoordinator().release(reason); });
    m_firstLoadHold->arm();
}

void AppDelegate::createMenuBarController()
{
    m_menuBarController = std::make_unique<MenuBarController>(MenuBarController::Dependencies {
        .mainLoop = m_ports.mainLoop,
        .clock = m_ports.clock,
        .log = m_ports.log,
        .statusItem = m_ports.statusItem,
        .notifications = m_ports.notifications,
        .notificationHelper = m_notices->helper(),
        .daemonClient = *m_daemonClient,
        .workspace = m_ports.workspace,
        .alerts = *m_alerts,
        .monitor = *m_monitor,
        .deviceSetup = *m_deviceSetup,
        .installer = m_installation->flight(),
        .webShell = *m_webViewWindow,
        .updater = m_updater,
        .consumers = statusConsumers(),
        .version = m_configuration.version,
        .systemVersion = m_ports.systemVersion,
        .onFilterActivationSettled
        = [this](const LaunchActivationOutcome& outcome) { m_firstLoadHold->activationSettled(outcome); },
        .openWindow = [this] { m_webViewWindow->open(); },
        .quit = [this] { m_ports.lifecycle.terminate(); },
    });
    m_menuBarController->start();
}

std::vector<StatusConsumer*> AppDelegate::statusConsumers()
{
    std::vector<StatusConsumer*> consumers { m_crashReporting.get(), m_sharedStateWriter.get(), m_removal.get(),
        m_removalCompletion.get() };
    for (auto* const consumer : m_notices->consumers())
        consumers.push_back(consumer);
    return consumers;
}

TrustedOrigins AppDelegate::trustedOrigins() const
{
    return TrustedOrigins(m_configuration.trustedHosts, m_configuration.signInHosts);
}

bool AppDelegate::isTrusted(const std::string& text) const
{
    const auto url = m_ports.parseUrl(text);
    return url && !url->user && !url->password && trustedOrigins().isBridgeTrusted(*url);
}

void AppDelegate::decideWindowAtLaunch()
{
    if (windowAtLaunch(m_ports.loginRecords, m_ports.clock, m_ports.statusItem, m_ports.log) == WindowAtLaunch::shown)
        m_webViewWindow->bringToFront();
    m_links->windowCreated(*m_webViewWindow);
}

}
