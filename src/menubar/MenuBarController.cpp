#include "menubar/MenuBarController.h"

#include "daemon/BlockingStatus.h"
#include "daemon/StatusConsumer.h"
#include "install/ServiceInstaller.h"
#include "notify/NotificationHelper.h"
#include "platform/Clock.h"
#include "platform/StatusItem.h"
#include "platform/SystemLog.h"
#include "platform/Updater.h"
#include "setup/ComponentMonitor.h"
#include "setup/DeviceSetupActions.h"
#include "web/WebShell.h"

#include <nlohmann/json.hpp>

namespace brevanta {

static bool wantsToken(const BlockingStatus& status)
{
    return status.authTokenInvalid.value_or(false) || DaemonCredentialRecovery::lacksCredential(status);
}

MenuBarController::MenuBarController(Dependencies dependencies)
    : m_dependencies(std::move(dependencies))
    , m_startedAt(m_dependencies.clock.continuousSeconds())
    , m_settingsGuide(m_dependencies.alerts, m_dependencies.workspace, m_dependencies.log, m_dependencies.systemVersion)
    , m_filterRequests({ .manager = m_dependencies.monitor.filterManager(),
          .guide = m_settingsGuide,
          .alerts = m_dependencies.alerts,
          .log = m_dependencies.log,
          .changed = [this] { componentsChanged(); } })
    , m_upgradePrompt({ .alerts = m_dependencies.alerts,
          .log = m_dependencies.log,
          .serviceState = [this] { return m_dependencies.monitor.serviceState(); },
          .isOnboarding = [this] { return m_dependencies.deviceSetup.isOnboardingActive(); },
          .beginInstall = [this] { m_dependencies.installer.begin(); } })
    , m_filterPass({ .monitor = m_dependencies.monitor,
          .notifications = m_dependencies.notifications,
          .log = m_dependencies.log,
          .onRead = [this] { componentsChanged(); },
          .onSettled = m_dependencies.onFilterActivationSettled })
    , m_pollLoop(m_dependencies.mainLoop, m_dependencies.clock, m_dependencies.daemonClient, *this)
{
    m_state.version = m_dependencies.version;
    m_state.updater = m_dependencies.updater ? Availability::available : Availability::absent;
    m_dependencies.statusItem.setChoiceHandler([this](MenuItemId item) { chosen(item); });
    refreshStatusItem();
}

MenuBarController::~MenuBarController() { m_dependencies.statusItem.setChoiceHandler({}); }

void MenuBarController::start()
{
    m_dependencies.monitor.start();
    m_pollLoop.start();
}

void MenuBarController::pollBegan()
{
    for (auto* consumer : m_dependencies.consumers)
        consumer->pollBegan();
}

std::optional<Json> MenuBarController::filterHealthReport() { return m_dependencies.monitor.filterHealthReport(); }

void MenuBarController::ticked()
{
    m_filterPass.run();
    m_dependencies.monitor.refresh();
    componentsChanged();
}

void MenuBarController::pollEnded(double startedAt, const PollResult& result)
{
    if (result)
        statusArrived(*result, startedAt);
    else
        statusFailed(result.error(), startedAt);
}

// The one order in which the parts of the client see a status.
void MenuBarController::statusArrived(const std::shared_ptr<const BlockingStatus>& status, double startedAt)
{
    if (!m_lastFailure.empty())
        m_dependencies.log.log("[MenuBar] the blocking service answers again");
    m_lastFailure.clear();

    for (auto* consumer : m_dependencies.consumers)
        consumer->consume(status);
    m_dependencies.monitor.pollSucceeded(*status, startedAt);
    postCoinNotices(*status);
    if (!wantsToken(*status))
        m_dependencies.webShell.withdrawTokenRequest();
    runTokenWatchdog(TokenWatchdog::Polled {
        .tokenInvalid = status->authTokenInvalid.value_or(false), .now = m_dependencies.clock.wallSeconds() });
    requestCredentialIfMissing(*status);
    rememberDisplay(*status);
    componentsChanged();
    m_dependencies.webShell.pushBlockingStatus(status);
}

void MenuBarController::statusFailed(const DaemonFailure& failure, double startedAt)
{
    // A service that stays away says the same every two seconds; the log is told once.
    auto description = describe(failure);
    if (description != m_lastFailure)
        m_dependencies.log.log("[MenuBar] status poll failed: " + description);
    m_lastFailure = std::move(description);

    for (auto* consumer : m_dependencies.consumers)
        consumer->serviceFailed(failure);
    m_dependencies.monitor.pollFailed(failure, startedAt);
    forgetDisplay();
    componentsChanged();
}

void MenuBarController::postCoinNotices(const BlockingStatus& status)
{
    for (const auto& notice : m_coinNotices.update(status))
        m_dependencies.notificationHelper.post(notice.title, notice.body, notice.identifier);
}

void MenuBarController::runTokenWatchdog(const TokenWatchdog::Event& event)
{
    for (const auto& command : m_tokenWatchdog.reduce(event)) {
        if (const auto* signal = std::get_if<TokenWatchdog::SignalPage>(&command)) {
            signalPage(signal->line);
        } else if (const auto* write = std::get_if<TokenWatchdog::WriteStandardError>(&command)) {
            m_dependencies.log.writeStandardError(write->line);
        } else if (m_dependencies.webShell.recover() == RecoverAnswer::started) {
            runTokenWatchdog(TokenWatchdog::RecoverStarted { m_dependencies.clock.wallSeconds() });
        } else {
            runTokenWatchdog(TokenWatchdog::RecoverDeferred {});
        }
    }
}

void MenuBarController::requestCredentialIfMissing(const BlockingStatus& status)
{
    if (m_credentialRecovery.shouldSignal(status, m_dependencies.clock.continuousSeconds()))
        signalPage("daemon has no credential: signalled SPA to forward daemon token");
}

// The line tells what the watchdog did. Whether a page could hear it by then is the shell's to mend.
void MenuBarController::signalPage(const std::string& line)
{
    m_dependencies.webShell.requestToken();
    m_dependencies.log.writeStandardError(line);
}

void MenuBarController::rememberDisplay(const BlockingStatus& status)
{
    m_state.contact = ServiceContact::answering;
    m_state.blocking = status.blocking;
    m_state.energy = status.energy;
    m_state.activeTaskTitle = status.display.activeTaskTitle;
    m_state.blockReason = status.display.blockReason;
}

void MenuBarController::forgetDisplay()
{
    const bool inGrace = m_dependencies.clock.continuousSeconds() - m_startedAt < startUpGrace;
    m_state.contact = inGrace ? ServiceContact::starting : ServiceContact::unreachable;
}

// The lines, the page's view of them, the offer to update and the alerts that say where a pane is all follow from the
// two components' state.
void MenuBarController::componentsChanged()
{
    refreshStatusItem();
    m_settingsGuide.componentsChanged(m_dependencies.monitor.filterStatus(), m_dependencies.monitor.serviceState());
    m_upgradePrompt.update();
    m_dependencies.deviceSetup.componentsChanged();
}

void MenuBarController::showQuitHeld(QuitLine line)
{
    m_state.quit = line;
    refreshStatusItem();
}

void MenuBarController::refreshStatusItem()
{
    m_state.service = m_dependencies.monitor.serviceLine();
    m_state.filter = m_dependencies.monitor.filterLine();
    m_state.filterNeedsRestart = m_dependencies.monitor.filterManager().needsRestart();
    m_dependencies.statusItem.show(statusItemContent(m_state));
}

void MenuBarController::chosen(MenuItemId item)
{
    switch (static_cast<MenuCommand>(item)) {
    case MenuCommand::openWindow:
        return m_dependencies.openWindow();
    case MenuCommand::reloadWindow:
        return m_dependencies.webShell.reload();
    case MenuCommand::quit:
        return m_dependencies.quit();
    case MenuCommand::contentFilter:
        return perform(m_dependencies.monitor.filterLine().action);
    case MenuCommand::blockingService:
    case MenuCommand::restartService:
        return perform(m_dependencies.monitor.serviceLine().action);
    case MenuCommand::checkForUpdates:
        if (m_dependencies.updater)
            m_dependencies.updater->checkNow();
        return;
    // Information.
    case MenuCommand::showVersion:
    case MenuCommand::showFilterRestart:
    case MenuCommand::showBlocking:
    case MenuCommand::showActiveTask:
    case MenuCommand::showReason:
        return;
    }
}

// By what the line says at this moment, which may be more recent than what the open menu shows.
void MenuBarController::perform(ComponentAction action)
{
    switch (action) {
    case ComponentAction::none:
        return;
    case ComponentAction::installService:
    case ComponentAction::restartService:
    case ComponentAction::updateService:
        return m_dependencies.installer.begin();
    case ComponentAction::openLoginItemsSettings:
        return m_settingsGuide.openLoginItemsSettings();
    case ComponentAction::activateFilter:
        return m_filterRequests.activate([] { });
    case ComponentAction::openFilterApproval:
        return m_settingsGuide.openFilterApprovalPane();
    }
}

}
