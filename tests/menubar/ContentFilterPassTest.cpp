#include "menubar/ContentFilterPass.h"

#include "support/ComponentBench.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace brevanta {

namespace {

using Kind = LaunchActivationOutcome::Kind;

class ContentFilterPassTest : public testing::Test {
protected:
    void run()
    {
        pass.run();
        mainLoop.runPosted();
    }

    [[nodiscard]] bool logs(const std::string& line) const
    {
        return std::ranges::find(log.lines, line) != log.lines.end();
    }

    FakeClock clock;
    FakeMainLoop mainLoop { clock };
    FakeSystemLog log;
    FakeNotificationCenter notifications { mainLoop };
    ComponentBench bench { mainLoop, clock, log };
    int reads { 0 };
    std::vector<LaunchActivationOutcome> settled;
    ContentFilterPass pass { { .monitor = bench.monitor,
        .notifications = notifications,
        .log = log,
        .onRead = [this] { ++reads; },
        .onSettled = [this](const LaunchActivationOutcome& outcome) { settled.push_back(outcome); } } };
};

}

TEST_F(ContentFilterPassTest, NothingIsDecidedBeforeTheSystemAnswers)
{
    run();
    EXPECT_TRUE(settled.empty() && log.lines.empty());
    bench.systemAnswers({}, {});
    bench.filterSystem.preferences.answerAll();
    bench.filterSystem.properties.answerAll();
    mainLoop.runPosted();
    EXPECT_EQ(settled, std::vector { LaunchActivationOutcome {} });
    EXPECT_TRUE(logs("[FilterManager] launch policy submitted nothing (no activated extension)"));
    EXPECT_TRUE(bench.filterSystem.requests.empty()) << "the first time is the user's to start";
    EXPECT_GT(reads, 0);
    const auto lines = log.lines.size();
    run();
    EXPECT_EQ(log.lines.size(), lines) << "a decision is told once";
}

TEST_F(ContentFilterPassTest, AnOlderExtensionIsReplacedOnceAndTheFirstLoadWaitsForIt)
{
    bench.filterSystem.bundled = ExtensionRecord { .shortVersion = "2.0", .buildVersion = "1" };
    bench.systemAnswers({ activeExtension }, filterSwitchedOn);
    run();
    ASSERT_EQ(bench.filterSystem.requests.size(), 1U);
    EXPECT_TRUE(settled.empty());
    bench.filterSystem.requests[0].askWhetherToReplace(activeExtension, *bench.filterSystem.bundled);
    bench.filterSystem.requests[0].end(ExtensionRequestResult::completed);
    mainLoop.runPosted();
    EXPECT_EQ(settled, (std::vector { LaunchActivationOutcome { Kind::completed, true } }));
    EXPECT_TRUE(logs("[MenuBar] launch upgrade request ended: completed, an older extension was replaced"));
    mainLoop.advance(FilterManager::propertiesInterval);
    run();
    EXPECT_EQ(bench.filterSystem.requests.size(), 1U);
}

TEST_F(ContentFilterPassTest, AReplacementThatWaitsForTheUserHoldsNothingUp)
{
    bench.filterSystem.bundled = ExtensionRecord { .shortVersion = "2.0", .buildVersion = "1" };
    bench.systemAnswers({ activeExtension }, filterSwitchedOn);
    run();
    notifications.removed.clear();
    bench.filterSystem.requests.at(0).needUserApproval();
    mainLoop.runPosted();
    EXPECT_EQ(settled, (std::vector { LaunchActivationOutcome { Kind::needsUserApproval, false } }));
    EXPECT_TRUE(logs("[MenuBar] launch upgrade parked on approval: menu relabelled, no guide"));
    EXPECT_EQ(bench.monitor.filterLine().action, ComponentAction::openFilterApproval);
    EXPECT_TRUE(bench.panel.presented.empty());
    run();
    EXPECT_TRUE(notifications.removed.empty());
    bench.filterSystem.requests[0].end(ExtensionRequestResult::completed);
    mainLoop.runPosted();
    EXPECT_EQ(notifications.removed, std::vector<std::string> { "filterApproval" });
    EXPECT_EQ(settled.size(), 1U);
}

}
