#pragma once

#include "platform/ProgramRunner.h"
#include "posix/FileDescriptor.h"

#include <chrono>
#include <optional>
#include <sys/types.h>

namespace brevanta {

// A pipe that programs which are started later do not get. Both ends are empty when there is none to be had: pipe(2).
struct Pipe {
    FileDescriptor reading;
    FileDescriptor writing;
};
[[nodiscard]] Pipe openPipe();

// A program in a process group of its own, without input, and what it writes to standard output. Used by one thread at
// a time.
class SpawnedProgram {
public:
    using TimePoint = std::chrono::steady_clock::time_point;

    // Nothing when it cannot be started; neither can a text with NUL in it be handed to a program.
    [[nodiscard]] static std::optional<SpawnedProgram> start(
        const std::string& program, const std::vector<std::string>& arguments);

    SpawnedProgram(SpawnedProgram&& other) noexcept;
    SpawnedProgram& operator=(SpawnedProgram&&) = delete;
    // Kills the group, unless the program has ended.
    ~SpawnedProgram();

    // Waits until the program, and whoever it left its output to, has closed it, and the program has ended. It is out
    // of time at the deadline, and when the descriptor `interruption` hangs up; a negative one never does.
    [[nodiscard]] std::expected<std::string, ProgramError> awaitOutput(TimePoint deadline, int interruption);

private:
    SpawnedProgram(pid_t process, FileDescriptor output);
    [[nodiscard]] std::expected<void, ProgramError> awaitExit(TimePoint deadline, int interruption);

    pid_t m_process; // 0 once it has ended.
    FileDescriptor m_output;
};

}
