#include "gtk/ClockGtk.h"

#include <chrono>
#include <gtest/gtest.h>

namespace brevanta {

TEST(ClockGtkTest, TheWallClockIsTheSystemsOwn)
{
    const auto now = std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
    EXPECT_NEAR(ClockGtk().wallSeconds(), now, 5);
}

TEST(ClockGtkTest, TheMachineWasAwakeNoLongerThanItRuns)
{
    const ClockGtk clock;
    const double awake = clock.uptimeSeconds();
    EXPECT_GT(awake, 0);
    EXPECT_LE(awake, clock.continuousSeconds());
}

TEST(ClockGtkTest, ClocksGoForwardsAndInTheirUnits)
{
    const ClockGtk clock;
    const double continuous = clock.continuousSeconds();
    const auto raw = clock.rawMonotonicNanoseconds();
    while (clock.continuousSeconds() < continuous + 0.05) { }
    const auto passed = static_cast<double>(clock.rawMonotonicNanoseconds() - raw) / 1e9;
    EXPECT_GE(passed, 0.045);
    EXPECT_LT(passed, 30);
}

}
