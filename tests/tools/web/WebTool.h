#pragma once

#include "HttpClient.h"
#include "support/ChildProcess.h"
#include "support/TemporaryDirectory.h"

#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace brevanta::web {

using functional::ChildProcess;
using functional::Milliseconds;

// Runs the tool with these arguments to its end; its exit status, or nothing when it does not end.
[[nodiscard]] std::optional<int> runTool(const std::vector<std::string>& arguments);

// A command that was given and may not be answered yet.
class PendingCommand {
public:
    PendingCommand(const std::string& socketPath, const std::string& line);

    // Without its newline; empty when no answer comes in time.
    [[nodiscard]] std::string await(Milliseconds within = Milliseconds(20000)) const;

private:
    functional::CapturedStream m_answer;
};

// The tool as a process with two certificates, a https and a http port and a directory of pages.
class WebToolTest : public testing::Test {
protected:
    void SetUp() override { start({ "--driver", "--log-requests" }); }

    void start(const std::vector<std::string>& options);

    // The answer's line.
    [[nodiscard]] std::string command(const std::string& line) const { return begin(line)->await(); }
    [[nodiscard]] std::unique_ptr<PendingCommand> begin(const std::string& line) const
    {
        return std::make_unique<PendingCommand>(path("control"), line);
    }

    [[nodiscard]] std::string url(const std::string& path) const { return m_url + path; }
    [[nodiscard]] std::string port() const { return m_url.substr(m_url.rfind(':') + 1); }
    [[nodiscard]] int plainPort() const { return m_plainPort; }
    [[nodiscard]] HttpClient client() const { return HttpClient(path("own.pem")); }
    [[nodiscard]] std::string path(const std::string& name) const { return (m_directory.path() / name).string(); }
    [[nodiscard]] ChildProcess& process() const { return *m_process; }

private:
    functional::TemporaryDirectory m_directory;
    std::unique_ptr<ChildProcess> m_process;
    std::string m_url; // Without the last slash.
    int m_plainPort = 0;
};

}
