#include "support/ChildProcess.h"

#include "support/GLibPointers.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace brevanta::functional {

static GLibPointer<char*> copyForGLib(const std::vector<std::string>& texts)
{
    auto** result = g_new0(char*, texts.size() + 1);
    for (std::size_t index = 0; index < texts.size(); ++index)
        result[index] = g_strdup(texts[index].c_str());
    return GLibPointer<char*>(result);
}

// Runs in the child between fork and exec: only system calls.
static void prepareChild(gpointer)
{
    ::setpgid(0, 0);
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
}

std::expected<std::unique_ptr<ChildProcess>, std::string> ChildProcess::start(const ChildProcessOptions& options)
{
    const auto arguments = copyForGLib(options.arguments);
    const auto environment = copyForGLib(options.environment);
    const auto flags = combined(G_SPAWN_DO_NOT_REAP_CHILD, G_SPAWN_SEARCH_PATH, G_SPAWN_CLOEXEC_PIPES);
    std::unique_ptr<ChildProcess> process(new ChildProcess);
    GPid id = -1;
    int output = -1;
    int errors = -1;
    ErrorSlot error;
    if (!g_spawn_async_with_pipes(nullptr, arguments.get(), environment.get(), flags, prepareChild, nullptr, &id,
            nullptr, &output, &errors, error.address()))
        return std::unexpected(error.message());
    process->m_id = id;
    process->m_output.capture(output);
    process->m_errors.capture(errors, options.errorFilePath);
    process->m_watch.reset(g_child_watch_add(
        id, [](GPid, gint status, gpointer data) { static_cast<ChildProcess*>(data)->noteExit(status); },
        process.get()));
    return process;
}

ChildProcess::~ChildProcess()
{
    ::kill(-m_id, SIGKILL);
    if (!isRunning())
        return;
    m_watch.reset();
    ::waitpid(m_id, nullptr, 0);
}

void ChildProcess::noteExit(int waitStatus)
{
    m_watch.forget();
    m_output.drain();
    m_errors.drain();
    m_exitStatus = WIFEXITED(waitStatus) ? WEXITSTATUS(waitStatus) : 128 + WTERMSIG(waitStatus);
}

void ChildProcess::signal(int number)
{
    if (isRunning())
        ::kill(m_id, number);
}

std::optional<int> ChildProcess::awaitExit(Milliseconds within)
{
    (void)awaitUntil([this] { return !isRunning(); }, within);
    return m_exitStatus;
}

void ChildProcess::end(Milliseconds within)
{
    signal(SIGTERM);
    if (awaitExit(within))
        return;
    signal(SIGKILL);
    (void)awaitExit(within);
}

// The fields of proc(5) after the command's name, which may itself hold blanks and brackets: state, parent, group.
static bool isLiveMemberOf(pid_t group, const std::filesystem::path& directory)
{
    std::ifstream file(directory / "stat");
    std::string line;
    std::getline(file, line);
    const auto end = line.rfind(')');
    if (end == std::string::npos)
        return false;
    char state = 0;
    pid_t parent = 0;
    pid_t processGroup = 0;
    if (std::sscanf(line.c_str() + end + 1, " %c %d %d", &state, &parent, &processGroup) != 3)
        return false;
    return processGroup == group && state != 'Z';
}

std::vector<pid_t> processesThat(const std::function<bool(const std::filesystem::path&)>& matches)
{
    std::vector<pid_t> processes;
    std::error_code error;
    for (std::filesystem::directory_iterator entry("/proc", error), end; !error && entry != end;
        entry.increment(error)) {
        const auto name = entry->path().filename().string();
        pid_t id = 0;
        const auto parsed = std::from_chars(name.data(), name.data() + name.size(), id);
        if (parsed.ec == std::errc() && parsed.ptr == name.data() + name.size() && matches(entry->path()))
            processes.push_back(id);
    }
    return processes;
}

std::vector<pid_t> ChildProcess::groupMembers() const
{
    return processesThat([this](const std::filesystem::path& directory) { return isLiveMemberOf(m_id, directory); });
}

std::vector<std::string> neutralEnvironment()
{
    static constexpr std::array prefixes { "DISPLAY=", "WAYLAND_", "XAUTHORITY=", "DBUS_", "XDG_", "BREVANTA_", "GTK_",
        "GDK_", "LANG=", "LC_", "LANGUAGE=" };
    std::vector<std::string> result;
    const GLibPointer<char*> environment(g_get_environ());
    for (auto** entry = environment.get(); *entry; ++entry) {
        const std::string_view text(*entry);
        if (std::ranges::none_of(prefixes, [&](std::string_view prefix) { return text.starts_with(prefix); }))
            result.emplace_back(text);
    }
    result.emplace_back("LANG=C.UTF-8");
    return result;
}

}
