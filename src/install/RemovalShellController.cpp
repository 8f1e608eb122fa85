#include "install/RemovalShellController.h"

#include "daemon/BlockingStatus.h"
#include "daemon/DaemonClient.h"
#include "install/ServiceInstaller.h"
#include "platform/SystemLog.h"

namespace brevanta {

namespace {

constexpr std::int64_t actionLimit = std::int64_t { 1 } << 53;

}

RemovalShellController::RemovalShellController(
    DaemonClient& daemonClient, const ServiceInstaller& installer, const ServiceManager& services, SystemLog& log)
    : m_daemonClient(daemonClient)
    , m_installer(installer)
    , m_services(services)
    , m_log(log)
{
}

void RemovalShellController::consume(const std::shared_ptr<const BlockingStatus>& status)
{
    changed(m_shell.statusArrived(status->removal));
}

// A service that hangs, or talks nonsense, is still there.
void RemovalShellController::serviceFailed(const DaemonFailure& failure)
{
    const auto* const error = std::get_if<DaemonError>(&failure);
    const bool isListening = !error || error->kind != DaemonError::Kind::connectionFailed;
    changed(m_shell.statusFailed(
        isListening ? RemovalShell::Listener::there : RemovalShell::Listener::none, lookForServiceProgram(m_services)));
}

void RemovalShellController::requestRemoval(const std::string& account)
{
    if (!isRemovalAccount(account))
        return m_log.log("[Removal] request_uninstall ignored: no account");
    if (m_installer.isInFlight())
        return m_log.log("[Removal] request_uninstall refused: a blocking service install is in flight (#8008)");
    send(QueueRemoval {}, account);
}

void RemovalShellController::cancelRemoval(std::int64_t actionId, const std::string& account)
{
    if (!isRemovalAccount(account) || actionId < 0 || actionId >= actionLimit)
        return m_log.log("[Removal] cancel_uninstall ignored: no account or no action");
    send(CancelRemoval { actionId }, account);
}

void RemovalShellController::serviceInstalled() { changed(m_shell.serviceInstalled()); }

void RemovalShellController::send(const RemovalRequest& request, const std::string& account)
{
    m_daemonClient.requestRemoval(request, account, m_life.guard([this](const auto& answer) {
        if (!answer)
            return m_log.log("[Removal] the blocking service did not take the request: " + describe(answer.error()));
        // A reply without a record is an empty one; the next status tells more.
        if (!answer->launch.empty())
            changed(m_shell.statusArrived({ *answer }));
    }));
}

void RemovalShellController::changed(RemovalShell::Change change)
{
    if (change == RemovalShell::Change::none)
        return;
    logStep();
    for (const auto& observer : m_observers)
        observer();
}

void RemovalShellController::logStep()
{
    auto step = m_shell.step();
    if (step.empty() || step == m_loggedStep)
        return;
    m_log.log("[Removal] " + step);
    m_loggedStep = std::move(step);
}

}
