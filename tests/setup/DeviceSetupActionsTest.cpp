#include "setup/DeviceSetupActions.h"

#include "support/ComponentBench.h"
#include "support/StatusReply.h"

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

TEST_F(DeviceSetupActionsTest, TheServiceIsInstalledBehindTheSameGateAndUpdatedOnlyWhenItIsOlder)
{
    const auto serviceAnswers = [this](const char* version) {
        bench.monitor.pollSucceeded(*statusWith({ { "daemon_version", version } }), clock.continuousSeconds());
    };
    const auto isIgnored = [this](const char* action, const char* why) {
        const int before = bench.installer.begun;
        EXPECT_EQ(actions.perform(action), SetupActionOutcome::taken);
        EXPECT_EQ(log.lines.back(), std::string("[DeviceSetup] ") + action + " ignored: " + why);
        return bench.installer.begun == before;
    };
    EXPECT_TRUE(isIgnored("setup_update_service", "there is no update to be offered")) << "its version is not known";
    serviceAnswers("1.2.3");
    EXPECT_TRUE(isIgnored("setup_update_service", "there is no update to be offered"));
    EXPECT_EQ(actions.perform("setup_install_service"), SetupActionOutcome::taken);
    EXPECT_EQ(bench.installer.begun, 1);
    EXPECT_EQ(actions.state().at("running"), "setup_install_service");
    EXPECT_TRUE(isIgnored("setup_activate_filter", "setup_install_service is under way"));
    EXPECT_FALSE(bench.endFilterActivation);
    bench.endInstall();
    EXPECT_EQ(actions.state().at("running"), nullptr);

    serviceAnswers("1.0");
    EXPECT_EQ(actions.perform("setup_update_service"), SetupActionOutcome::taken);
    EXPECT_EQ(actions.state().at("running"), "setup_update_service");
    bench.endInstall();
    EXPECT_EQ(bench.installer.begun, 2);

    bench.installer.inFlight = true;
    EXPECT_EQ(actions.state().at("running"), "setup_install_service") << "begun in the menu";
    EXPECT_TRUE(isIgnored("setup_update_service", "setup_install_service is under way"));
}

TEST_F(DeviceSetupActionsTest, WhatWasMissingAtLaunchIsToldBeforeTheSystemHasAnswered)
{
    actions.launched(ServiceProgram::present);
    EXPECT_EQ(actions.state().at("service"), "checking");
    actions.launched(ServiceProgram::absent);
    EXPECT_EQ(actions.state().at("service"), "notInstalled");
    bench.monitor.pollSucceeded(*statusWith({ { "daemon_version", "1.2.3" } }), clock.continuousSeconds());
    actions.launched(ServiceProgram::absent);
    EXPECT_EQ(actions.state().at("service"), "running");
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
