#include "support/StandInService.h"

#include "support/ControlChannel.h"

#include <csignal>

namespace brevanta::functional {

static constexpr Milliseconds startTime { 10000 };
static constexpr Milliseconds endTime { 5000 };

StandInService::StandInService(std::string executable, std::string scenarioPath)
    : m_executable(std::move(executable))
    , m_scenarioPath(std::move(scenarioPath))
{
}

std::expected<void, std::string> StandInService::start()
{
    // The file of launches makes a service that was started again known as the newer one.
    std::vector<std::string> arguments { m_executable, "--socket", socketPath(), "--control", controlPath(), "--state",
        (m_directory.path() / "launches").string(), "--log-requests" };
    if (!m_scenarioPath.empty())
        arguments.insert(arguments.end(), { "--scenario", m_scenarioPath });
    auto process = ChildProcess::start({ .arguments = std::move(arguments), .environment = neutralEnvironment() });
    if (!process)
        return std::unexpected("the stand-in service cannot be started: " + process.error());
    m_process = std::move(*process);
    if (!m_process->output().awaitText("listening on", startTime))
        return std::unexpected("the stand-in service did not start: " + m_process->errors().text());
    return {};
}

void StandInService::stop()
{
    if (m_process)
        m_process->end();
}

void StandInService::kill()
{
    if (!m_process)
        return;
    m_process->signal(SIGKILL);
    (void)m_process->awaitExit(endTime);
}

std::expected<std::string, std::string> StandInService::command(const std::string& line, Milliseconds within) const
{
    return sendCommand(controlPath(), line, within);
}

bool StandInService::awaitPolls(std::size_t count, Milliseconds within) const
{
    return command("await get_status +" + std::to_string(count), within).has_value();
}

bool StandInService::awaitHandledPolls(std::size_t count, Milliseconds within) const
{
    return awaitPolls(count + 1, within);
}

std::expected<std::size_t, std::string> StandInService::requestCount(const std::string& type) const
{
    const auto answer = command("requests");
    if (!answer)
        return std::unexpected(answer.error());
    // The answer is one flat object of numbers.
    const auto key = "\"" + type + "\":";
    const auto position = answer->find(key);
    if (position == std::string::npos)
        return std::unexpected("the stand-in service counts no requests of the type " + type);
    return std::stoul(answer->substr(position + key.size()));
}

}
