#pragma once

#include "support/ChildProcess.h"
#include "support/TemporaryDirectory.h"

namespace brevanta::functional {

// The stand-in for the blocking service, and the commands that drive it.
class StandInService {
public:
    // Not running yet. An empty scenario path runs none.
    explicit StandInService(std::string executable, std::string scenarioPath = {});

    [[nodiscard]] std::string controlPath() const { return (m_directory.path() / "control.sock").string(); }
    [[nodiscard]] std::string socketPath() const { return (m_directory.path() / "service.sock").string(); }

    // Starts the process, once more after `stop` or `kill`, and waits until it can be talked to.
    [[nodiscard]] std::expected<void, std::string> start();
    void stop();
    void kill();
    [[nodiscard]] bool isRunning() const { return m_process && m_process->isRunning(); }

    // One command; what follows "ok" in the answer, or what follows "error: ".
    [[nodiscard]] std::expected<std::string, std::string> command(
        const std::string& line, Milliseconds within = Milliseconds(10000)) const;

    // Waits until so many more status requests have come in.
    [[nodiscard]] bool awaitPolls(std::size_t count, Milliseconds within = Milliseconds(20000)) const;
    // As `awaitPolls`, and until the answers have been handled: no poll is sent before the one before it is done with.
    [[nodiscard]] bool awaitHandledPolls(std::size_t count, Milliseconds within = Milliseconds(20000)) const;

    // How many requests of this type have come in since the process started.
    [[nodiscard]] std::expected<std::size_t, std::string> requestCount(const std::string& type) const;

private:
    std::string m_executable;
    std::string m_scenarioPath;
    TemporaryDirectory m_directory;
    std::unique_ptr<ChildProcess> m_process;
};

}
