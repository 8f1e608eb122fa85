#include "app/ServiceInstallation.h"

#include "app/RemovalCompletion.h"
#include "daemon/DaemonClient.h"
#include "fakes/FakeAdministrator.h"
#include "fakes/FakeDaemonTransport.h"
#include "fakes/FakeFileStore.h"
#include "fakes/FakeMainLoop.h"
#include "fakes/FakePorts.h"
#include "fakes/FakeServiceManager.h"
#include "fakes/ManualExecutor.h"
#include "install/RemovalShellController.h"
#include "support/StatusReply.h"
#include "track/AppAlertPresenter.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace brevanta {

namespace {

const std::filesystem::path bundle { "/Applications/Brevanta.app" };
const auto program = bundle / "Contents/Resources/com.brevanta.daemon";
const auto propertyList = bundle / "Contents/Resources/com.brevanta.daemon.plist";

class ServiceInstallationTest : public testing::Test {
protected:
    // A poll that finds the service finishing, half a minute after it should have been done; how many alerts there
    // were.
    std::size_t pollOfRemovalThatHangs(const std::string& launch)
    {
        services.programIsInstalled = true;
        const auto status = statusWith({ { "removal",
            { { "state", "finishing" }, { "launch", launch }, { "launch_order", launch.front() }, { "seq", 1 },
                { "finishing_by", clock.wallSeconds() - 30 } } } });
        removal.consume(status);
        completion.consume(status);
        mainLoop.runPosted();
        return panel.presented.size();
    }
    void press(std::size_t button)
    {
        panel.answer({ .end = AlertEnd::button, .button = button });
        mainLoop.runPosted();
    }
    void endScript(const AdministratorError& error)
    {
        administrator.ends.answerOldest(std::unexpected(error));
        mainLoop.runPosted();
    }

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
    FakeServiceManager services { mainLoop };
    ManualExecutor queue;
    DaemonClient daemonClient { std::make_unique<FakeDaemonTransport>([](const Json&) { return "{}"; }), queue,
        mainLoop };
    RemovalShellController removal { daemonClient, installation.flight(), services, log };
    RemovalCompletion completion { { removal, installation, services, clock, alerts, log } };
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
    const std::string remedy = "\n\nInstall Brevanta anew, and try again.";
    EXPECT_EQ(panel.presented[0].informativeText, "Daemon file missing from bundle: " + program.string() + remedy);
    press(0);
    ASSERT_EQ(panel.presented.size(), 2U);
    EXPECT_EQ(panel.presented[1].informativeText, "Daemon file missing from bundle: " + propertyList.string() + remedy);
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
    endScript({ .kind = AdministratorError::Kind::cancelled });
    EXPECT_EQ(order, (std::vector<std::string> { "page", "one", "two" }));
    EXPECT_EQ(lifecycle.answers, std::vector { TerminationAnswer::proceed });
    EXPECT_EQ(installation.shouldTerminate(), TerminationDecision::now);
}

TEST_F(ServiceInstallationTest, ARemovalThatHangsIsOfferedToBeFinishedUntilThatIsDeclined)
{
    administrator.ends.isHeld = true;
    EXPECT_EQ(pollOfRemovalThatHangs("A"), 1U);
    EXPECT_EQ(pollOfRemovalThatHangs("A"), 1U);
    press(0);
    const InstallPaths paths { .bundledProgram = {}, .bundledPropertyList = {}, .root = "/the/root" };
    EXPECT_EQ(administrator.runs,
        (std::vector<FakeAdministrator::Run> {
            { .script = removalScript(paths, { .account = {}, .actionId = {}, .launch = "A" }),
                .prompt = std::string(removalPrompt) } }));
    EXPECT_EQ(installation.shouldTerminate(), TerminationDecision::later);
    EXPECT_EQ(pollOfRemovalThatHangs("A"), 1U);
    endScript({ .message = "odd: password=hunter22" });
    EXPECT_EQ(panel.presented.back().message, "Removal Failed");
    EXPECT_TRUE(panel.presented.back().informativeText.ends_with("\n\nDetails: odd: password=[removed]"));
    EXPECT_TRUE(std::ranges::any_of(
        log.lines, [](const std::string& line) { return line.contains(" (odd: password=[removed]"); }));
    press(0);
    mainLoop.advance(59);
    EXPECT_EQ(pollOfRemovalThatHangs("A"), 2U) << "the user was told to wait a minute";
    mainLoop.advance(1);
    EXPECT_EQ(pollOfRemovalThatHangs("A"), 3U);
    press(1);
    EXPECT_EQ(pollOfRemovalThatHangs("A"), 3U);
    EXPECT_EQ(pollOfRemovalThatHangs("B"), 4U) << "another removal";
    press(0);
    endScript({ .kind = AdministratorError::Kind::cancelled });
    EXPECT_EQ(pollOfRemovalThatHangs("B"), 4U) << "the password was refused";
}

TEST_F(ServiceInstallationTest, TheOfferToFinishARemovalIsTakenBackWhenThereIsNothingToFinishOrAFlightUnderWay)
{
    EXPECT_EQ(pollOfRemovalThatHangs("A"), 1U);
    services.programIsInstalled = false;
    press(0);
    EXPECT_TRUE(administrator.runs.empty()) << "it has gone while the user thought about it";
    EXPECT_EQ(pollOfRemovalThatHangs("A"), 2U);
    services.programIsInstalled = false;
    completion.serviceFailed(DaemonError {});
    mainLoop.runPosted();
    EXPECT_EQ(pollOfRemovalThatHangs("A"), 3U) << "the one before was withdrawn";
    administrator.ends.isHeld = true;
    installation.flight().beginRemoval("the script");
    EXPECT_EQ(pollOfRemovalThatHangs("A"), 3U);
    press(0);
    EXPECT_EQ(administrator.runs.size(), 1U);
}

}
