#pragma once

#include "service/Command.h"

#include <cstddef>
#include <expected>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace brevanta::service {

// Commands with the seconds at which they are to be run, read from lines of "at SECONDS COMMAND" or "COMMAND" (at the
// start).
class Scenario {
public:
    struct Step {
        double at = 0;
        Command command;
        std::string origin;
    };

    // Every line is checked before the first is run; an error names the file and the line.
    [[nodiscard]] static std::expected<Scenario, ServiceError> parse(
        const std::string& fileName, std::string_view text);
    [[nodiscard]] static std::expected<Scenario, ServiceError> load(const std::string& path);

    // When the next step is due.
    [[nodiscard]] std::optional<double> nextAt() const;
    // The next step, once its time has come.
    [[nodiscard]] const Step* takeDue(double now);

private:
    std::vector<Step> m_steps;
    std::size_t m_next = 0;
};

}
