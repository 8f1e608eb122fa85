#pragma once

#include "fakes/FakeAnswers.h"
#include "fakes/Recorded.h"
#include "platform/ProgramRunner.h"

namespace brevanta {

// Runs nothing: each run ends as `ends.result` says, posted to the main loop, or once the test has it end.
class FakeProgramRunner final : public ProgramRunner, public Recorded {
public:
    struct Run {
        std::string program;
        std::vector<std::string> arguments;
        double seconds;

        bool operator==(const Run&) const = default;
    };

    explicit FakeProgramRunner(Executor& mainLoop)
        : ends(mainLoop)
    {
    }

    void run(const std::string& program, const std::vector<std::string>& arguments, double seconds,
        std::function<void(std::expected<std::string, ProgramError>)> onEnd) override
    {
        told(program);
        runs.push_back({ .program = program, .arguments = arguments, .seconds = seconds });
        ends.ask(std::move(onEnd));
    }

    std::vector<Run> runs; // All that were asked for, the newest last.
    FakeAnswers<std::expected<std::string, ProgramError>> ends; // To begin with, as without an output.
};

}
