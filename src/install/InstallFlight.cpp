#include "install/InstallFlight.h"

#include "platform/Administrator.h"
#include "platform/SystemLog.h"

#include <utility>

namespace brevanta {

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
        failed(incompleteBundleFailure(paths.error()));
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
    if (error.kind != AdministratorError::Kind::cancelled)
        return failed(installFailure(error, m_task));
    m_dependencies.log.log("[DaemonInstall] administrator prompt cancelled by the user");
    ended(InstallOutcome::cancelled);
}

void InstallFlight::failed(const InstallFailure& failure)
{
    const InstallFailure told { .message = m_dependencies.scrub(failure.message),
        .report = m_dependencies.scrub(failure.report) };
    // An alert goes with the application, if a quit has been waiting for this end.
    m_dependencies.log.log("[DaemonInstall] " + told.report);
    m_dependencies.showFailure(told);
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
