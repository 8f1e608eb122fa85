#include "gtk/standin/ServiceProcessControl.h"

#include "posix/FileDescriptor.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <fstream>
#include <iterator>
#include <poll.h>
#include <spawn.h>
#include <sstream>

// The C library 2.36 declares its functions as if they were of C++.
extern "C" {
#include <sys/pidfd.h>
}

namespace brevanta {

namespace {

struct ProcessFacts {
    bool hasEnded { false }; // And nobody has waited for it yet.
    std::int64_t startTicks { 0 };
};

// proc(5), /proc/pid/stat; nothing when there is no such process.
std::optional<ProcessFacts> factsOf(int processId)
{
    constexpr auto fieldsFromStateToStart = 19;
    std::ifstream file("/proc/" + std::to_string(processId) + "/stat");
    std::string line;
    std::getline(file, line);
    // The name before it may hold anything, also ") Z".
    const auto end = line.rfind(')');
    if (end == std::string::npos)
        return std::nullopt;
    std::istringstream fields(line.substr(end + 1));
    std::string state;
    fields >> state;
    std::string skipped;
    for (int field = 1; field < fieldsFromStateToStart; ++field)
        fields >> skipped;
    std::int64_t ticks = 0;
    if (!(fields >> ticks))
        return std::nullopt;
    return ProcessFacts { .hasEnded = state == "Z" || state == "X", .startTicks = ticks };
}

// What posix_spawn(3) is told; each call gives an errno value, of which the first is kept.
class SpawnSettings {
public:
    SpawnSettings()
    {
        note(::posix_spawn_file_actions_init(&m_actions));
        note(::posix_spawnattr_init(&m_attributes));
    }
    ~SpawnSettings()
    {
        ::posix_spawn_file_actions_destroy(&m_actions);
        ::posix_spawnattr_destroy(&m_attributes);
    }
    SpawnSettings(const SpawnSettings&) = delete;
    SpawnSettings& operator=(const SpawnSettings&) = delete;

    void makeDaemon(const std::filesystem::path& log)
    {
        constexpr mode_t logMode = 0644;
        sigset_t signals {};
        sigemptyset(&signals);
        note(::posix_spawnattr_setsigmask(&m_attributes, &signals));
        sigfillset(&signals);
        note(::posix_spawnattr_setsigdefault(&m_attributes, &signals));
        note(::posix_spawnattr_setflags(
            &m_attributes, POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF));
        note(::posix_spawn_file_actions_addopen(&m_actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0));
        note(::posix_spawn_file_actions_addopen(
            &m_actions, STDOUT_FILENO, log.c_str(), O_WRONLY | O_CREAT | O_APPEND, logMode));
        note(::posix_spawn_file_actions_adddup2(&m_actions, STDOUT_FILENO, STDERR_FILENO));
        // Whoever asked may hold a lock that the daemon must not keep.
        note(::posix_spawn_file_actions_addclosefrom_np(&m_actions, STDERR_FILENO + 1));
    }

    std::expected<pid_t, int> spawn(std::vector<std::string> arguments, std::vector<std::string> environment)
    {
        pid_t process = -1;
        if (m_error == 0)
            note(::posix_spawn(&process, arguments.front().c_str(), &m_actions, &m_attributes,
                pointersTo(arguments).data(), pointersTo(environment).data()));
        if (m_error != 0)
            return std::unexpected(m_error);
        return process;
    }

private:
    void note(int error)
    {
        if (m_error == 0)
            m_error = error;
    }

    static std::vector<char*> pointersTo(std::vector<std::string>& texts)
    {
        std::vector<char*> pointers;
        pointers.reserve(texts.size() + 1);
        for (auto& text : texts)
            pointers.push_back(text.data());
        pointers.push_back(nullptr);
        return pointers;
    }

    posix_spawn_file_actions_t m_actions {};
    posix_spawnattr_t m_attributes {};
    int m_error { 0 };
};

// pidfd_open(2): readable once the process has ended.
bool endsWithin(std::chrono::milliseconds patience, const FileDescriptor& process)
{
    const auto deadline = std::chrono::steady_clock::now() + patience;
    pollfd waited { .fd = process.get(), .events = POLLIN, .revents = 0 };
    for (;;) {
        const auto left
            = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
        const int ready = ::poll(&waited, 1, static_cast<int>(std::max<std::int64_t>(left.count(), 0)));
        if (ready >= 0 || errno != EINTR)
            return ready > 0;
    }
}

}

std::expected<ServiceProcess, int> startServiceProcess(const std::filesystem::path& root,
    const std::vector<std::string>& arguments, const std::string& label, const std::filesystem::path& log)
{
    std::vector<std::string> belowRoot;
    std::ranges::transform(arguments, std::back_inserter(belowRoot), [&root](const std::string& argument) {
        return argument.starts_with('/') ? root.string() + argument : argument;
    });
    SpawnSettings settings;
    settings.makeDaemon(log);
    // launchd.plist(5): a daemon gets nothing of the environment of whoever loads it.
    const auto process
        = settings.spawn(std::move(belowRoot), { "PATH=/usr/bin:/bin:/usr/sbin:/sbin", "XPC_SERVICE_NAME=" + label });
    if (!process)
        return std::unexpected(process.error());
    // Its number stays its own until this process, which does not wait for it, ends.
    const auto facts = factsOf(*process);
    if (!facts)
        return std::unexpected(ESRCH);
    return ServiceProcess { .processId = *process, .startTicks = facts->startTicks };
}

bool isRunning(const ServiceProcess& process)
{
    const auto facts = factsOf(process.processId);
    return facts && !facts->hasEnded && facts->startTicks == process.startTicks;
}

void endServiceProcess(const ServiceProcess& process, std::chrono::milliseconds patience)
{
    // Opened before it is looked at, so that the number cannot have gone to another process in between.
    const FileDescriptor descriptor(::pidfd_open(process.processId, 0));
    if (!descriptor || !isRunning(process))
        return;
    for (const int signal : { SIGTERM, SIGKILL }) {
        ::pidfd_send_signal(descriptor.get(), signal, nullptr, 0);
        if (endsWithin(patience, descriptor))
            return;
    }
}

}
