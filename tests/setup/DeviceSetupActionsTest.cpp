#include "setup/DeviceSetupActions.h"

#include "support/ComponentBench.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace brevanta {

namespace {

class DeviceSetupActionsTest : public testing::Test {
protected:
    FakeClock clock;
    FakeMainLoop mainLoop { clock };
    FakeSystemLog log;
    ComponentBench bench { mainLoop, clock, log };
    DeviceSetupActions& actions { bench.deviceSetup };
    int changes { 0 };
};

}

TEST_F(DeviceSetupActionsTest, OneActionRunsAtATimeAndThePageIsTold)
{
    actions.setChangeHandler([this] { ++changes; });
    EXPECT_EQ(actions.perform("setup_activate_filter"), SetupActionOutcome::taken);
    EXPECT_EQ(actions.state().at("running"), "setup_activate_filter");
    EXPECT_EQ(changes, 1);
    const auto end = std::exchange(bench.endFilterActivation, nullptr);
    EXPECT_EQ(actions.perform("setup_activate_filter"), SetupActionOutcome::taken);
    EXPECT_FALSE(bench.endFilterActivation) << "it was not begun again";
    EXPECT_EQ(log.lines.back(), "[DeviceSetup] setup_activate_filter ignored: setup_activate_filter is under way");
    end();
    EXPECT_EQ(actions.state().at("running"), nullptr);
    EXPECT_EQ(actions.perform("setup_open_filter_settings"), SetupActionOutcome::taken);
    EXPECT_EQ(actions.perform("setup_open_login_items"), SetupActionOutcome::taken);
    EXPECT_EQ(bench.settingsOpened, (std::vector<std::string> { "filter", "login items" }));
    EXPECT_EQ(actions.perform("setup_format_disk"), SetupActionOutcome::unknown);
}

TEST_F(DeviceSetupActionsTest, OnboardingEndsWithThePageThatBeganIt)
{
    EXPECT_EQ(actions.perform("setup_onboarding_started"), SetupActionOutcome::taken);
    EXPECT_TRUE(actions.isOnboardingActive() && actions.state().at("onboarding"));
    actions.pageChanged();
    EXPECT_FALSE(actions.isOnboardingActive());
}

TEST_F(DeviceSetupActionsTest, TheFilterIsRemovableWhileItIsThereAndTheServiceIsNot)
{
    EXPECT_FALSE(actions.isFilterRemovable());
    bench.systemAnswers({ activeExtension }, {});
    bench.monitor.filterManager().refresh();
    mainLoop.runPosted();
    EXPECT_TRUE(actions.isFilterRemovable());
    bench.services.programIsInstalled = true;
    EXPECT_FALSE(actions.isFilterRemovable());
}

}
