#include "support/StandInService.h"

#include <csignal>
#include <cstring>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

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

// A connected descriptor, or -1.
static int connectTo(const std::string& path)
{
    sockaddr_un address {};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path)
        return -1;
    std::memcpy(address.sun_path, path.c_str(), path.size());
    const int descriptor = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (descriptor >= 0 && ::connect(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0)
        return descriptor;
    if (descriptor >= 0)
        ::close(descriptor);
    return -1;
}

std::expected<std::string, std::string> StandInService::command(const std::string& line, Milliseconds within) const
{
    const int descriptor = connectTo(controlPath());
    if (descriptor < 0)
        return std::unexpected("the stand-in service takes no commands");
    CapturedStream answer;
    answer.capture(descriptor);
    const auto request = line + "\n";
    if (::send(descriptor, request.data(), request.size(), MSG_NOSIGNAL) != static_cast<ssize_t>(request.size()))
        return std::unexpected("the command could not be sent: " + line);
    if (!answer.awaitText("\n", within))
        return std::unexpected("no answer to: " + line);
    const auto text = answer.text().substr(0, answer.text().find('\n'));
    if (text == "ok")
        return std::string();
    if (text.starts_with("ok "))
        return text.substr(3);
    return std::unexpected(line + ": " + text);
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
