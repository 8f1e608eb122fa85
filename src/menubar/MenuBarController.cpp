#include "menubar/MenuBarController.h"

#include "daemon/BlockingStatus.h"
#include "daemon/StatusConsumer.h"
#include "filter/ComponentHealth.h"
#include "platform/Clock.h"
#include "platform/StatusItem.h"
#include "platform/SystemLog.h"
#include "web/PageScripts.h"
#include "web/WebShell.h"

#include <nlohmann/json.hpp>

namespace brevanta {

MenuBarController::MenuBarController(Dependencies dependencies)
    : m_dependencies(std::move(dependencies))
    , m_startedAt(m_dependencies.clock.continuousSeconds())
    , m_notificationHelper(m_dependencies.notifications, m_dependencies.log)
    , m_pollLoop(m_dependencies.mainLoop, m_dependencies.clock, m_dependencies.daemonClient, *this)
{
    m_state.version = m_dependencies.version;
    m_state.webShell = m_dependencies.webShell ? Availability::available : Availability::absent;
    m_dependencies.statusItem.setChoiceHandler([this](MenuItemId item) { chosen(item); });
    refreshStatusItem();
}

MenuBarController::~MenuBarController() { m_dependencies.statusItem.setChoiceHandler({}); }

void MenuBarController::start() { m_pollLoop.start(); }

std::optional<Json> MenuBarController::filterHealthReport() { return m_dependencies.health.filterHealthReport(); }

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
    m_dependencies.health.pollSucceeded(*status, startedAt);
    postCoinNotices(*status);
    runTokenWatchdog(TokenWatchdog::Polled {
        .tokenInvalid = status->authTokenInvalid.value_or(false), .now = m_dependencies.clock.wallSeconds() });
    requestCredentialIfMissing(*status);
    rememberDisplay(*status);
    refreshStatusItem();
    if (m_dependencies.webShell)
        m_dependencies.webShell->pushBlockingStatus(status);
}

void MenuBarController::statusFailed(const DaemonFailure& failure, double startedAt)
{
    // A service that stays away says the same every two seconds; the log is told once.
    auto description = describe(failure);
    if (description != m_lastFailure)
        m_dependencies.log.log("[MenuBar] status poll failed: " + description);
    m_lastFailure = std::move(description);

    for (auto* consumer : m_dependencies.consumers)
        consumer->serviceFailed();
    m_dependencies.health.pollFailed(failure, startedAt);
    forgetDisplay();
    refreshStatusItem();
}

void MenuBarController::pollOverdue()
{
    if (m_lastFailure != "overdue")
        m_dependencies.log.log("[MenuBar] status poll overdue: the blocking service does not finish its reply");
    m_lastFailure = "overdue";
    forgetDisplay();
    refreshStatusItem();
}

void MenuBarController::postCoinNotices(const BlockingStatus& status)
{
    for (const auto& notice : m_coinNotices.update(status))
        m_notificationHelper.post(notice.title, notice.body, notice.identifier);
}

void MenuBarController::runTokenWatchdog(const TokenWatchdog::Event& event)
{
    for (const auto& command : m_tokenWatchdog.reduce(event)) {
        if (const auto* signal = std::get_if<TokenWatchdog::SignalPage>(&command)) {
            signalPage(signal->line);
        } else if (const auto* write = std::get_if<TokenWatchdog::WriteStandardError>(&command)) {
            m_dependencies.log.writeStandardError(write->line);
        } else if (m_dependencies.webShell) {
            if (m_dependencies.webShell->recover() == RecoverAnswer::started)
                runTokenWatchdog(TokenWatchdog::RecoverStarted { m_dependencies.clock.wallSeconds() });
            else
                runTokenWatchdog(TokenWatchdog::RecoverDeferred {});
        }
    }
}

void MenuBarController::requestCredentialIfMissing(const BlockingStatus& status)
{
    if (m_credentialRecovery.shouldSignal(status, m_dependencies.clock.continuousSeconds()))
        signalPage("daemon has no credential: signalled SPA to forward daemon token");
}

// The line says that the page was asked, so it is written only when there was a page to ask.
void MenuBarController::signalPage(const std::string& line)
{
    auto* shell = m_dependencies.webShell;
    if (shell && shell->evaluate(std::string(PageScripts::tokenRefresh)) == ScriptDelivery::handedOver)
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

void MenuBarController::refreshStatusItem()
{
    m_state.service = m_dependencies.health.serviceLine();
    m_state.filter = m_dependencies.health.filterLine();
    m_dependencies.statusItem.show(statusItemContent(m_state));
}

void MenuBarController::chosen(MenuItemId item)
{
    switch (static_cast<MenuCommand>(item)) {
    case MenuCommand::openWindow:
        return m_dependencies.openWindow();
    case MenuCommand::reloadWindow:
        if (m_dependencies.webShell)
            m_dependencies.webShell->reload();
        return;
    case MenuCommand::quit:
        return m_dependencies.quit();
    // Disabled while there is nothing behind them.
    case MenuCommand::checkForUpdates:
    case MenuCommand::contentFilter:
    case MenuCommand::blockingService:
    case MenuCommand::restartService:
    // Information.
    case MenuCommand::showVersion:
    case MenuCommand::showBlocking:
    case MenuCommand::showActiveTask:
    case MenuCommand::showReason:
        return;
    }
}

}
