#include "app/RemovalCompletion.h"

#include "app/ServiceInstallation.h"
#include "install/RemovalShellController.h"
#include "platform/Clock.h"
#include "platform/SystemLog.h"
#include "track/AppAlertPresenter.h"

namespace brevanta {

namespace {

constexpr auto identifier = "removalCompletion";
constexpr std::size_t finishButton = 0;

constexpr double secondsAfterFailure = 60; // What failed tells the user to wait a minute.

}

RemovalCompletion::RemovalCompletion(Dependencies dependencies)
    : m_dependencies(dependencies)
{
}

void RemovalCompletion::update()
{
    const auto removal = overdue();
    if (m_isOffered) {
        if (!removal)
            m_dependencies.alerts.withdraw(identifier);
        return;
    }
    if (!removal || removal == m_declined || m_dependencies.clock.continuousSeconds() < m_notBefore)
        return;
    m_isOffered = true;
    m_dependencies.log.log("[Removal] the blocking service does not finish its removal: offering to finish it");
    m_dependencies.alerts.present(
        { .identifier = identifier,
            .style = AlertStyle::informational,
            .message = "Finish removing the blocking service",
            .informativeText = "The blocking service has begun to remove itself from this Mac, but it has not "
                               "finished in time. Brevanta can finish the removal now; this asks for your "
                               "administrator password.",
            .buttons = { "Finish Removal", "Not Now" } },
        m_life.guard([this](const AlertResponse& response) { answered(response); }));
}

std::optional<RemovalHandover> RemovalCompletion::overdue() const
{
    if (m_dependencies.installation.flight().isInFlight())
        return std::nullopt;
    return m_dependencies.removal.shell().overdue(
        m_dependencies.clock.wallSeconds(), lookForServiceProgram(m_dependencies.services));
}

void RemovalCompletion::answered(const AlertResponse& response)
{
    m_isOffered = false;
    if (response.end == AlertEnd::withdrawn)
        return;
    // Much may have happened since the offer was made.
    const auto removal = overdue();
    if (!removal)
        return m_dependencies.log.log("[Removal] there is nothing to finish any more");
    if (response.button != finishButton) {
        m_declined = removal;
        return;
    }
    m_dependencies.installation.finishRemoval(*removal, m_life.guard([this, removal](InstallOutcome outcome) {
        if (outcome == InstallOutcome::cancelled)
            m_declined = removal;
        else if (outcome == InstallOutcome::failed)
            m_notBefore = m_dependencies.clock.continuousSeconds() + secondsAfterFailure;
    }));
}

}
