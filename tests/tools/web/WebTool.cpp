#include "WebTool.h"

#include <cstring>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace brevanta::web {

static std::unique_ptr<ChildProcess> startTool(std::vector<std::string> arguments)
{
    arguments.insert(arguments.begin(), BREVANTA_BUILT_WEB_TOOL);
    auto process
        = ChildProcess::start({ .arguments = std::move(arguments), .environment = functional::neutralEnvironment() });
    return process ? std::move(*process) : nullptr;
}

std::optional<int> runTool(const std::vector<std::string>& arguments)
{
    const auto process = startTool(arguments);
    return process ? process->awaitExit(Milliseconds(20000)) : std::nullopt;
}

PendingCommand::PendingCommand(const std::string& socketPath, const std::string& line)
{
    sockaddr_un address {};
    address.sun_family = AF_UNIX;
    if (socketPath.size() >= sizeof address.sun_path)
        return;
    std::memcpy(address.sun_path, socketPath.c_str(), socketPath.size());
    const int descriptor = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const auto request = line + "\n";
    const bool wasSent = descriptor >= 0
        && !::connect(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address)
        && ::send(descriptor, request.data(), request.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(request.size());
    if (wasSent)
        m_answer.capture(descriptor);
    else if (descriptor >= 0)
        ::close(descriptor);
}

std::string PendingCommand::await(Milliseconds within) const
{
    if (!m_answer.awaitText("\n", within))
        return {};
    return m_answer.text().substr(0, m_answer.text().find('\n'));
}

// What stands between the two texts.
static std::string between(const std::string& text, const std::string& before, const std::string& after)
{
    const auto start = text.find(before);
    if (start == std::string::npos)
        return {};
    const auto first = start + before.size();
    return text.substr(first, text.find(after, first) - first);
}

void WebToolTest::start(const std::vector<std::string>& options)
{
    for (const auto* name : { "own", "other" })
        ASSERT_EQ(runTool({ "--make-certificate", path(""), "--name", name }), 0);
    std::filesystem::create_directory(path("pages"));
    std::vector<std::string> arguments { "--listen", "0", "--http-listen", "0", "--certificate", path("own.pem"),
        "--key", path("own-key.pem"), "--other-certificate", path("other.pem"), "--other-key", path("other-key.pem"),
        "--control", path("control"), "--pages", path("pages") };
    arguments.insert(arguments.end(), options.begin(), options.end());
    m_process = startTool(std::move(arguments));
    ASSERT_TRUE(m_process);
    ASSERT_TRUE(m_process->output().awaitText("http://localhost:", Milliseconds(20000))) << m_process->errors().text();
    const auto& output = m_process->output().text();
    m_url = "https://localhost:" + between(output, "https://localhost:", "/");
    m_plainPort = std::stoi(between(output, "http://localhost:", "/"));
}

}
