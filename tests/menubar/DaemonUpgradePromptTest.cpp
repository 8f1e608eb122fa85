#include "menubar/DaemonUpgradePrompt.h"

#include "fakes/FakeMainLoop.h"
#include "fakes/FakePorts.h"
#include "track/AppAlertPresenter.h"

#include <gtest/gtest.h>

namespace brevanta {

namespace {

using namespace DaemonUpgradePolicy;

DaemonHealth::State running(const Decision& decision)
{
    return DaemonHealth::Running { .version = std::nullopt, .upgrade = decision };
}

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
    DaemonHealth::State state { running(Upgrade { "1.0", "1.1" }) };
    bool onboarding { false };
    int installs { 0 };
    DaemonUpgradePrompt prompt { { .alerts = alerts,
        .log = log,
        .serviceState = [this] { return state; },
        .isOnboarding = [this] { return onboarding; },
        .beginInstall = [this] { ++installs; } } };
};

constexpr std::size_t updateNow = 0;
constexpr std::size_t later = 1;

}

TEST_F(DaemonUpgradePromptTest, AnOlderServiceIsOfferedAnUpdateOnce)
{
    for (const auto& nothingToOffer : { DaemonHealth::State { DaemonHealth::Checking {} }, running(Current { "1.1" }),
             running(NewerInstalled { "2", "1.1" }), running(Unknown { "x", "1.1" }) }) {
        state = nothingToOffer;
        update();
        EXPECT_TRUE(panel.presented.empty());
    }
    state = running(Upgrade { "1.0", "1.1" });
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
    state = DaemonHealth::Checking {};
    press(updateNow);
    EXPECT_EQ(
        log.lines.back(), "[MenuBar] Update Now: daemon state not decidable yet; the offer returns on the next poll");
    state = running(Upgrade { "1.0", "1.1" });
    update();
    ASSERT_EQ(panel.presented.size(), 2U);
    state = running(Current { "1.1" });
    press(updateNow);
    EXPECT_EQ(log.lines.back(), "[MenuBar] Update Now: nothing to update any more");
    EXPECT_EQ(installs, 0);
}

TEST_F(DaemonUpgradePromptTest, AnOfferThatIsNoLongerTrueGoesAndComesBackWithWhatIs)
{
    for (const auto& untrue : { DaemonHealth::State { DaemonHealth::NotInstalled {} },
             DaemonHealth::State { DaemonHealth::Starting {} }, running(Current { "1.1" }) }) {
        state = running(Upgrade { "1.0", "1.1" });
        update();
        const auto offers = panel.presented.size();
        state = DaemonHealth::Unreachable {};
        update();
        EXPECT_EQ(panel.onScreen(), 1U) << "it may still be the older one";
        state = untrue;
        update();
        EXPECT_EQ(panel.onScreen(), 0U);
        EXPECT_EQ(panel.presented.size(), offers);
    }
    state = running(Upgrade { "1.0", "1.1" });
    update();
    state = running(Upgrade { std::nullopt, "1.1" });
    update();
    EXPECT_EQ(panel.onScreen(), 1U);
    EXPECT_TRUE(panel.presented.back().informativeText.contains("is an older version"));
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
    prompt.update();
    prompt.update();
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
