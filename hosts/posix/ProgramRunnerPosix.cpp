#include "posix/ProgramRunnerPosix.h"

#include "posix/SpawnedProgram.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace brevanta {

namespace {

using Clock = std::chrono::steady_clock;

// Not-a-number and what is below 0 count as 0.
Clock::time_point deadlineIn(double seconds)
{
    constexpr double longest = 86400;
    const double sensible = seconds > 0 ? std::min(seconds, longest) : 0;
    return Clock::now() + std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(sensible));
}

std::expected<std::string, ProgramError> runProgram(
    const std::string& program, const std::vector<std::string>& arguments, double seconds, int interruption)
{
    const auto deadline = deadlineIn(seconds);
    auto spawned = SpawnedProgram::start(program, arguments);
    if (!spawned)
        return std::unexpected(ProgramError::notStarted);
    return spawned->awaitOutput(deadline, interruption);
}

}

ProgramRunnerPosix::ProgramRunnerPosix(Executor& mainThread, Executor& queue)
    : m_mainThread(mainThread)
    , m_queue(queue)
{
    auto pipe = openPipe();
    m_interruption = std::make_shared<const FileDescriptor>(std::move(pipe.reading));
    m_otherEnd = std::move(pipe.writing);
}

void ProgramRunnerPosix::run(const std::string& program, const std::vector<std::string>& arguments, double seconds,
    std::function<void(std::expected<std::string, ProgramError>)> onEnd)
{
    const auto number = m_nextRun++;
    m_waiting.emplace(number, std::move(onEnd));
    m_queue.post([this, life = m_life.watch(), mainThread = &m_mainThread, interruption = m_interruption, number,
                     program, arguments, seconds] {
        auto result = runProgram(program, arguments, seconds, interruption->get());
        mainThread->post([this, life, number, result = std::move(result)] {
            if (!life.expired())
                ended(number, result);
        });
    });
}

void ProgramRunnerPosix::ended(std::uint64_t number, Result result)
{
    if (const auto entry = m_waiting.extract(number); !entry.empty())
        entry.mapped()(std::move(result));
}

}
