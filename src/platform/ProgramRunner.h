#pragma once

#include <cstddef>
#include <expected>
#include <functional>
#include <string>
#include <vector>

namespace brevanta {

enum class ProgramError {
    notStarted, // There is no such program, or the system refused to start it.
    failed, // It ended with another status than 0, or by a signal.
    outOfTime, // It was killed, since its time was up.
    tooMuchOutput, // It was killed, since it wrote more than `largestOutput`.
};

// Runs programs of the system. Main thread only.
class ProgramRunner {
public:
    virtual ~ProgramRunner() = default;

    static constexpr std::size_t largestOutput { 1024UL * 1024UL }; // In bytes.

    // Runs the program at this absolute path with these arguments, without input and as the user, and gives what it
    // wrote to standard output. After `seconds` it is killed, with the processes of its group. `onEnd` is called
    // exactly once on the main thread, after this call has returned, unless the runner is destroyed first: what runs is
    // killed then. Programs run one after another; the time of each begins with itself.
    virtual void run(const std::string& program, const std::vector<std::string>& arguments, double seconds,
        std::function<void(std::expected<std::string, ProgramError>)> onEnd)
        = 0;
};

}
