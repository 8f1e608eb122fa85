#include "app/LaunchHold.h"

#include <gtest/gtest.h>

namespace brevanta {

namespace {

using Kind = LaunchActivationOutcome::Kind;
using Commands = std::vector<LaunchHold::Command>;

LaunchHold::Event settled(Kind kind, bool replaced = false)
{
    return LaunchHold::ActivationSettled { { kind, replaced } };
}

const LaunchHold::Event armed = LaunchHold::Armed {};
const LaunchHold::Event graceElapsed = LaunchHold::GraceElapsed {};
const LaunchHold::Event deadlineReached = LaunchHold::DeadlineReached {};

}

TEST(LaunchHold, AnActivationThatReplacedNothingReleasesAtOnce)
{
    for (const auto& outcome : { settled(Kind::completed), settled(Kind::failed),
             settled(Kind::willCompleteAfterReboot), settled(Kind::needsUserApproval), settled(Kind::skipped) }) {
        LaunchHold hold;
        EXPECT_EQ(hold.reduce(armed), Commands { LaunchHold::ScheduleDeadline { 5.0 } });
        EXPECT_EQ(hold.reduce(outcome), Commands { LaunchHold::Release { "released (filter activation settled)" } });
        EXPECT_EQ(hold.reduce(deadlineReached), Commands {});
        EXPECT_TRUE(hold.isReleased());
    }
}

TEST(LaunchHold, AReplacedFilterGetsTwoSecondsMore)
{
    for (const auto kind : { Kind::completed, Kind::failed }) {
        LaunchHold hold;
        (void)hold.reduce(armed);
        EXPECT_EQ(hold.reduce(settled(kind, true)), Commands { LaunchHold::ScheduleGrace { 2.0 } });
        EXPECT_FALSE(hold.isReleased());
        EXPECT_EQ(hold.reduce(graceElapsed),
            Commands { LaunchHold::Release { "released (filter activation settled + 2.0s replace grace)" } });
    }
}

TEST(LaunchHold, NoSequenceReleasesTwiceOrBeforeItIsArmed)
{
    const std::vector<LaunchHold::Event> events { armed, settled(Kind::completed), settled(Kind::completed, true),
        graceElapsed, deadlineReached };
    constexpr std::size_t depth = 6;
    std::size_t sequences = 1;
    for (std::size_t level = 0; level < depth; ++level)
        sequences *= events.size();
    for (std::size_t number = 0; number < sequences; ++number) {
        LaunchHold hold;
        bool isArmed = false;
        int releases = 0;
        for (std::size_t level = 0, rest = number; level < depth; ++level, rest /= events.size()) {
            const auto& event = events[rest % events.size()];
            isArmed = isArmed || std::holds_alternative<LaunchHold::Armed>(event);
            for (const auto& command : hold.reduce(event)) {
                ASSERT_TRUE(isArmed);
                releases += std::holds_alternative<LaunchHold::Release>(command);
            }
        }
        ASSERT_LE(releases, 1);
        ASSERT_EQ(releases == 1, hold.isReleased());
    }
}

}
