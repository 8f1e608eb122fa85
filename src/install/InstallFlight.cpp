#include "install/InstallFlight.h"

#include "platform/Administrator.h"
#include "platform/SystemLog.h"

#include <utility>

namespace brevanta {

namespace {

std::string textFor(const AdministratorError& error, FlightTask task)
{
    const bool installs = task == FlightTask::install;
    switch (error.kind) {
    case AdministratorError::Kind::unavailable:
        return "AppleScript is not available on this Mac.";
    case AdministratorError::Kind::notCompiled:
        return installs ? "The install script could not be compiled." : "The removal script could not be compiled.";
    case AdministratorError::Kind::noResult:
        return installs ? "The install script returned no result." : "The removal script returned no result.";
    case AdministratorError::Kind::scriptFailed:
    case AdministratorError::Kind::cancelled:
        break;
    }
    return installs ? "Daemon installation failed: " + failureOfInstallScript(error.message) : error.message;
}

}

InstallFlight::InstallFlight(Dependencies dependencies)
    : m_dependencies(std::move(dependencies))
{
}

void InstallFlight::begin()
{
    if (start(FlightTask::install) == Start::underWay)
        return;
    if (const auto paths = m_dependencies.paths())
        run(installScript(*paths), installPrompt);
    else
        failed(paths.error());
}

void InstallFlight::beginRemoval(const std::string& script)
{
    if (start(FlightTask::removal) == Start::begun)
        run(script, removalPrompt);
}

InstallFlight::Start InstallFlight::start(FlightTask task)
{
    if (m_inFlight)
        return Start::underWay;
    m_inFlight = true;
    m_task = task;
    ++m_generation;
    m_dependencies.changed();
    return Start::begun;
}

void InstallFlight::run(const std::string& script, std::string_view prompt)
{
    m_dependencies.administrator.run(
        script, std::string(prompt), m_life.guard([this, generation = m_generation](const auto& answer) {
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
        const bool installs = m_task == FlightTask::install;
        m_dependencies.log.log(
            std::string("[DaemonInstall] the blocking service was ") + (installs ? "installed" : "removed"));
        return ended(installs ? InstallOutcome::installed : InstallOutcome::removed);
    }
    const auto& error = answer.error();
    if (error.kind == AdministratorError::Kind::notCompiled)
        return failed(textFor(error, m_task), error.message);
    if (error.kind != AdministratorError::Kind::cancelled)
        return failed(textFor(error, m_task));
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
