#pragma once

#include "platform/Clock.h"

namespace brevanta {

// clock_gettime(2) of Linux: CLOCK_BOOTTIME goes on in suspend, CLOCK_MONOTONIC stands still.
class ClockGtk final : public Clock {
public:
    [[nodiscard]] double continuousSeconds() const override;
    [[nodiscard]] double uptimeSeconds() const override;
    [[nodiscard]] std::uint64_t rawMonotonicNanoseconds() const override;
    [[nodiscard]] double wallSeconds() const override;
};

}
