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

TEST(StopToastArbiter, AStopIsToldAtOnceOrHeldOrNotToldAtAll)
{
    struct Case {
        const char* what;
        AutoTrackSessionInfo stopped;
        Sessions open;
        bool toldAtOnce;
        bool held;
    };
    const Case cases[] = {
        { "no budget", session("1", "a"), {}, false, true },
        { "ended before its budget", session("1", "a", wallNow + 0.5), {}, false, true },
        { "budget reached", session("1", "a", wallNow), {}, true, false },
        { "budget long over", session("1", "a", 0), {}, true, false },
        { "another application goes on", session("1", "a"), { session("2", "b") }, false, true },
        { "restarted", session("1", "a"), { session("2", "a") }, false, false },
        { "renewed at the end of its budget", session("1", "a", wallNow), { session("2", "a") }, false, false },
    };
    for (const auto& [what, stopped, open, toldAtOnce, held] : cases) {
        StopToastArbiter arbiter;
        const Sessions one { stopped };
        EXPECT_EQ(arbiter.statusArrived(one, open, 50, wallNow), toldAtOnce ? one : Sessions()) << what;
        EXPECT_EQ(arbiter.nextDue(), held ? std::optional(60.0) : std::nullopt) << what;
        EXPECT_EQ(arbiter.holds("1", 59.9), held) << what;
        EXPECT_FALSE(arbiter.holds("1", 60)) << what;
        EXPECT_EQ(arbiter.timePassed(59.9), Sessions()) << what;
        EXPECT_EQ(arbiter.timePassed(60), held ? one : Sessions()) << what;
        EXPECT_EQ(arbiter.nextDue(), std::nullopt) << what;
    }
}

TEST(StopToastArbiter, ANewSessionWithinTheHoldTakesBackTheStopOfItsOwnApplicationOnly)
{
    StopToastArbiter arbiter;
    const Sessions stopped { session("1", "a"), session("2", "b") };
    EXPECT_EQ(arbiter.statusArrived(stopped, {}, 0, wallNow), Sessions());
    EXPECT_EQ(arbiter.statusArrived({}, Sessions { session("3", "a") }, 9.9, wallNow), Sessions());
    EXPECT_EQ(arbiter.timePassed(100), Sessions { session("2", "b") });
}

TEST(StopToastArbiter, ASessionThatComesAfterTheHoldTakesNothingBack)
{
    StopToastArbiter arbiter;
    const Sessions stopped { session("1", "a") };
    EXPECT_EQ(arbiter.statusArrived(stopped, {}, 0, wallNow), Sessions());
    EXPECT_EQ(arbiter.statusArrived({}, Sessions { session("2", "a") }, 10, wallNow), stopped);
}

}
