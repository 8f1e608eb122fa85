#pragma once

#include "fakes/FakeAnswers.h"
#include "platform/Administrator.h"

#include <string>
#include <vector>

namespace brevanta {

// Runs nothing: each run ends as `ends.result` says, posted to the main loop, or once the test has it end.
class FakeAdministrator final : public Administrator {
public:
    struct Run {
        std::string script;
        std::string prompt;

        bool operator==(const Run&) const = default;
    };

    explicit FakeAdministrator(Executor& mainLoop)
        : ends(mainLoop)
    {
    }

    void run(const std::string& script, const std::string& prompt,
        std::function<void(std::expected<std::string, AdministratorError>)> onEnd) override
    {
        runs.push_back({ .script = script, .prompt = prompt });
        ends.ask(std::move(onEnd));
    }

    std::vector<Run> runs; // All that were asked for, the newest last.
    FakeAnswers<std::expected<std::string, AdministratorError>> ends; // To begin with, as without an output.
};

}
