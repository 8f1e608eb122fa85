#pragma once

#include "daemon/BlockingStatus.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace brevanta {

// Decides which of the auto-track sessions that stop the user is told of. One whose budget has run out is told at once.
// Any other is held for a while: it is not told when its application has another session by then, since tracking has
// merely moved on. Time is given in seconds of the continuous clock.
class StopToastArbiter {
public:
    static constexpr double holdSeconds = 10;

    using Sessions = std::vector<AutoTrackSessionInfo>;

    // A status has come: `stopped` are the sessions that it no longer lists, `open` those that it lists; `wallNow` is
    // in seconds since 1970. Gives the sessions whose stop is to be told now.
    [[nodiscard]] Sessions statusArrived(std::span<const AutoTrackSessionInfo> stopped,
        std::span<const AutoTrackSessionInfo> open, double now, double wallNow);

    // Gives the sessions whose stop has been held for long enough.
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
};

}
