#pragma once

#include "support/CapturedStream.h"

#include <expected>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace brevanta::functional {

struct ChildProcessOptions {
    std::vector<std::string> arguments; // The first is the executable, looked up in PATH when it has no slash.
    std::vector<std::string> environment {}; // NAME=VALUE, all that the process gets.
    std::string errorFilePath {}; // Standard error is kept here too; empty for nowhere.
};

// A process in a group of its own. It does not outlive this one: the destructor kills the whole group, and the kernel
// kills the process itself when this one crashes.
class ChildProcess {
public:
    [[nodiscard]] static std::expected<std::unique_ptr<ChildProcess>, std::string> start(const ChildProcessOptions&);
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    [[nodiscard]] pid_t id() const { return m_id; }
    [[nodiscard]] bool isRunning() const { return !m_exitStatus; }
    void signal(int number);

    // The exit status once the process has ended, 128 and the signal's number when a signal ended it; nothing when the
    // time is up before.
    [[nodiscard]] std::optional<int> awaitExit(Milliseconds within);

    // SIGTERM, and SIGKILL when that did not end it in time.
    void end(Milliseconds within = Milliseconds(5000));

    // The group's processes that have not ended.
    [[nodiscard]] std::vector<pid_t> groupMembers() const;

    [[nodiscard]] const CapturedStream& output() const { return m_output; }
    [[nodiscard]] const CapturedStream& errors() const { return m_errors; }

private:
    ChildProcess() = default;
    void noteExit(int waitStatus);

    pid_t m_id { -1 };
    std::optional<int> m_exitStatus;
    SourceGuard m_watch;
    CapturedStream m_output;
    CapturedStream m_errors;
};

// All processes of the machine, zombies too, whose directory of proc(5) matches.
[[nodiscard]] std::vector<pid_t> processesThat(const std::function<bool(const std::filesystem::path&)>& matches);

// This process's environment without what would lead a child to the user's own display, bus or files.
[[nodiscard]] std::vector<std::string> neutralEnvironment();

}
