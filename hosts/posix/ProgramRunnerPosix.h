#pragma once

#include "base/Executor.h"
#include "base/LifeToken.h"
#include "platform/ProgramRunner.h"
#include "posix/FileDescriptor.h"

#include <cstdint>
#include <map>
#include <memory>

namespace brevanta {

// Programs by posix_spawn(3), each in a process group of its own; their standard error is dropped.
class ProgramRunnerPosix final : public ProgramRunner {
public:
    // `queue` has a thread of its own, which waits for the programs. It ends after the runner and before `mainThread`.
    ProgramRunnerPosix(Executor& mainThread, Executor& queue);

    void run(const std::string& program, const std::vector<std::string>& arguments, double seconds,
        std::function<void(std::expected<std::string, ProgramError>)> onEnd) override;

private:
    using Result = std::expected<std::string, ProgramError>;

    void ended(std::uint64_t number, Result result);

    Executor& m_mainThread;
    Executor& m_queue;
    // Kept here, since the queue is not to destroy what belongs to the main thread.
    std::map<std::uint64_t, std::function<void(Result)>> m_waiting;
    std::uint64_t m_nextRun { 0 };
    std::shared_ptr<const FileDescriptor> m_interruption; // A pipe's end, which hangs up when this object goes.
    FileDescriptor m_otherEnd;
    LifeToken m_life;
};

}
