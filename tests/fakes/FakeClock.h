#pragma once

#include "platform/Clock.h"

namespace brevanta {

// Virtual time. All clocks advance together; the wall clock can be set on its own.
class FakeClock final : public Clock {
public:
    [[nodiscard]] double continuousSeconds() const override { return m_seconds; }
    [[nodiscard]] double uptimeSeconds() const override { return m_seconds - m_slept; }
    [[nodiscard]] std::uint64_t rawMonotonicNanoseconds() const override
    {
        return static_cast<std::uint64_t>(m_seconds * 1e9);
    }
    [[nodiscard]] double wallSeconds() const override { return m_seconds + m_wallOffset; }

    // The machine's sleep: nothing runs, and no timer makes up for it.
    void sleep(double seconds)
    {
        m_seconds += seconds;
        m_slept += seconds;
    }
    void setContinuousSeconds(double seconds) { m_seconds = seconds; }
    void setWallSeconds(double seconds) { m_wallOffset = seconds - m_seconds; }

private:
    double m_seconds { 1000 };
    double m_slept { 0 };
    double m_wallOffset { 1'700'000'000 };
};

}
