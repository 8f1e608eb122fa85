#include "posix/SpawnedProgram.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <utility>

extern "C" char** environ; // environ(7)

namespace brevanta {

namespace {

using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::milliseconds;

// How the new process is to begin.
class SpawnOptions {
public:
    explicit SpawnOptions(int output)
    {
        m_isComplete = !::posix_spawn_file_actions_init(&m_actions);
        m_isComplete = !::posix_spawnattr_init(&m_attributes) && m_isComplete;
        sigset_t none;
        sigemptyset(&none); // Queue threads block their signals, which the program is not to inherit.
        m_isComplete = m_isComplete
            && !::posix_spawn_file_actions_addopen(&m_actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0)
            && !::posix_spawn_file_actions_adddup2(&m_actions, output, STDOUT_FILENO)
            && !::posix_spawn_file_actions_addopen(&m_actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0)
            && !::posix_spawnattr_setflags(
                &m_attributes, static_cast<short>(POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGMASK))
            && !::posix_spawnattr_setpgroup(&m_attributes, 0) && !::posix_spawnattr_setsigmask(&m_attributes, &none);
    }
    ~SpawnOptions()
    {
        ::posix_spawn_file_actions_destroy(&m_actions);
        ::posix_spawnattr_destroy(&m_attributes);
    }
    SpawnOptions(const SpawnOptions&) = delete;
    SpawnOptions& operator=(const SpawnOptions&) = delete;

    [[nodiscard]] bool isComplete() const { return m_isComplete; }
    [[nodiscard]] const posix_spawn_file_actions_t* actions() const { return &m_actions; }
    [[nodiscard]] const posix_spawnattr_t* attributes() const { return &m_attributes; }

private:
    posix_spawn_file_actions_t m_actions {};
    posix_spawnattr_t m_attributes {};
    bool m_isComplete { false };
};

// Until one of the descriptors has something to say, or the time is up. False when the program has no time any more.
bool await(int output, int interruption, SpawnedProgram::TimePoint deadline, Milliseconds longest)
{
    const auto left = std::chrono::ceil<Milliseconds>(deadline - Clock::now());
    if (left <= Milliseconds::zero())
        return false;
    std::array<pollfd, 2> descriptors { pollfd { .fd = output, .events = POLLIN, .revents = 0 },
        pollfd { .fd = interruption, .events = POLLIN, .revents = 0 } };
    ::poll(descriptors.data(), descriptors.size(), static_cast<int>(std::min(left, longest).count()));
    return descriptors[1].revents == 0;
}

bool hasNul(const std::string& text) { return text.contains('\0'); }

}

Pipe openPipe()
{
    std::array<int, 2> ends {};
    if (::pipe(ends.data()))
        return {};
    Pipe pipe { .reading = FileDescriptor(ends[0]), .writing = FileDescriptor(ends[1]) };
    if (::fcntl(ends[0], F_SETFD, FD_CLOEXEC) < 0 || ::fcntl(ends[1], F_SETFD, FD_CLOEXEC) < 0)
        return {};
    return pipe;
}

std::optional<SpawnedProgram> SpawnedProgram::start(
    const std::string& program, const std::vector<std::string>& arguments)
{
    if (hasNul(program) || std::ranges::any_of(arguments, hasNul))
        return std::nullopt;
    auto pipe = openPipe();
    const SpawnOptions options(pipe.writing.get());
    if (!pipe.reading || ::fcntl(pipe.reading.get(), F_SETFL, O_NONBLOCK) < 0 || !options.isComplete())
        return std::nullopt;
    // posix_spawn(3) changes none of the texts; its parameter only lacks the const.
    std::vector<char*> texts { const_cast<char*>(program.c_str()) };
    for (const auto& argument : arguments)
        texts.push_back(const_cast<char*>(argument.c_str()));
    texts.push_back(nullptr);
    pid_t process = 0;
    if (::posix_spawn(&process, program.c_str(), options.actions(), options.attributes(), texts.data(), environ))
        return std::nullopt;
    return SpawnedProgram(process, std::move(pipe.reading));
}

SpawnedProgram::SpawnedProgram(pid_t process, FileDescriptor output)
    : m_process(process)
    , m_output(std::move(output))
{
}

SpawnedProgram::SpawnedProgram(SpawnedProgram&& other) noexcept
    : m_process(std::exchange(other.m_process, 0))
    , m_output(std::move(other.m_output))
{
}

SpawnedProgram::~SpawnedProgram()
{
    if (!m_process)
        return;
    ::kill(-m_process, SIGKILL);
    while (::waitpid(m_process, nullptr, 0) < 0 && errno == EINTR) { }
}

std::expected<std::string, ProgramError> SpawnedProgram::awaitOutput(TimePoint deadline, int interruption)
{
    constexpr Milliseconds longest { 60000 };
    std::array<char, 4096> piece {};
    std::string output;
    while (true) {
        if (!await(m_output.get(), interruption, deadline, longest))
            return std::unexpected(ProgramError::outOfTime);
        const auto count = ::read(m_output.get(), piece.data(), piece.size());
        if (count < 0 && (errno == EINTR || errno == EAGAIN))
            continue;
        if (count < 0)
            return std::unexpected(ProgramError::failed);
        if (count == 0)
            break;
        output.append(piece.data(), static_cast<std::size_t>(count));
        if (output.size() > ProgramRunner::largestOutput)
            return std::unexpected(ProgramError::tooMuchOutput);
    }
    if (const auto ended = awaitExit(deadline, interruption); !ended)
        return std::unexpected(ended.error());
    return output;
}

// No descriptor tells of a process's end on every system, and most end as soon as they have closed their output.
std::expected<void, ProgramError> SpawnedProgram::awaitExit(TimePoint deadline, int interruption)
{
    constexpr Milliseconds pause { 5 };
    constexpr int nothing = -1;
    while (true) {
        int status = 0;
        const auto ended = ::waitpid(m_process, &status, WNOHANG);
        if (ended > 0 || (ended < 0 && errno != EINTR)) {
            m_process = 0;
            if (ended > 0 && WIFEXITED(status) && WEXITSTATUS(status) == 0)
                return {};
            return std::unexpected(ProgramError::failed);
        }
        if (!await(nothing, interruption, deadline, pause))
            return std::unexpected(ProgramError::outOfTime);
    }
}

}
