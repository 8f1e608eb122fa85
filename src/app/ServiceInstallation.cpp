#include "app/ServiceInstallation.h"

#include "crash/ReportScrubber.h"
#include "platform/FileStore.h"
#include "platform/SystemLog.h"
#include "track/AppAlertPresenter.h"

#include <utility>

namespace brevanta {

std::expected<InstallPaths, std::string> bundledInstallPaths(
    const std::filesystem::path& bundle, const std::filesystem::path& root, const FileStore& files)
{
    if (bundle.empty())
        return std::unexpected("Could not locate the app bundle.");
    const auto resources = bundle / "Contents" / "Resources";
    InstallPaths paths { .bundledProgram = resources / "com.brevanta.daemon",
        .bundledPropertyList = resources / "com.brevanta.daemon.plist",
        .root = root };
    for (const auto& file : { paths.bundledProgram, paths.bundledPropertyList }) {
        if (!files.stamp(file))
            return std::unexpected("Daemon file missing from bundle: " + file.string());
    }
    return paths;
}

ServiceInstallation::ServiceInstallation(Dependencies dependencies)
    : m_dependencies(std::move(dependencies))
    , m_flight({ .administrator = m_dependencies.administrator,
          .log = m_dependencies.log,
          .paths
          = [this] { return bundledInstallPaths(m_dependencies.bundle, m_dependencies.root, m_dependencies.files); },
          .scrub = [](const std::string& text) { return scrubReport(text); },
          .showFailure = [this](const InstallFailure& failure) { showFailure(failure); },
          .changed = m_dependencies.changed })
{
}

void ServiceInstallation::install(std::function<void()> onEnd)
{
    m_flight.begin();
    m_flight.whenEnded([onEnd = std::move(onEnd)](InstallOutcome) { onEnd(); });
}

void ServiceInstallation::finishRemoval(const RemovalHandover& handover, std::function<void(InstallOutcome)> onEnd)
{
    const InstallPaths paths { .bundledProgram = {}, .bundledPropertyList = {}, .root = m_dependencies.root };
    m_flight.beginRemoval(removalScript(paths, handover));
    m_flight.whenEnded(std::move(onEnd));
}

TerminationDecision ServiceInstallation::shouldTerminate()
{
    return feed(InstallHold::QuitAsked { underWay() }) == Answer::putOff ? TerminationDecision::later
                                                                         : TerminationDecision::now;
}

RelaunchDecision ServiceInstallation::shouldRelaunch(std::function<void()> relaunch)
{
    if (feed(InstallHold::RelaunchAsked { underWay() }) == Answer::allowed)
        return RelaunchDecision::now;
    m_relaunches.push_back(std::move(relaunch));
    return RelaunchDecision::later;
}

ServiceInstallation::Answer ServiceInstallation::feed(const InstallHold::Event& event)
{
    const auto commands = m_hold.reduce(event);
    for (const auto& command : commands)
        carryOut(command);
    return !commands.empty() && std::holds_alternative<InstallHold::PutOff>(commands.front()) ? Answer::putOff
                                                                                              : Answer::allowed;
}

void ServiceInstallation::carryOut(const InstallHold::Command& command)
{
    if (const auto* const log = std::get_if<InstallHold::Log>(&command))
        m_dependencies.log.log(log->line);
    else if (std::holds_alternative<InstallHold::AwaitEnd>(command))
        m_flight.whenEnded([this](InstallOutcome) { feed(InstallHold::InstallEnded {}); });
    else if (std::holds_alternative<InstallHold::ShowQuitHeld>(command))
        m_dependencies.showQuitHeld();
    else if (std::holds_alternative<InstallHold::Relaunch>(command))
        relaunch();
    else if (std::holds_alternative<InstallHold::Quit>(command))
        m_dependencies.lifecycle.answerTermination(TerminationAnswer::proceed);
}

void ServiceInstallation::relaunch()
{
    for (const auto& putOff : std::exchange(m_relaunches, {}))
        putOff();
}

InstallHold::Install ServiceInstallation::underWay() const
{
    return m_flight.isInFlight() ? InstallHold::Install::inFlight : InstallHold::Install::none;
}

// Each install's own: an alert that is still on screen must not swallow what the next one has to say.
void ServiceInstallation::showFailure(const InstallFailure& failure)
{
    m_dependencies.failed(failure.report);
    m_dependencies.alerts.present(
        { .identifier = "installationFailed-" + std::to_string(m_flight.generation()),
            .style = AlertStyle::warning,
            .message = m_flight.task() == FlightTask::install ? "Installation Failed" : "Removal Failed",
            .informativeText = failure.message,
            .buttons = { "OK" } },
        [](AlertResponse) { });
}

}
