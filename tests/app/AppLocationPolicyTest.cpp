#include "app/AppLocationPolicy.h"

#include "app/AppLocationGate.h"
#include "fakes/FakeMainLoop.h"
#include "fakes/FakePorts.h"

#include <gtest/gtest.h>

namespace brevanta {

namespace {

using AppLocationPolicy::Context;
using Reason = AppLocationPolicy::IneligibleReason;

constexpr auto applications = "/Applications";
constexpr auto usersApplications = "/Users/ada/Applications";

Context at(const std::filesystem::path& bundle)
{
    return { .resolvedBundleURL = bundle,
        .resolvedSystemApplicationsURL = applications,
        .volumeIsReadOnly = false,
        .resolvedUserApplicationsURL = usersApplications };
}

}

TEST(AppLocationPolicy, OnlyTheTopOfTheMainApplicationsFolderIsRight)
{
    const struct {
        const char* bundle;
        std::optional<Reason> expected;
    } cases[] = {
        { "/Applications/Brevanta.app", std::nullopt },
        { "/Applications/Brevanta.app/", std::nullopt },
        { "/Applications/./Tools/../Brevanta.app", std::nullopt },
        { "/Applications/AppTranslocation", std::nullopt },
        { "/Applications/Tools/Brevanta.app", Reason::nestedBundle },
        { "/Applications", Reason::elsewhere },
        { "/Applications2/Brevanta.app", Reason::elsewhere },
        { "/applications/Brevanta.app", Reason::elsewhere },
        { "/Volumes/Copy/Applications/Brevanta.app", Reason::elsewhere },
        { "/Users/ada/Downloads/Brevanta.app", Reason::elsewhere },
        { "/Users/ada/Applications/Brevanta.app", Reason::userApplications },
        { "/Users/ada/Applications/Tools/Brevanta.app", Reason::userApplications },
        { "/Users/ada/Applications2/Brevanta.app", Reason::elsewhere },
        { "/private/var/folders/x/AppTranslocation/7E/d/Brevanta.app", Reason::translocated },
        { "/Applications/AppTranslocation/Brevanta.app", Reason::translocated },
        { "", Reason::elsewhere },
        { "Applications/Brevanta.app", Reason::elsewhere },
    };
    for (const auto& [bundle, expected] : cases)
        EXPECT_EQ(classify(at(bundle)), expected) << bundle;
}

TEST(AppLocationPolicy, TheFirstReasonThatHoldsIsTold)
{
    const struct {
        Context context;
        std::optional<Reason> expected;
    } cases[] = {
        { { "/Applications/Brevanta.app", applications, true, usersApplications }, std::nullopt },
        { { "/x/AppTranslocation/7E/d/Brevanta.app", applications, true, "/x" }, Reason::translocated },
        { { "/Volumes/Brevanta/Brevanta.app", applications, true, "/Volumes" }, Reason::readOnlyVolume },
        { { "/Volumes/Brevanta/Brevanta.app", applications, std::nullopt, std::nullopt }, Reason::elsewhere },
        { { "/Applications/Ada/Brevanta.app", applications, false, "/Applications/Ada" }, Reason::userApplications },
        { { "/Users/ada/Applications/Brevanta.app", applications, false, std::nullopt }, Reason::elsewhere },
        // A folder that is not known holds nothing.
        { { "Brevanta.app", "", std::nullopt, "" }, Reason::elsewhere },
    };
    for (const auto& [context, expected] : cases)
        EXPECT_EQ(classify(context), expected) << context.resolvedBundleURL;
}

TEST(AppLocationPolicy, EachReasonSaysWhatToDo)
{
    const std::string start
        = "Brevanta needs to be installed in this Mac's Applications folder to set up its content filter. ";
    const struct {
        Reason reason;
        const char* name;
        const char* rest;
    } cases[] = {
        { Reason::translocated, "translocated",
            "Drag Brevanta from the disk image to Applications, then open it from there." },
        { Reason::readOnlyVolume, "readOnlyVolume",
            "Drag Brevanta from the disk image to Applications, then open it from there." },
        { Reason::userApplications, "userApplications",
            "Move Brevanta from your personal Applications folder to the main Applications folder, then open it from "
            "there." },
        { Reason::nestedBundle, "nestedBundle",
            "Move Brevanta out of the folder it is in, directly into Applications, then open it from there." },
        { Reason::elsewhere, "elsewhere", "Move Brevanta to Applications, then open it from there." },
    };
    for (const auto& [reason, name, rest] : cases) {
        EXPECT_EQ(message(reason), start + rest);
        EXPECT_EQ(AppLocationPolicy::name(reason), name);
    }
}

namespace {

class AppLocationGateTest : public testing::Test {
protected:
    void refuse() { EXPECT_EQ(gate->check(at("/Users/ada/Downloads/Brevanta.app")), LaunchPermission::refused); }
    void answer(const AlertResponse& response)
    {
        alerts.answer(response);
        mainLoop.runPosted();
    }

    FakeClock clock;
    FakeMainLoop mainLoop { clock };
    FakeSystemLog log;
    FakeApplicationLifecycle lifecycle;
    FakeAlertPanel alerts { mainLoop };
    FakeWorkspace workspace { mainLoop };
    std::optional<AppLocationGate> gate { std::in_place,
        AppLocationGate::Dependencies { mainLoop, log, lifecycle, alerts, workspace } };
};

}

TEST_F(AppLocationGateTest, TheRightPlaceLeavesNoTrace)
{
    EXPECT_EQ(gate->check(at("/Applications/Brevanta.app")), LaunchPermission::granted);
    EXPECT_TRUE(log.lines.empty() && alerts.presented.empty() && !lifecycle.policy);
}

TEST_F(AppLocationGateTest, AnotherPlaceIsExplainedInFront)
{
    refuse();
    EXPECT_EQ(log.lines,
        std::vector<std::string> { "[AppLocation] ineligible (elsewhere): /Users/ada/Downloads/Brevanta.app" });
    EXPECT_EQ(lifecycle.policy, ActivationPolicy::regular);
    EXPECT_EQ(lifecycle.activations, 1);
    EXPECT_EQ(alerts.presented,
        (std::vector<Alert> { { .identifier = "app-location",
            .style = AlertStyle::informational,
            .message = "Install Brevanta in Applications",
            .informativeText = std::string(message(Reason::elsewhere)),
            .buttons = { "Show Applications", "Quit" } } }));
    EXPECT_EQ(lifecycle.terminations, 0) << "the alert is read first";
}

TEST_F(AppLocationGateTest, EveryEndOfTheAlertEndsTheApplication)
{
    const struct {
        AlertResponse response;
        std::vector<std::string> opened;
    } cases[] = {
        { { AlertEnd::button, 0 }, { applications } },
        { { AlertEnd::button, 1 }, {} },
        { { AlertEnd::withdrawn, 0 }, {} },
    };
    for (const auto& [response, opened] : cases) {
        workspace.opened.clear();
        lifecycle.terminations = 0;
        refuse();
        answer(response);
        EXPECT_EQ(workspace.opened, opened);
        EXPECT_EQ(lifecycle.terminations, 1);
    }
    EXPECT_EQ(mainLoop.timerCount(), 0U);
}

TEST_F(AppLocationGateTest, AFileBrowserThatDoesNotStartIsNotWaitedForLong)
{
    workspace.folderNeverOpens = true;
    refuse();
    answer({ AlertEnd::button, 0 });
    mainLoop.advance(4.5);
    EXPECT_EQ(lifecycle.terminations, 0);
    mainLoop.advance(0.5);
    EXPECT_EQ(lifecycle.terminations, 1);
}

TEST_F(AppLocationGateTest, AnAnswerToAGateThatHasGoneDoesNothing)
{
    refuse();
    gate.reset();
    answer({ AlertEnd::button, 0 });
    EXPECT_TRUE(workspace.opened.empty());
    EXPECT_EQ(lifecycle.terminations, 0);
}

}
