#include "app/AppDelegate.h"

#include "fakes/FakeAdministrator.h"
#include "fakes/FakeCrashReporter.h"
#include "fakes/FakeFileStore.h"
#include "fakes/FakeFilterSystem.h"
#include "fakes/FakeLocalSockets.h"
#include "fakes/FakeLoginItem.h"
#include "fakes/FakeMainLoop.h"
#include "fakes/FakePorts.h"
#include "fakes/FakeProgramRunner.h"
#include "fakes/FakeServiceManager.h"
#include "fakes/FakeUpdater.h"
#include "fakes/FakeWebView.h"
#include "fakes/ManualExecutor.h"
#include "install/InstallScript.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <map>

namespace brevanta {

namespace {

class AppDelegateTest : public testing::Test {
protected:
    AppDelegateTest() { sockets.peer = FakeLocalSockets::Peer::absent; }

    void launch()
    {
        delegate.applicationWillFinishLaunching();
        delegate.applicationDidFinishLaunching();
        queue.runAll();
        mainLoop.runPosted();
    }

    [[nodiscard]] bool hasLine(const std::string& line) const
    {
        return std::ranges::find(log.lines, line) != log.lines.end();
    }

    // What stands for the system's parser knows these URLs only.
    [[nodiscard]] std::optional<Url> parseUrl(const std::string& text) const
    {
        const auto found = urls.find(text);
        return found != urls.end() ? std::optional(found->second) : std::nullopt;
    }

    // Usable once it is among the URLs.
    static constexpr auto updaterFeed = "https://updates.example.com/";

    std::map<std::string, Url> urls;
    FakeClock clock;
    FakeMainLoop mainLoop { clock };
    ManualExecutor queue;
    ManualExecutor sharedStateQueue;
    ManualExecutor pageScriptQueue;
    FakeLocalSockets sockets;
    FakeSystemLog log;
    FakeUserDefaults defaults;
    FakeApplicationLifecycle lifecycle;
    FakeMainWindow window;
    FakeStatusItem statusItem;
    FakeAlertPanel alerts { mainLoop };
    FakeWorkspace workspace { mainLoop };
    FakeNotificationCenter notifications { mainLoop };
    FakeLoginRecords loginRecords;
    FakeWebView webView;
    FakePlaceholder placeholder;
    FakeOpenPanel openPanel { mainLoop };
    FakeServiceManager services { mainLoop };
    FakeFilterSystem filterSystem { mainLoop };
    FakeFileStore files;
    FakeAdministrator administrator { mainLoop };
    FakeLoginItem loginItem { mainLoop };
    FakeProgramRunner programs { mainLoop };
    AppLocationPolicy::Context location { .resolvedBundleURL = "/Applications/Brevanta.app",
        .resolvedSystemApplicationsURL = "/Applications",
        .volumeIsReadOnly = {},
        .resolvedUserApplicationsURL = {} };
    FakeUpdater updater;
    FakeCrashReporter crashReporter;
    AppDelegate delegate {
        AppPorts { mainLoop, queue, sharedStateQueue, pageScriptQueue, sockets, clock, log, defaults, lifecycle, window,
            statusItem, alerts, workspace, notifications, loginRecords, webView, placeholder, openPanel, services,
            filterSystem, files, [] { return std::filesystem::path("/shared"); }, SystemVersion {},
            [] { return "6f9619ff-8b86-4011-b42d-00c04fc964ff"; }, "A Mac",
            [this](const std::string& text) { return parseUrl(text); }, "/Applications/Brevanta.app/Contents/Resources",
            "/Users/ada", { "es-MX" }, "/Applications/Brevanta.app", administrator, crashReporter, "staging", updater,
            updaterFeed, std::string(43, 'A') + "=", loginItem, programs, [this] { return location; } },
        BuildConfiguration { .version = "0.121.0",
            .bundleIdentifier = "com.example.Client",
            .root = "/",
            .socketPath = "/the/socket",
            .appUrl = "https://www.example.com/",
            .trustedHosts = { "www.example.com" },
            .signInHosts = {},
            .extensionStoreUrl = {},
            .crashEndpoint = "https://key@crashes.example/7",
            .extraCertificate = std::nullopt }
    };
};

}

TEST_F(AppDelegateTest, LaunchMakesARegularApplicationThatPollsAndShowsItsWindow)
{
    launch();
    EXPECT_EQ(lifecycle.policy, ActivationPolicy::regular);
    EXPECT_EQ(sockets.paths, std::vector<std::string> { "/the/socket" });
    EXPECT_EQ(statusItem.visibleTitle(100), "Blocking service starting");
    EXPECT_TRUE(window.isVisible());
    EXPECT_EQ(lifecycle.activations, 1);
    EXPECT_TRUE(hasLine("[Launch] seconds since console login=unknown → showsWindow=true"));
}

TEST_F(AppDelegateTest, CrashReportingStartsBeforeAllElse)
{
    urls["https://key@crashes.example/7"] = { .text = "https://key@crashes.example/7",
        .scheme = "https",
        .user = "key",
        .host = "crashes.example",
        .path = "/7" };
    launch();
    ASSERT_EQ(crashReporter.starts.size(), 1u);
    EXPECT_EQ(crashReporter.starts.front().release, "com.example.Client@0.121.0");
    EXPECT_EQ(log.lines.front(), "[CrashReporting] started (host=crashes.example, environment=staging)");
}

TEST_F(AppDelegateTest, RightAfterLoginTheWindowStaysHidden)
{
    loginRecords.loginTime = clock.wallSeconds() - 30;
    launch();
    EXPECT_FALSE(window.isVisible());
    EXPECT_EQ(lifecycle.activations, 0);
}

TEST_F(AppDelegateTest, RightAfterLoginTheWindowShowsIfThereIsNoBarToBeFoundIn)
{
    loginRecords.loginTime = clock.wallSeconds() - 30;
    statusItem.shownAs = StatusItemVisibility::noHost;
    launch();
    EXPECT_TRUE(window.isVisible());
}

TEST_F(AppDelegateTest, ReopeningAndTheMenuBringTheWindowToTheFront)
{
    loginRecords.loginTime = clock.wallSeconds() - 30;
    launch();
    delegate.applicationShouldReopen();
    EXPECT_EQ(window.timesShown, 1);
    statusItem.choose("Open Brevanta");
    EXPECT_EQ(window.timesShown, 2);
    EXPECT_EQ(lifecycle.activations, 2);
}

TEST_F(AppDelegateTest, QuitTerminatesAtOnceAndCutsOffWhatTheServiceHolds)
{
    launch();
    statusItem.choose("Quit");
    EXPECT_EQ(lifecycle.terminations, 1);
    EXPECT_EQ(delegate.applicationShouldTerminate(), TerminationDecision::now);
    delegate.applicationWillTerminate();
    EXPECT_EQ(sockets.interrupts, 1);
}

TEST_F(AppDelegateTest, AnInstallIsShownEverywhereAndHoldsTheQuit)
{
    const std::filesystem::path resources = "/Applications/Brevanta.app/Contents/Resources";
    files.replaceFromOutside(resources / "com.brevanta.daemon", "service");
    files.replaceFromOutside(resources / "com.brevanta.daemon.plist", "list");
    administrator.ends.isHeld = true;
    launch();
    statusItem.choose("⚠ Install Blocking Service…");
    EXPECT_EQ(statusItem.visibleTitle(200), "Blocking Service: installing…");
    statusItem.choose("Quit");
    EXPECT_EQ(lifecycle.terminations, 1);
    EXPECT_EQ(delegate.applicationShouldTerminate(), TerminationDecision::later);
    EXPECT_EQ(statusItem.visibleTitle(400), "Quitting after the install finishes…");
    bool isRelaunched = false;
    EXPECT_EQ(delegate.updaterShouldRelaunch([&] { isRelaunched = true; }), RelaunchDecision::later);
    EXPECT_TRUE(lifecycle.answers.empty() && !isRelaunched);
    administrator.ends.answerOldest();
    mainLoop.runPosted();
    EXPECT_TRUE(isRelaunched);
    EXPECT_EQ(lifecycle.answers, std::vector { TerminationAnswer::proceed });
    EXPECT_EQ(statusItem.visibleTitle(200), "Blocking Service: starting…");
    EXPECT_TRUE(alerts.presented.empty());
}

TEST_F(AppDelegateTest, WithoutAUsableConfigurationThereIsNoUpdater)
{
    launch();
    EXPECT_EQ(updater.starts, 0);
    statusItem.choose("Check for Updates…");
    EXPECT_EQ(updater.checksNow, 0);
}

TEST_F(AppDelegateTest, TheUpdaterServesMenuAndPageAndItsRelaunchWaitsForAnInstall)
{
    urls[updaterFeed] = { .text = updaterFeed, .scheme = "https", .host = "updates.example.com", .path = "/" };
    const std::filesystem::path resources = "/Applications/Brevanta.app/Contents/Resources";
    files.replaceFromOutside(resources / "com.brevanta.daemon", "service");
    files.replaceFromOutside(resources / "com.brevanta.daemon.plist", "list");
    administrator.ends.isHeld = true;
    launch();
    ASSERT_EQ(updater.starts, 1);
    statusItem.choose("Check for Updates…");
    EXPECT_EQ(updater.checksNow, 1);
    webView.commit({ .text = {}, .scheme = "https", .host = "www.example.com" });
    webView.configuration->messageHandlers.at(0).handler.messageArrived(
        { R"({"type":"set_updater_auto_checks_on"})", { true, "https", "www.example.com" } });
    EXPECT_TRUE(updater.checks);

    int relaunches = 0;
    EXPECT_EQ(updater.handler([&] { ++relaunches; }), RelaunchDecision::now);
    statusItem.choose("⚠ Install Blocking Service…");
    EXPECT_EQ(updater.handler([&] { ++relaunches; }), RelaunchDecision::later);
    EXPECT_TRUE(hasLine("[DaemonInstall] Sparkle relaunch held until the blocking service install finishes"));
    EXPECT_EQ(relaunches, 0);
    administrator.ends.answerOldest();
    mainLoop.runPosted();
    EXPECT_EQ(relaunches, 1);
}

TEST_F(AppDelegateTest, NothingThatThePageSaysReachesTheInstallScript)
{
    const std::filesystem::path resources = "/Applications/Brevanta.app/Contents/Resources";
    const InstallPaths paths { .bundledProgram = resources / "com.brevanta.daemon",
        .bundledPropertyList = resources / "com.brevanta.daemon.plist" };
    files.replaceFromOutside(paths.bundledProgram, "service");
    files.replaceFromOutside(paths.bundledPropertyList, "list");
    launch();
    webView.commit({ .text = {}, .scheme = "https", .host = "www.example.com" });
    webView.configuration->messageHandlers.at(0).handler.messageArrived(
        { R"json({"type":"setup_install_service","bundledProgram":"/tmp/'; id #","account":"$(id)","root":"/tmp"})json",
            { true, "https", "www.example.com" } });
    EXPECT_EQ(administrator.runs,
        (std::vector<FakeAdministrator::Run> {
            { .script = installScript(paths), .prompt = std::string(installPrompt) } }));
}

TEST_F(AppDelegateTest, ThePagesInstallFailsWithAnAlertWithoutTheFilesOfTheBundle)
{
    launch();
    webView.commit({ .text = {}, .scheme = "https", .host = "www.example.com" });
    webView.configuration->messageHandlers.at(0).handler.messageArrived(
        { R"({"type":"setup_install_service"})", { true, "https", "www.example.com" } });
    ASSERT_EQ(alerts.presented.size(), 1U);
    EXPECT_EQ(alerts.presented[0].message, "Installation Failed");
    EXPECT_TRUE(administrator.runs.empty());
    EXPECT_EQ(statusItem.visibleTitle(200), "⚠ Install Blocking Service…");
    EXPECT_EQ(delegate.applicationShouldTerminate(), TerminationDecision::now);
}

TEST_F(AppDelegateTest, TheLaunchLeadsBrowsersToTheNativeMessagingHostWithoutWaitingForTheDisk)
{
    const std::filesystem::path support = "/Users/ada/Library/Application Support";
    const auto manifest = support / "Chromium/NativeMessagingHosts/com.brevanta.native_messaging.json";
    ASSERT_TRUE(files.createFolder(support / "Chromium"));
    launch();
    EXPECT_EQ(files.contents(manifest), std::nullopt);
    sharedStateQueue.runAll();
    EXPECT_TRUE(files.contents(manifest).value_or("").contains("/Library/Application Support/Brevanta/native-host"));
    const auto launcher = files.contents("/Library/Application Support/Brevanta/native-host").value_or("");
    EXPECT_TRUE(launcher.contains("\nPLIST='/Library/LaunchDaemons/com.brevanta.daemon.plist'\n"
                                  "HOST='/Applications/Brevanta.app/Contents/MacOS/brevanta-native-host'\n"
                                  "if [ ! -r '/Library/LaunchDaemons' ] "));
    EXPECT_TRUE(launcher.contains(", prod)"));
}

TEST_F(AppDelegateTest, TheFirstLoadFollowsThePreparedWindowAndTheReleasedHold)
{
    launch();
    EXPECT_TRUE(window.built);
    EXPECT_EQ(webView.loads, (std::vector<FakeWebView::Load> { { "https://www.example.com/", 20 } }));
    EXPECT_TRUE(std::ranges::any_of(log.lines, [](const std::string& line) {
        return line.starts_with("[ShellLoad] released (filter activation settled) → phase=provisional");
    }));
}

TEST_F(AppDelegateTest, TheMenusReloadAndOpenReachThePage)
{
    launch();
    webView.fail({ "NSURLErrorDomain", -1200 });
    statusItem.choose("Open Brevanta");
    EXPECT_EQ(webView.loads.size(), 2U) << "a page that is missing is tried again";
    webView.commit({ .text = {}, .scheme = "https", .host = "www.example.com" });
    webView.finish();
    statusItem.choose("Open Brevanta");
    EXPECT_EQ(webView.reloads, 0) << "a page that is there is kept";
    statusItem.choose("Reload");
    EXPECT_EQ(webView.reloads, 1);
}

TEST_F(AppDelegateTest, ASetupLinkBringsTheWindowForwardAtMostEveryTwoSeconds)
{
    loginRecords.loginTime = clock.wallSeconds() - 30;
    launch();
    ASSERT_FALSE(window.isVisible());
    const Url link {
        .text = "brevanta://open/device-setup", .scheme = "brevanta", .host = "open", .path = "/device-setup"
    };
    delegate.applicationDidOpenUrl(link);
    EXPECT_EQ(window.timesShown, 1);
    EXPECT_EQ(lifecycle.activations, 1);
    EXPECT_EQ(log.lines.back(), "[URLScheme] open/device-setup: bringing the window to the front");
    mainLoop.advance(1.9);
    delegate.applicationDidOpenUrl(link);
    EXPECT_EQ(log.lines.back(), "[URLScheme] open/device-setup throttled");
    EXPECT_EQ(window.timesShown, 1);
    mainLoop.advance(0.1);
    delegate.applicationDidOpenUrl(link);
    EXPECT_EQ(window.timesShown, 2);
    delegate.applicationDidOpenUrl(
        { .text = "brevanta://open/other?token=secret", .scheme = "brevanta", .host = "open", .path = "/other" });
    EXPECT_EQ(log.lines.back(), "[URLScheme] ignoring an unknown link (scheme=brevanta, host=open)");
    EXPECT_EQ(window.timesShown, 2);
}

TEST_F(AppDelegateTest, ALinkThatStartsTheApplicationShowsTheWindowAndWaitsForThePage)
{
    loginRecords.loginTime = clock.wallSeconds() - 30;
    delegate.applicationWillFinishLaunching();
    delegate.applicationDidOpenUrl(
        { .text = "brevanta://open/device-setup", .scheme = "brevanta", .host = "open", .path = "/device-setup" });
    delegate.applicationDidFinishLaunching();
    EXPECT_TRUE(window.isVisible());
    EXPECT_TRUE(
        std::ranges::find(log.lines, "[URLScheme] open/device-setup launched the app: bringing the window to the front")
        != log.lines.end());
    const auto reply = webView.configuration->replyHandlers.at(0).handler.replyTo(
        { R"({"type":"take_pending_navigation"})", { true, "https", "www.example.com" } });
    EXPECT_TRUE(reply && reply->contains("device-setup"));
}

TEST_F(AppDelegateTest, AClickOnANoticeBringsTheWindowForwardOrOpensATrustedAddress)
{
    loginRecords.loginTime = clock.wallSeconds() - 30;
    const auto know = [this](const std::string& text, const std::string& scheme, const std::string& host,
                          const std::optional<std::string>& user = std::nullopt) {
        urls[text] = { .text = text, .scheme = scheme, .user = user, .host = host, .path = "/" };
        return text;
    };
    const auto click = [this](const std::string& open) {
        notifications.click({ .identifier = "task-timer-1", .userInfo = { { "open", open } } });
        mainLoop.runPosted();
    };
    click(know("https://evil.example/", "https", "evil.example"));
    launch();
    EXPECT_EQ(window.timesShown, 1) << "the click that started the application";
    const auto loads = webView.loads.size();
    click(know("http://www.example.com/", "http", "www.example.com"));
    click(know("https://me@www.example.com/", "https", "www.example.com", "me"));
    click("/tasks/4");
    EXPECT_EQ(window.timesShown, 4);
    EXPECT_TRUE(workspace.opened.empty());

    click(know("https://www.example.com/", "https", "www.example.com"));
    EXPECT_EQ(workspace.opened, std::vector<std::string> { "https://www.example.com/" });
    EXPECT_EQ(window.timesShown, 4);
    workspace.outcome = OpenOutcome::refused;
    click("https://www.example.com/");
    EXPECT_EQ(window.timesShown, 5) << "nobody opens it";
    EXPECT_EQ(webView.loads.size(), loads);
}

TEST_F(AppDelegateTest, LaunchInstallsTheSoundsAndFindsTheNoticesWords)
{
    const std::filesystem::path resources = "/Applications/Brevanta.app/Contents/Resources";
    files.replaceFromOutside(resources / "brevanta-gain.aiff", "FORM");
    files.replaceFromOutside(resources / "notices.en.json", "{}");
    files.replaceFromOutside(resources / "notices.es.json", "{}");
    launch();
    EXPECT_EQ(files.contents("/Users/ada/Library/Sounds/brevanta-gain.aiff"), "FORM");
    EXPECT_TRUE(hasLine("[NotificationSounds] bundled sound missing: brevanta-loss.aiff"));
    EXPECT_TRUE(hasLine("[NotificationHelper] cannot use notices.zh-Hans.json: no such file"));
}

TEST_F(AppDelegateTest, InTheWrongPlaceNothingIsBuiltAndEveryEventIsSurvived)
{
    location.resolvedBundleURL = "/Applications/Tools/Brevanta.app";
    launch();
    delegate.applicationDidOpenUrl(
        { .text = "brevanta://open/device-setup", .scheme = "brevanta", .host = "open", .path = "/device-setup" });
    delegate.applicationDidBecomeActive();
    delegate.systemDidWake();
    delegate.applicationShouldReopen();
    EXPECT_EQ(delegate.updaterShouldRelaunch([] { }), RelaunchDecision::now);
    mainLoop.advance(100);
    EXPECT_TRUE(sockets.paths.empty() && files.writes().empty() && programs.runs.empty());
    EXPECT_EQ(loginItem.statuses.asked, 0);
    EXPECT_EQ(statusItem.changes, 0U);
    EXPECT_FALSE(window.built || window.isVisible() || webView.configuration);
    ASSERT_EQ(alerts.presented.size(), 1U);
    EXPECT_EQ(delegate.applicationShouldTerminate(), TerminationDecision::now);
    alerts.answer({ AlertEnd::button, 1 });
    mainLoop.runPosted();
    EXPECT_EQ(lifecycle.terminations, 1);
    delegate.applicationWillTerminate();
}

TEST_F(AppDelegateTest, LaunchTellsTheSystemOfTheApplication)
{
    programs.ends.result = "/Applications/Brevanta.app\n/Old/Brevanta.app\n";
    launch();
    EXPECT_TRUE(hasLine("[LoginItem] registered after the 1st attempt"));
    ASSERT_EQ(programs.runs.size(), 2U);
    EXPECT_EQ(programs.runs[0].program, "/usr/bin/mdfind");
    EXPECT_EQ(programs.runs[1].arguments, (std::vector<std::string> { "-u", "/Old/Brevanta.app" }));
}

TEST_F(AppDelegateTest, EventsBeforeThereIsAWindowAreSurvived)
{
    delegate.applicationWillFinishLaunching();
    delegate.applicationDidBecomeActive();
    delegate.systemDidWake();
    delegate.applicationShouldReopen();
    EXPECT_EQ(window.timesShown, 0);
}

}
