#include "track/StopToastArbiter.h"

#include <gtest/gtest.h>

namespace brevanta {

namespace {

using Sessions = StopToastArbiter::Sessions;

constexpr double wallNow = 1'700'000'000;

AutoTrackSessionInfo session(const char* sessionId, const char* bundleId, std::optional<double> budgetEnd = {})
{
    return { .bundleId = bundleId, .sessionId = sessionId, .budgetEndEpoch = budgetEnd };
}

}

TEST(StopToastArbiter, AStopIsHeldOrNotToldAtAll)
{
    struct Case {
        const char* what;
        AutoTrackSessionInfo stopped;
        Sessions open;
        double heldFor; // 0 for one that is not told.
    };
    const Case cases[] = {
        { "no budget", session("1", "a"), {}, 10 },
        { "ended before its budget", session("1", "a", wallNow + 0.5), {}, 10 },
        { "budget reached", session("1", "a", wallNow), {}, 5 },
        { "budget long over", session("1", "a", 0), {}, 5 },
        { "another application goes on", session("1", "a"), { session("2", "b") }, 10 },
        { "restarted", session("1", "a"), { session("2", "a") }, 0 },
        { "renewed at the end of its budget", session("1", "a", wallNow), { session("2", "a") }, 0 },
    };
    for (const auto& [what, stopped, open, heldFor] : cases) {
        StopToastArbiter arbiter;
        const Sessions one { stopped };
        const bool held = heldFor > 0;
        EXPECT_EQ(arbiter.statusArrived({ .stopped = one, .open = open }, 50, wallNow), Sessions()) << what;
        EXPECT_EQ(arbiter.nextDue(), held ? std::optional(50 + heldFor) : std::nullopt) << what;
        EXPECT_EQ(arbiter.holds("1", 49.9 + heldFor), held) << what;
        EXPECT_FALSE(arbiter.holds("1", 50 + heldFor)) << what;
        EXPECT_EQ(arbiter.timePassed(49.9 + heldFor), Sessions()) << what;
        EXPECT_EQ(arbiter.timePassed(50 + heldFor), held ? one : Sessions()) << what;
        EXPECT_EQ(arbiter.nextDue(), std::nullopt) << what;
    }
}

TEST(StopToastArbiter, ANewSessionWithinTheHoldTakesBackTheStopOfItsOwnApplicationOnly)
{
    StopToastArbiter arbiter;
    const Sessions stopped { session("1", "a"), session("2", "b"), session("3", "c", wallNow) };
    EXPECT_EQ(arbiter.statusArrived({ .stopped = stopped }, 0, wallNow), Sessions());
    EXPECT_EQ(arbiter.nextDue(), 5);
    EXPECT_EQ(arbiter.statusArrived({ .open = Sessions { session("4", "a") } }, 9.9, wallNow), Sessions { stopped[2] });
    EXPECT_EQ(arbiter.timePassed(100), Sessions { session("2", "b") });
}

TEST(StopToastArbiter, ASessionThatComesAfterTheHoldTakesNothingBack)
{
    StopToastArbiter arbiter;
    const Sessions stopped { session("1", "a") };
    EXPECT_EQ(arbiter.statusArrived({ .stopped = stopped }, 0, wallNow), Sessions());
    EXPECT_EQ(arbiter.statusArrived({ .open = Sessions { session("2", "a") } }, 10, wallNow), stopped);
}

}
