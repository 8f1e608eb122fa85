#include "install/InstallFlight.h"

#include "platform/Administrator.h"
#include "platform/SystemLog.h"

#include <utility>

namespace brevanta {

namespace {

std::string textFor(const AdministratorError& error)
{
    switch (error.kind) {
    case AdministratorError::Kind::unavailable:
        return "AppleScript is not available on this Mac.";
    case AdministratorError::Kind::notCompiled:
        return "The install script could not be compiled.";
    case AdministratorError::Kind::noResult:
        return "The install script returned no result.";
    case AdministratorError::Kind::scriptFailed:
    case AdministratorError::Kind::cancelled:
        break;
    }
    return "Daemon installation failed: " + failureOfInstallScript(error.message);
}

}

InstallFlight::InstallFlight(Dependencies dependencies)
    : m_dependencies(std::move(dependencies))
{
}

void InstallFlight::begin()
{
    if (m_inFlight)
        return;
    m_inFlight = true;
    const auto generation = ++m_generation;
    m_dependencies.changed();
    const auto paths = m_dependencies.paths();
    if (!paths)
        return failed(paths.error());
    m_dependencies.administrator.run(
        installScript(*paths), std::string(installPrompt), m_life.guard([this, generation](const auto& answer) {
            if (m_inFlight && generation == m_generation)
                answered(answer);
        }));
}

bool InstallFlight::isInFlight() const { return m_inFlight; }

std::uint64_t InstallFlight::generation() const { return m_generation; }

void InstallFlight::whenEnded(std::function<void(InstallOutcome)> waiter)
{
    if (!m_inFlight)
        return waiter(m_lastOutcome);
    m_waiters.push_back(std::move(waiter));
}

void InstallFlight::answered(const std::expected<std::string, AdministratorError>& answer)
{
    if (answer) {
        m_dependencies.log.log("[DaemonInstall] the blocking service was installed");
        return ended(InstallOutcome::installed);
    }
    const auto& error = answer.error();
    if (error.kind == AdministratorError::Kind::notCompiled)
        return failed(textFor(error), error.message);
    if (error.kind != AdministratorError::Kind::cancelled)
        return failed(textFor(error));
    m_dependencies.log.log("[DaemonInstall] administrator prompt cancelled by the user");
    ended(InstallOutcome::cancelled);
}

void InstallFlight::failed(const std::string& message, const std::string& detail)
{
    // An alert goes with the application, if a quit has been waiting for this end.
    m_dependencies.log.log("[DaemonInstall] " + message + (detail.empty() ? "" : " (" + detail + ")"));
    m_dependencies.showFailure(message);
    ended(InstallOutcome::failed);
}

void InstallFlight::ended(InstallOutcome outcome)
{
    m_inFlight = false;
    m_lastOutcome = outcome;
    // A waiter may begin the next install, and wait for that one.
    const auto waiters = std::exchange(m_waiters, {});
    m_dependencies.changed();
    for (const auto& waiter : waiters)
        waiter(outcome);
}

}
