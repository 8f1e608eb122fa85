#pragma once

#include <cstdint>

namespace brevanta {

// The clocks of the machine. Any thread may read them; none of them fails.
class Clock {
public:
    virtual ~Clock() = default;

    // Seconds since an arbitrary instant. Never goes backwards and goes on while the machine sleeps.
    [[nodiscard]] virtual double continuousSeconds() const = 0;

    // Seconds that the machine has been awake since it started.
    [[nodiscard]] virtual double uptimeSeconds() const = 0;

    // CLOCK_MONOTONIC_RAW in nanoseconds: clock_gettime(2) on Linux, clock_gettime_nsec_np(3) on macOS.
    [[nodiscard]] virtual std::uint64_t rawMonotonicNanoseconds() const = 0;

    // Seconds since 1970-01-01 00:00 UTC by the wall clock, which the user or the network may set back.
    [[nodiscard]] virtual double wallSeconds() const = 0;
};

}
