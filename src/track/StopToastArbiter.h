#pragma once

#include "daemon/BlockingStatus.h"

#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace brevanta {

// Decides which of the auto-track sessions that stop the user is told of. Each stop is held for a while, in which
// something else may explain it: another session of the same application, since tracking has merely moved on, or a
// notice of its own, which the service may queue before or after it takes the session off its list. One whose budget
// has run out is held for a shorter while. Time is given in seconds of the continuous clock.
class StopToastArbiter {
public:
    static constexpr double holdSeconds = 10;
    static constexpr double holdSecondsWithoutBudget = 5; // Two more polls.

    using Sessions = std::vector<AutoTrackSessionInfo>;

    struct Change {
        std::span<const AutoTrackSessionInfo> stopped {}; // Listed before, and no longer.
        std::span<const AutoTrackSessionInfo> open {}; // Listed now.
        std::span<const std::string> closed {}; // Identifiers of sessions whose stop is not to be told.
    };

    // A status has come; `wallNow` is in seconds since 1970. Gives the sessions whose stop has been held for long
    // enough.
    [[nodiscard]] Sessions statusArrived(const Change& change, double now, double wallNow);

    // As above.
    [[nodiscard]] Sessions timePassed(double now);

    // When `timePassed` has to be called next; nothing while no stop is held.
    [[nodiscard]] std::optional<double> nextDue() const;

    // Whether the session's stop is held and not yet due.
    [[nodiscard]] bool holds(std::string_view sessionId, double now) const;

private:
    struct Held {
        AutoTrackSessionInfo session;
        double due;
    };

    std::vector<Held> m_held; // In the order in which they fall due.
    std::set<std::string> m_closed; // Of the sessions that are still open.
};

}
