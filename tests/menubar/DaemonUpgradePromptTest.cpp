#include "menubar/DaemonUpgradePrompt.h"

#include "fakes/FakeMainLoop.h"
#include "fakes/FakePorts.h"
#include "track/AppAlertPresenter.h"

#include <gtest/gtest.h>

namespace brevanta {

namespace {

using namespace DaemonUpgradePolicy;

class DaemonUpgradePromptTest : public testing::Test {
protected:
    void update()
    {
        prompt.update();
        mainLoop.runPosted();
    }

    void press(std::size_t button)
    {
        panel.answer({ .end = AlertEnd::button, .button = button });
        mainLoop.runPosted();
    }

    FakeClock clock;
    FakeMainLoop mainLoop { clock };
    FakeAlertPanel panel { mainLoop };
    FakeSystemLog log;
    AppAlertPresenter alerts { panel, mainLoop };
    std::optional<Decision> decision { Upgrade { "1.0", "1.1" } };
    bool onboarding { false };
    int installs { 0 };
    DaemonUpgradePrompt prompt { { .alerts = alerts,
        .log = log,
        .decide = [this] { return decision; },
        .isOnboarding = [this] { return onboarding; },
        .beginInstall = [this] { ++installs; } } };
};

constexpr std::size_t updateNow = 0;
constexpr std::size_t later = 1;

}

TEST_F(DaemonUpgradePromptTest, AnOlderServiceIsOfferedAnUpdateOnce)
{
    for (const auto& nothingToOffer : { std::optional<Decision> {}, std::optional<Decision> { Current { "1.1" } },
             std::optional<Decision> { NewerInstalled { "2", "1.1" } },
             std::optional<Decision> { Unknown { "x", "1.1" } } }) {
        decision = nothingToOffer;
        update();
        EXPECT_TRUE(panel.presented.empty());
    }
    decision = Upgrade { "1.0", "1.1" };
    update();
    update();
    ASSERT_EQ(panel.presented.size(), 1U);
    EXPECT_EQ(panel.presented[0].message, "Update the blocking service");
    EXPECT_EQ(panel.presented[0].informativeText,
        "Brevanta 1.1 is installed, but the blocking service on this Mac is still version 1.0. Updating it takes a few "
        "seconds and asks for your administrator password.");
    press(later);
    update();
    EXPECT_EQ(panel.presented.size(), 1U);
    EXPECT_EQ(installs, 0);
}

TEST_F(DaemonUpgradePromptTest, UpdateNowGoesByWhatIsTrueThen)
{
    update();
    decision = std::nullopt;
    press(updateNow);
    EXPECT_EQ(
        log.lines.back(), "[MenuBar] Update Now: daemon state not decidable yet; the offer returns on the next poll");
    decision = Upgrade { "1.0", "1.1" };
    update();
    ASSERT_EQ(panel.presented.size(), 2U);
    decision = Current { "1.1" };
    press(updateNow);
    EXPECT_EQ(log.lines.back(), "[MenuBar] Update Now: nothing to update any more");
    EXPECT_EQ(installs, 0);
}

TEST_F(DaemonUpgradePromptTest, UpdateNowInstalls)
{
    update();
    press(updateNow);
    EXPECT_EQ(installs, 1);
}

TEST_F(DaemonUpgradePromptTest, TheOfferMakesWayForTheSetUpAndComesBackAfterIt)
{
    onboarding = true;
    update();
    EXPECT_TRUE(panel.presented.empty());
    onboarding = false;
    update();
    ASSERT_EQ(panel.presented.size(), 1U);
    onboarding = true;
    update();
    update();
    EXPECT_EQ(log.lines,
        std::vector<std::string> { "[DaemonUpgrade] onboarding started: dismissing the update prompt until it ends" });
    onboarding = false;
    update();
    ASSERT_EQ(panel.presented.size(), 2U);
    press(later);
    onboarding = true;
    update();
    onboarding = false;
    update();
    EXPECT_EQ(panel.presented.size(), 2U) << "it was answered";
}

}
