#include "menubar/FilterSettingsGuide.h"

#include "fakes/FakeMainLoop.h"
#include "fakes/FakePorts.h"
#include "track/AppAlertPresenter.h"

#include <gtest/gtest.h>
#include <ranges>

namespace brevanta {

namespace {

class FilterSettingsGuideTest : public testing::Test {
protected:
    FakeClock clock;
    FakeMainLoop mainLoop { clock };
    FakeAlertPanel panel { mainLoop };
    FakeSystemLog log;
    FakeWorkspace workspace { mainLoop };
    AppAlertPresenter alerts { panel, mainLoop };
    FilterSettingsGuide guide { alerts, workspace, log, { .major = 15, .minor = 1, .patch = 0 } };
};

}

TEST_F(FilterSettingsGuideTest, ThePaneThatOpensIsTheLastThatIsTried)
{
    guide.openFilterApprovalPane();
    mainLoop.runPosted();
    EXPECT_EQ(workspace.opened,
        std::vector<std::string> { "x-apple.systempreferences:com.apple.ExtensionsPreferences?"
                                   "extensionPointIdentifier=com.apple.system_extension.network_extension."
                                   "extension-point" });
    EXPECT_TRUE(log.lines.empty() && panel.presented.empty());
}

TEST_F(FilterSettingsGuideTest, WhereNoPaneOpensTheWayIsTold)
{
    workspace.outcome = OpenOutcome::refused;
    guide.openFilterApprovalPane();
    mainLoop.runPosted();
    EXPECT_EQ(workspace.opened.size(), 2U);
    guide.openLoginItemsSettings();
    mainLoop.runPosted();
    EXPECT_EQ(log.lines,
        (std::vector<std::string> { "[MenuBar] versioned System Settings pane did not open; trying the fallback pane",
            "[MenuBar] System Settings did not open at all; showing the manual path",
            "[MenuBar] the Login Items pane did not open" }));
    panel.answer({ .end = AlertEnd::button, .button = 0 });
    mainLoop.runPosted();
    const Alert filterPath { .identifier = "settingsOpenFailed",
        .style = AlertStyle::warning,
        .message = "System Settings did not open",
        .informativeText = "Open System Settings yourself: General, then Login Items & Extensions, then Network "
                           "Extensions, and turn on Brevanta Filter.",
        .buttons = { "OK" } };
    auto loginItemsPath = filterPath;
    loginItemsPath.identifier = "loginItemsOpenFailed";
    loginItemsPath.informativeText = "Open System Settings yourself: General, then Login Items & Extensions, and allow "
                                     "Brevanta to run in the background.";
    EXPECT_EQ(panel.presented, (std::vector { filterPath, loginItemsPath }));
}

TEST_F(FilterSettingsGuideTest, TheWayIsTakenBackOnceThereIsNothingToDoThere)
{
    using enum FilterStatus;
    const DaemonHealth::State turnedOff = DaemonHealth::TurnedOffInSettings {};
    const DaemonHealth::State unclear = DaemonHealth::Checking {};
    struct Case {
        void (FilterSettingsGuide::*open)();
        std::vector<std::pair<FilterStatus, DaemonHealth::State>> seen; // The first before the alert.
        bool isSettled;
    };
    const auto filter = &FilterSettingsGuide::openFilterApprovalPane;
    const auto loginItems = &FilterSettingsGuide::openLoginItemsSettings;
    const DaemonHealth::State notRunning = DaemonHealth::NotRunning {};
    workspace.outcome = OpenOutcome::refused;
    for (const auto& [open, seen, isSettled] : std::initializer_list<Case> {
             { filter, { { awaitingApproval, unclear }, { checking, unclear }, { cantCheck, turnedOff } }, false },
             { filter, { { awaitingApproval, unclear }, { checking, unclear }, { on, turnedOff } }, true },
             { filter, { { awaitingApproval, unclear }, { off, unclear } }, true },
             { filter, { { off, turnedOff }, { off, notRunning } }, false },
             { filter, { { off, unclear }, { awaitingApproval, unclear } }, false },
             { filter, { { off, unclear }, { on, unclear } }, true },
             { filter, { { on, unclear }, { on, unclear } }, false }, // The page may open the pane at any time.
             { loginItems, { { awaitingApproval, turnedOff }, { on, unclear } }, false },
             { loginItems, { { on, turnedOff }, { on, DaemonHealth::Starting {} } }, false },
             { loginItems, { { on, turnedOff }, { on, unclear }, { on, notRunning } }, true },
             { loginItems, { { on, turnedOff }, { on, DaemonHealth::Running {} } }, true },
         }) {
        guide.componentsChanged(seen.front().first, seen.front().second);
        (guide.*open)();
        mainLoop.runPosted();
        ASSERT_EQ(panel.onScreen(), 1U);
        for (const auto& [status, service] : seen | std::views::drop(1))
            guide.componentsChanged(status, service);
        mainLoop.runPosted();
        EXPECT_EQ(panel.onScreen(), isSettled ? 0U : 1U);
        panel.answer({ .end = AlertEnd::button, .button = 0 });
        mainLoop.runPosted();
    }
}

TEST_F(FilterSettingsGuideTest, TheApprovalIsExplainedOnceAndLeadsToThePane)
{
    guide.showApprovalAlert();
    guide.showApprovalAlert();
    ASSERT_EQ(panel.presented.size(), 1U);
    panel.answer({ .end = AlertEnd::button, .button = 0 });
    mainLoop.runPosted();
    EXPECT_EQ(workspace.opened.size(), 1U);
    guide.showApprovalAlert();
    EXPECT_EQ(panel.presented.size(), 1U);
}

}
