#include "app/ServiceInstallation.h"

#include "fakes/FakeAdministrator.h"
#include "fakes/FakeFileStore.h"
#include "fakes/FakeMainLoop.h"
#include "fakes/FakePorts.h"
#include "track/AppAlertPresenter.h"

#include <gtest/gtest.h>

namespace brevanta {

namespace {

const std::filesystem::path bundle { "/Applications/Brevanta.app" };
const auto program = bundle / "Contents/Resources/com.brevanta.daemon";
const auto propertyList = bundle / "Contents/Resources/com.brevanta.daemon.plist";

class ServiceInstallationTest : public testing::Test {
protected:
    FakeClock clock;
    FakeMainLoop mainLoop { clock };
    FakeSystemLog log;
    FakeFileStore files;
    FakeAlertPanel panel { mainLoop };
    AppAlertPresenter alerts { panel, mainLoop };
    FakeApplicationLifecycle lifecycle;
    FakeAdministrator administrator { mainLoop };
    int timesShownHeld { 0 };
    ServiceInstallation installation { { .administrator = administrator,
        .log = log,
        .files = files,
        .alerts = alerts,
        .lifecycle = lifecycle,
        .bundle = bundle,
        .root = "/the/root",
        .changed = [] {},
        .failed = [](const std::string&) {},
        .showQuitHeld = [this] { ++timesShownHeld; } } };
};

}

TEST_F(ServiceInstallationTest, TheFilesAreThoseOfTheBundleAndEachIsMissed)
{
    const auto errorWith = [this](const std::filesystem::path& where) {
        const auto paths = bundledInstallPaths(where, "/the/root", files);
        return paths ? std::string() : paths.error();
    };
    EXPECT_EQ(errorWith({}), "Could not locate the app bundle.");
    EXPECT_EQ(errorWith(bundle), "Daemon file missing from bundle: " + program.string());
    files.replaceFromOutside(program, "service");
    EXPECT_EQ(errorWith(bundle), "Daemon file missing from bundle: " + propertyList.string());
    files.replaceFromOutside(propertyList, "list");
    const auto paths = bundledInstallPaths(bundle, "/the/root", files);
    ASSERT_TRUE(paths);
    EXPECT_EQ(paths->bundledProgram, program);
    EXPECT_EQ(paths->bundledPropertyList, propertyList);
    EXPECT_EQ(paths->root, "/the/root");
}

TEST_F(ServiceInstallationTest, EachFailureHasAnAlertOfItsOwn)
{
    installation.flight().begin();
    files.replaceFromOutside(program, "service");
    installation.flight().begin();
    ASSERT_EQ(panel.presented.size(), 1U);
    EXPECT_EQ(panel.presented[0].message, "Installation Failed");
    EXPECT_EQ(panel.presented[0].informativeText, "Daemon file missing from bundle: " + program.string());
    panel.answer({ .end = AlertEnd::button, .button = 0 });
    mainLoop.runPosted();
    ASSERT_EQ(panel.presented.size(), 2U);
    EXPECT_EQ(panel.presented[1].informativeText, "Daemon file missing from bundle: " + propertyList.string());
}

TEST_F(ServiceInstallationTest, AQuitAndARelaunchHappenWhenTheInstallHasEndedHoweverItEnds)
{
    files.replaceFromOutside(program, "service");
    files.replaceFromOutside(propertyList, "list");
    std::vector<std::string> order;
    const auto relaunch = [&](const char* name) {
        return installation.shouldRelaunch([&, name] {
            EXPECT_TRUE(lifecycle.answers.empty());
            order.emplace_back(name);
        });
    };
    administrator.ends.isHeld = true;
    EXPECT_EQ(installation.shouldTerminate(), TerminationDecision::now);
    EXPECT_EQ(relaunch("before"), RelaunchDecision::now);
    installation.install([&] { order.emplace_back("page"); });
    EXPECT_EQ(installation.shouldTerminate(), TerminationDecision::later);
    EXPECT_EQ(installation.shouldTerminate(), TerminationDecision::later);
    EXPECT_EQ(relaunch("one"), RelaunchDecision::later);
    EXPECT_EQ(relaunch("two"), RelaunchDecision::later);
    EXPECT_EQ(timesShownHeld, 1);
    EXPECT_TRUE(lifecycle.answers.empty());
    administrator.ends.answerOldest(
        std::unexpected(AdministratorError { .kind = AdministratorError::Kind::cancelled }));
    mainLoop.runPosted();
    EXPECT_EQ(order, (std::vector<std::string> { "page", "one", "two" }));
    EXPECT_EQ(lifecycle.answers, std::vector { TerminationAnswer::proceed });
    EXPECT_EQ(installation.shouldTerminate(), TerminationDecision::now);
}

}
