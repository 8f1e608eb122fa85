#include "gtk/ClockGtk.h"

#include <ctime>

namespace brevanta {

namespace {

timespec read(clockid_t clock)
{
    timespec time {};
    ::clock_gettime(clock, &time);
    return time;
}

double seconds(clockid_t clock)
{
    const auto time = read(clock);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

}

double ClockGtk::continuousSeconds() const { return seconds(CLOCK_BOOTTIME); }

double ClockGtk::uptimeSeconds() const { return seconds(CLOCK_MONOTONIC); }

std::uint64_t ClockGtk::rawMonotonicNanoseconds() const
{
    const auto time = read(CLOCK_MONOTONIC_RAW);
    return static_cast<std::uint64_t>(time.tv_sec) * 1'000'000'000U + static_cast<std::uint64_t>(time.tv_nsec);
}

double ClockGtk::wallSeconds() const { return seconds(CLOCK_REALTIME); }

}
