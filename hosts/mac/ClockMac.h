#pragma once

#include "platform/Clock.h"

namespace brevanta {

class ClockMac final : public Clock {
public:
    [[nodiscard]] double continuousSeconds() const override;
    [[nodiscard]] double uptimeSeconds() const override;
    [[nodiscard]] std::uint64_t rawMonotonicNanoseconds() const override;
    [[nodiscard]] double wallSeconds() const override;
};

}
