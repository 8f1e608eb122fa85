#pragma once

#include "filter/LaunchActivationOutcome.h"

#include <string>
#include <variant>
#include <vector>

namespace brevanta {

// Holds back the first load of the page at launch until the activation of the content filter has settled, so that the
// load does not fall into the moment in which the filter is replaced; but never for longer than the deadline. A pure
// value; releases exactly once.
class LaunchHold {
public:
    static constexpr double deadline = 5.0; // Seconds from arming.
    static constexpr double replaceGrace = 2.0; // Seconds that a replaced filter takes to let traffic through again.

    struct Armed { };
    struct ActivationSettled {
        LaunchActivationOutcome outcome;
    };
    struct GraceElapsed { };
    struct DeadlineReached { };
    using Event = std::variant<Armed, ActivationSettled, GraceElapsed, DeadlineReached>;

    // Feed back DeadlineReached, or GraceElapsed, after so many seconds.
    struct ScheduleDeadline {
        double after;
        bool operator==(const ScheduleDeadline&) const = default;
    };
    struct ScheduleGrace {
        double after;
        bool operator==(const ScheduleGrace&) const = default;
    };
    // Let the page load; the reason goes to the log.
    struct Release {
        std::string reason;
        bool operator==(const Release&) const = default;
    };
    using Command = std::variant<ScheduleDeadline, ScheduleGrace, Release>;

    [[nodiscard]] std::vector<Command> reduce(const Event& event);

    [[nodiscard]] bool isReleased() const { return m_phase == Phase::released; }

    bool operator==(const LaunchHold&) const = default;

private:
    enum class Phase { idle, waiting, inGrace, released };

    [[nodiscard]] std::vector<Command> settled(const LaunchActivationOutcome& outcome);
    [[nodiscard]] std::vector<Command> release(std::string reason);

    Phase m_phase { Phase::idle };
};

}
