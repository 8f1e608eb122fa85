#include "filter/DaemonHealth.h"

#include <gtest/gtest.h>

namespace brevanta {

namespace {

using Health = DaemonHealth;
using Kind = Health::PollFailure;

constexpr double now = 1000;
const std::optional<std::string> version = "1.3";
const Health::State running = Health::Running { "1.3", DaemonUpgradePolicy::Current { "1.3" } };
const Health::State checking = Health::Checking {};
const Health::State notInstalled = Health::NotInstalled {};
const Health::State notRunning = Health::NotRunning {};
const Health::State turnedOff = Health::TurnedOffInSettings {};
const Health::State starting = Health::Starting {};
const Health::State unreachable = Health::Unreachable {};

constexpr std::optional<double> noGrace;
constexpr double openGrace = now - 19.999;
constexpr double overGrace = now - 20;

Health healthWith(std::optional<double> graceStartedAt, bool switchedOff = false)
{
    Health health;
    health.bundledVersion = "1.3";
    health.graceStartedAt = graceStartedAt;
    health.backgroundItemRequiresApproval = switchedOff;
    return health;
}

}

TEST(DaemonHealth, BeforeTheFirstPollLaunchdSaysHowItIs)
{
    struct Case {
        std::optional<LaunchCheck> launchCheck;
        bool switchedOff;
        std::optional<double> graceStartedAt;
        Health::State expected;
    };
    for (const auto& [launchCheck, switchedOff, graceStartedAt, expected] : std::initializer_list<Case> {
             { std::nullopt, false, noGrace, checking },
             { std::nullopt, true, noGrace, checking },
             { LaunchCheck::loaded, false, noGrace, checking },
             { LaunchCheck::loaded, true, noGrace, checking },
             { LaunchCheck::notRunning, false, noGrace, notRunning },
             { LaunchCheck::notRunning, true, noGrace, turnedOff },
             { LaunchCheck::notInstalled, false, noGrace, notInstalled },
             { LaunchCheck::notInstalled, true, noGrace, notInstalled },
             { LaunchCheck::notInstalled, true, openGrace, starting },
             { LaunchCheck::notRunning, true, overGrace, turnedOff },
         }) {
        auto health = healthWith(graceStartedAt, switchedOff);
        health.launchCheck = launchCheck;
        EXPECT_TRUE(health.state(now) == expected) << testing::PrintToString(launchCheck) << switchedOff;
        health.installInFlight = true;
        EXPECT_TRUE(health.state(now) == starting);
    }
}

TEST(DaemonHealth, AFailedPollSaysWhatIsWrongOnceTheGraceIsOver)
{
    struct Case {
        Kind kind;
        bool binaryInstalled;
        bool switchedOff;
        Health::State expected;
    };
    for (const auto& [kind, binaryInstalled, switchedOff, expected] : std::initializer_list<Case> {
             { Kind::notListening, true, false, notRunning },
             { Kind::notListening, true, true, turnedOff },
             { Kind::notListening, false, false, notInstalled },
             { Kind::notListening, false, true, notInstalled },
             { Kind::badReply, true, false, unreachable },
             { Kind::badReply, true, true, unreachable },
             { Kind::badReply, false, false, unreachable },
         }) {
        for (const auto& [graceStartedAt, state] :
            { std::pair { noGrace, expected }, { std::optional(overGrace), expected }, { openGrace, starting } }) {
            auto health = healthWith(graceStartedAt, switchedOff);
            health.launchCheck = LaunchCheck::loaded;
            health.recordFailure(kind, binaryInstalled, now);
            EXPECT_TRUE(health.state(now) == state) << binaryInstalled << switchedOff;
            health.installInFlight = true;
            EXPECT_TRUE(health.state(now) == starting);
        }
    }
}

TEST(DaemonHealth, ASuccessIsBelievedWhileItIsFreshAndOfTheNewService)
{
    struct Case {
        double age;
        std::optional<double> graceStartedAt;
        Health::State expected;
    };
    for (const auto& [age, graceStartedAt, expected] : std::initializer_list<Case> {
             { 0, noGrace, running },
             { 6, noGrace, running },
             { 6.001, noGrace, checking },
             { 7, noGrace, checking },
             { 1, now - 1, running },
             { 1.001, now - 1, starting },
             { 7, now - 8, checking },
             { 25, openGrace, starting },
             { 25, overGrace, checking },
         }) {
        auto health = healthWith(graceStartedAt);
        health.launchCheck = LaunchCheck::notInstalled;
        health.recordSuccess(version, now - age);
        EXPECT_TRUE(health.state(now) == expected) << age;
        health.installInFlight = true;
        EXPECT_TRUE(health.state(now) == starting);
    }
}

TEST(DaemonHealth, ARunningServiceIsComparedWithTheBundledOne)
{
    Health health;
    health.bundledVersion = "1.3";
    health.recordSuccess("1.2", now);
    EXPECT_TRUE(
        health.state(now) == Health::State(Health::Running { "1.2", DaemonUpgradePolicy::Upgrade { "1.2", "1.3" } }));
    health.recordSuccess(std::nullopt, now);
    EXPECT_TRUE(health.state(now)
        == Health::State(Health::Running { std::nullopt, DaemonUpgradePolicy::Upgrade { std::nullopt, "1.3" } }));
}

TEST(DaemonHealth, AnOlderPollNeverDisplacesANewerOne)
{
    Health health;
    health.bundledVersion = "1.3";
    health.recordFailure(Kind::badReply, true, now);
    health.recordSuccess(version, now - 0.001);
    EXPECT_TRUE(health.state(now) == unreachable);
    EXPECT_EQ(health.latestSuccessRequestStartedAt, now - 0.001);

    health.recordSuccess(version, now);
    EXPECT_TRUE(health.state(now) == running);
    health.recordFailure(Kind::notListening, false, now - 0.001);
    EXPECT_TRUE(health.state(now) == running);
    health.recordSuccess("1.2", now - 1);
    EXPECT_TRUE(health.state(now) == running);
    EXPECT_EQ(health.latestSuccessRequestStartedAt, now);
    health.recordFailure(Kind::notListening, false, now);
    EXPECT_TRUE(health.state(now) == notInstalled);
}

TEST(DaemonHealth, ASuccessProvesThatAnOlderReadingOfTheBackgroundItemNoLongerHolds)
{
    struct Case {
        double readAt;
        double successAt;
        bool switchedOff;
    };
    for (const auto& [readAt, successAt, switchedOff] :
        { Case { 10, 11, false }, Case { 10, 10, false }, Case { 10, 9.999, true } }) {
        Health health;
        health.recordBackgroundItem(BackgroundItem::requiresApproval, readAt);
        health.recordSuccess(version, successAt);
        EXPECT_EQ(health.backgroundItemRequiresApproval, switchedOff) << successAt;
    }

    // Also when a newer failure keeps the success from being the last event.
    Health health;
    health.recordBackgroundItem(BackgroundItem::requiresApproval, 10);
    health.recordFailure(Kind::notListening, true, 13);
    EXPECT_TRUE(health.state(13) == turnedOff);
    health.recordSuccess(version, 12);
    EXPECT_TRUE(health.state(13) == notRunning);

    // A reading from before that success, or from before the last reading, comes too late.
    health.recordBackgroundItem(BackgroundItem::requiresApproval, 11.999);
    EXPECT_TRUE(health.state(13) == notRunning);
    health.recordBackgroundItem(BackgroundItem::requiresApproval, 12.5);
    health.recordBackgroundItem(BackgroundItem::allowed, 12.4);
    EXPECT_TRUE(health.state(13) == turnedOff);
    health.recordBackgroundItem(BackgroundItem::allowed, 12.5);
    EXPECT_TRUE(health.state(13) == notRunning);
}

}
