#include "filter/OffNoticeTracker.h"

#include "fakes/FakePorts.h"

#include <gtest/gtest.h>

namespace brevanta {

namespace {

constexpr double now = 1000;
constexpr auto service = ProtectiveComponent::blockingService;
constexpr auto filter = ProtectiveComponent::contentFilter;
constexpr ConclusiveReading on { ConclusiveState::on, false };
constexpr ConclusiveReading off { ConclusiveState::off, false };
constexpr ConclusiveReading offByUs { ConclusiveState::off, true };
constexpr ConclusiveReading unclear {};

using Posts = std::vector<std::pair<ProtectiveComponent, std::int64_t>>;

class OffNoticeTrackerTest : public testing::Test {
protected:
    // As a run of the client would, with what the runs before it have stored.
    void run(ProtectiveComponent component, const std::vector<ConclusiveReading>& readings)
    {
        OffNoticeTracker tracker(
            defaults, log, [this](auto posted, std::int64_t change) { posts.emplace_back(posted, change); });
        for (const auto& reading : readings)
            tracker.update(component, reading);
        generation = tracker.generation(component);
    }

    FakeUserDefaults defaults;
    FakeSystemLog log;
    Posts posts;
    std::int64_t generation { 0 };
};

DaemonHealth serviceThat(std::optional<DaemonHealth::LastEvent> lastEvent, bool switchedOff = false)
{
    DaemonHealth health;
    health.bundledVersion = "1.3";
    health.lastEvent = std::move(lastEvent);
    health.backgroundItemRequiresApproval = switchedOff;
    return health;
}

const DaemonHealth runningService = serviceThat(DaemonHealth::Success { now, "1.3" });
const DaemonHealth stoppedService
    = serviceThat(DaemonHealth::Failure { DaemonHealth::PollFailure::notListening, true, now });
const DaemonHealth absentService
    = serviceThat(DaemonHealth::Failure { DaemonHealth::PollFailure::notListening, false, now });

FilterHealth filterThat(std::optional<bool> enabled)
{
    FilterHealth health;
    health.recordProperties({ { .isEnabled = true, .shortVersion = {}, .buildVersion = {} } }, now);
    if (enabled)
        health.config = FilterHealth::Enabled { *enabled, now };
    return health;
}

}

TEST(ConclusiveReading, OnlyOnAndOffAreConclusive)
{
    EXPECT_EQ(conclusiveReading(runningService, false, now), on);
    EXPECT_EQ(conclusiveReading(serviceThat(stoppedService.lastEvent, true), false, now), off);
    EXPECT_EQ(conclusiveReading(stoppedService, false, now), unclear);
    EXPECT_EQ(conclusiveReading(absentService, false, now), unclear);
    EXPECT_EQ(conclusiveReading(runningService, false, now + 7), unclear);

    EXPECT_EQ(conclusiveReading(filterThat(true), runningService, false, now), on);
    EXPECT_EQ(conclusiveReading(filterThat(false), runningService, false, now), off);
    EXPECT_EQ(conclusiveReading(filterThat(std::nullopt), runningService, false, now), unclear);
    EXPECT_EQ(conclusiveReading(FilterHealth { .requestAwaitingApproval = true }, runningService, false, now), unclear);
}

TEST(ConclusiveReading, WhatWeDoToTheServiceIsOurDoing)
{
    auto installing = runningService;
    installing.installInFlight = true;
    auto inGrace = runningService;
    inGrace.graceStartedAt = now - 19.999;
    auto afterGrace = runningService;
    afterGrace.graceStartedAt = now - 20;
    struct Case {
        const char* name;
        const DaemonHealth& health;
        bool upgradeHeld;
        bool ofService;
        bool ofFilter;
    };
    for (const auto& [name, health, upgradeHeld, ofService, ofFilter] : {
             Case { "idle", runningService, false, false, false },
             Case { "upgrading", runningService, true, true, true },
             Case { "installing", installing, false, true, true },
             Case { "in grace", inGrace, false, true, true },
             Case { "after grace", afterGrace, false, false, false },
             Case { "stopped", stoppedService, false, false, false },
             Case { "not installed", absentService, false, false, true },
         }) {
        EXPECT_EQ(conclusiveReading(health, upgradeHeld, now).selfCaused, ofService) << name;
        EXPECT_EQ(conclusiveReading(filterThat(false), health, upgradeHeld, now).selfCaused, ofFilter) << name;
    }
}

TEST_F(OffNoticeTrackerTest, AChangeFromOnToOffIsNoticedOnce)
{
    struct Case {
        const char* name;
        std::vector<ConclusiveReading> readings;
        Posts posts;
        std::int64_t generation;
    };
    for (const auto& [name, readings, expected, changes] : std::initializer_list<Case> {
             { "never conclusive", { unclear, unclear }, {}, 0 },
             { "off from the first", { off, off }, {}, 1 },
             { "on", { on, on }, {}, 1 },
             { "switched off", { on, off, off }, { { filter, 2 } }, 2 },
             { "switched off while unclear", { on, unclear, off }, { { filter, 2 } }, 2 },
             { "switched off again", { on, off, on, off }, { { filter, 2 }, { filter, 4 } }, 4 },
             { "by us", { on, offByUs, off }, {}, 2 },
         }) {
        defaults = {};
        posts.clear();
        run(filter, readings);
        EXPECT_EQ(posts, expected) << name;
        EXPECT_EQ(generation, changes) << name;
    }
}

TEST_F(OffNoticeTrackerTest, TheLastConclusiveStateOutlivesTheClient)
{
    run(service, { on, unclear });
    EXPECT_EQ(defaults.get("pf.lastConclusive.blockingService"), DefaultsValue("on"));
    run(service, { unclear, off });
    EXPECT_EQ(posts, (Posts { { service, 1 } }));
    EXPECT_EQ(log.lines, std::vector<std::string> { "[DeviceSetup] blockingService switched off: posting the notice" });
    run(service, { off });
    EXPECT_EQ(posts.size(), 1U);

    // The other component has its own.
    EXPECT_FALSE(defaults.get("pf.lastConclusive.contentFilter"));
    run(filter, { on });
    run(filter, { offByUs });
    EXPECT_EQ(defaults.get("pf.lastConclusive.contentFilter"), DefaultsValue("off"));
    run(filter, { off });
    EXPECT_EQ(posts.size(), 1U);
    run(filter, { on, off });
    EXPECT_EQ(log.lines.back(), "[DeviceSetup] contentFilter switched off: posting the notice");
}

TEST_F(OffNoticeTrackerTest, WhatIsStoredButUnreadableCountsAsUnknown)
{
    for (const auto& stored : { DefaultsValue("On"), DefaultsValue(""), DefaultsValue(true), DefaultsValue(1.0) }) {
        defaults.set("pf.lastConclusive.contentFilter", stored);
        run(filter, { off });
        EXPECT_TRUE(posts.empty());
        EXPECT_EQ(defaults.get("pf.lastConclusive.contentFilter"), DefaultsValue("off"));
    }
}

}
