#include "menubar/FilterSettingsGuide.h"

#include "fakes/FakeMainLoop.h"
#include "fakes/FakePorts.h"
#include "track/AppAlertPresenter.h"

#include <gtest/gtest.h>

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
    EXPECT_EQ(log.lines,
        (std::vector<std::string> { "[MenuBar] versioned System Settings pane did not open; trying the fallback pane",
            "[MenuBar] System Settings did not open at all; showing the manual path" }));
    ASSERT_EQ(panel.presented.size(), 1U);
    EXPECT_EQ(panel.presented[0].identifier, "settingsOpenFailed");
    EXPECT_EQ(panel.presented[0].style, AlertStyle::warning);
    EXPECT_EQ(panel.presented[0].informativeText,
        "Open System Settings yourself: General, then Login Items & Extensions, then Network Extensions, and turn on "
        "Brevanta Filter.");
    guide.openLoginItemsSettings();
    mainLoop.runPosted();
    EXPECT_EQ(log.lines.back(), "[MenuBar] the Login Items pane did not open");
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
