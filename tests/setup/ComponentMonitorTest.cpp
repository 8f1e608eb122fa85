#include "setup/ComponentMonitor.h"

#include "support/ComponentBench.h"
#include "support/StatusReply.h"

#include <gtest/gtest.h>

namespace brevanta {

namespace {

const DaemonFailure nobodyListens = DaemonError { DaemonError::Kind::connectionFailed, {} };
const DaemonFailure badReply = JsonParseError { .message = "no JSON" };

class ComponentMonitorTest : public testing::Test {
protected:
    void settle() { mainLoop.runPosted(); }

    void pass()
    {
        monitor.filterManager().refresh();
        settle();
    }

    void succeed(const std::string& version = "1.2.3")
    {
        monitor.pollSucceeded(*statusWith({ { "daemon_version", version } }), clock.continuousSeconds());
    }

    void fail(const DaemonFailure& failure)
    {
        monitor.pollFailed(failure, clock.continuousSeconds());
        settle();
    }

    [[nodiscard]] std::string reported() { return monitor.filterHealthReport().at("state").get<std::string>(); }

    FakeClock clock;
    FakeMainLoop mainLoop { clock };
    FakeSystemLog log;
    ComponentBench bench { mainLoop, clock, log };
    ComponentMonitor& monitor { bench.monitor };
};

}

TEST_F(ComponentMonitorTest, TheServicesLineFollowsPollsAndTheSystem)
{
    bench.services.launchChecks.isHeld = false;
    monitor.start();
    settle();
    EXPECT_EQ(monitor.serviceLine(), (ComponentLine { "Blocking Service: Checking…", ComponentAction::none }))
        << "launchd did not say";
    succeed();
    EXPECT_EQ(monitor.serviceLine().title, "✓ Blocking Service 1.2.3");
    mainLoop.advance(6.1);
    EXPECT_EQ(monitor.serviceLine().title, "Blocking Service: Checking…") << "a reply is believed for six seconds";

    fail(nobodyListens);
    EXPECT_EQ(monitor.serviceLine().action, ComponentAction::installService);
    bench.services.programIsInstalled = true;
    bench.services.backgroundItems.answerAll();
    fail(nobodyListens);
    EXPECT_EQ(monitor.serviceLine().action, ComponentAction::restartService);
    fail(badReply);
    EXPECT_EQ(monitor.serviceLine().action, ComponentAction::restartService);
    EXPECT_TRUE(std::holds_alternative<DaemonHealth::Unreachable>(monitor.serviceState()));

    bench.services.backgroundItems.isHeld = false;
    bench.services.backgroundItems.result = BackgroundItem::requiresApproval;
    mainLoop.advance(ComponentMonitor::backgroundItemInterval);
    fail(nobodyListens);
    EXPECT_EQ(monitor.serviceLine().action, ComponentAction::openLoginItemsSettings);
    EXPECT_EQ(bench.switchedOff, std::vector { ProtectiveComponent::blockingService });
    bench.services.backgroundItems.result = BackgroundItem::unknown;
    mainLoop.advance(ComponentMonitor::backgroundItemInterval);
    fail(nobodyListens);
    EXPECT_EQ(monitor.serviceLine().action, ComponentAction::openLoginItemsSettings)
        << "nobody said that it is allowed";
    mainLoop.advance(0.1);
    succeed();
    fail(nobodyListens);
    EXPECT_EQ(monitor.serviceLine().action, ComponentAction::restartService) << "it answered, so it is allowed";
}

TEST_F(ComponentMonitorTest, TheSystemIsAskedAboutAServiceThatFailsButNotAtEveryPoll)
{
    monitor.start();
    for (int second = 0; second < 20; second += 2) {
        fail(nobodyListens);
        mainLoop.advance(2);
    }
    EXPECT_EQ(bench.services.backgroundItems.asked, 1 + 4);
    for (int second = 0; second < 20; second += 2) {
        succeed();
        mainLoop.advance(2);
    }
    EXPECT_EQ(bench.services.backgroundItems.asked, 1 + 4);
    EXPECT_EQ(bench.services.launchChecks.asked, 1) << "polls tell more";
}

TEST_F(ComponentMonitorTest, AnInstallIsNotTakenForASwitchingOff)
{
    succeed();
    monitor.installBegan();
    EXPECT_EQ(monitor.serviceLine().title, "Blocking Service: installing…");
    EXPECT_EQ(monitor.upgradeDecision(), std::nullopt);
    mainLoop.advance(1);
    monitor.installEnded(InstallOutcome::installed);
    EXPECT_EQ(monitor.serviceLine().title, "Blocking Service: starting…");
    bench.services.backgroundItems.isHeld = false;
    bench.services.backgroundItems.result = BackgroundItem::requiresApproval;
    bench.services.programIsInstalled = true;
    fail(nobodyListens);
    EXPECT_EQ(monitor.serviceLine().title, "Blocking Service: starting…");
    mainLoop.advance(20);
    fail(nobodyListens);
    EXPECT_EQ(monitor.serviceLine().title, "⚠ Blocking Service Turned Off in System Settings…");
    EXPECT_EQ(bench.switchedOff, std::vector { ProtectiveComponent::blockingService });
}

TEST_F(ComponentMonitorTest, AnInstallThatDidNotHappenLeavesTheLineAsItWas)
{
    fail(nobodyListens);
    for (const auto outcome : { InstallOutcome::cancelled, InstallOutcome::failed }) {
        monitor.installBegan();
        EXPECT_EQ(monitor.serviceLine().title, "Blocking Service: installing…");
        monitor.installEnded(outcome);
        EXPECT_EQ(monitor.serviceLine().title, "⚠ Install Blocking Service…");
    }
}

TEST_F(ComponentMonitorTest, AnUpdateIsOurDoingUntilTheNewServiceAnswers)
{
    const auto turnOffAfterTheGrace = [this] {
        mainLoop.advance(DaemonHealth::gracePeriod + ComponentMonitor::backgroundItemInterval);
        fail(nobodyListens);
        fail(nobodyListens);
        EXPECT_EQ(monitor.serviceLine().action, ComponentAction::openLoginItemsSettings);
    };
    bench.services.backgroundItems.isHeld = false;
    bench.services.backgroundItems.result = BackgroundItem::requiresApproval;
    bench.services.programIsInstalled = true;
    succeed("1.0");
    monitor.installBegan();
    monitor.installEnded(InstallOutcome::installed);
    turnOffAfterTheGrace();
    EXPECT_TRUE(bench.switchedOff.empty());
    mainLoop.advance(1);
    succeed();
    turnOffAfterTheGrace();
    EXPECT_EQ(bench.switchedOff.size(), 1U) << "the update was over";

    mainLoop.advance(1);
    succeed("1.0");
    monitor.installBegan();
    monitor.installEnded(InstallOutcome::cancelled);
    turnOffAfterTheGrace();
    EXPECT_EQ(bench.switchedOff.size(), 2U) << "there was no update";
}

TEST_F(ComponentMonitorTest, TheFilterIsFollowedAndReported)
{
    EXPECT_EQ(reported(), "cantCheck");
    succeed();
    bench.systemAnswers({}, {});
    pass();
    EXPECT_EQ(monitor.filterLine(), (ComponentLine { "⚠ Install Content Filter…", ComponentAction::activateFilter }));
    EXPECT_EQ(reported(), "off");
    EXPECT_FALSE(monitor.isFilterPresent());

    bench.systemAnswers({ activeExtension }, filterSwitchedOn);
    mainLoop.advance(FilterManager::propertiesInterval);
    succeed();
    pass();
    EXPECT_EQ(monitor.filterLine().title, "✓ Content Filter");
    EXPECT_EQ(reported(), "on");
    EXPECT_TRUE(monitor.isFilterPresent());

    bench.systemAnswers({ activeExtension }, filterSwitchedOff);
    mainLoop.advance(2);
    succeed();
    pass();
    EXPECT_EQ(monitor.filterLine().title, "⚠ Content Filter: Off");
    EXPECT_EQ(bench.switchedOff, std::vector { ProtectiveComponent::contentFilter });

    bench.systemAnswers({ { .isAwaitingUserApproval = true } }, {});
    mainLoop.advance(FilterManager::propertiesInterval);
    pass();
    EXPECT_EQ(monitor.filterLine().action, ComponentAction::openFilterApproval);
    EXPECT_EQ(reported(), "awaitingApproval");

    bench.systemAnswers({ activeExtension }, {});
    bench.filterSystem.preferences.result = std::unexpected(FilterError { "x", 1, {} });
    mainLoop.advance(FilterManager::propertiesInterval);
    pass();
    EXPECT_EQ(monitor.filterLine().title, "Content Filter: Can't check");
    bench.filterSystem.preferences.result = FilterPreferences {};
    bench.filterSystem.properties.result = std::unexpected(FilterError { "x", 1, {} });
    mainLoop.advance(FilterHealth::propertiesLifetime + 1);
    pass();
    EXPECT_EQ(monitor.filterLine().title, "Content Filter: Can't check");
    EXPECT_TRUE(monitor.isFilterPresent()) << "nobody said that it has gone";
    EXPECT_EQ(bench.switchedOff.size(), 1U);
}

TEST_F(ComponentMonitorTest, WhatTheServiceSaysOfTheReportAndItsVersionIsLoggedOnce)
{
    for (const char* answer : { "stale", "stale", "accepted", "stale" })
        monitor.pollSucceeded(*statusWith({ { "filter_health_result", answer }, { "daemon_version", "1.2" } }),
            clock.continuousSeconds());
    EXPECT_EQ(log.lines,
        (std::vector<std::string> {
            "[DaemonUpgrade] daemon 1.2 is older than the bundled 1.2.3: offering the admin-prompt reinstall",
            "[DeviceSetup] daemon answered the filter report: stale",
            "[DeviceSetup] daemon answered the filter report: stale" }));
}

}
