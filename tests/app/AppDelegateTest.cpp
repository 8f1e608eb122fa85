#include "install/InstallScript.h"
#include "support/AppDelegateBench.h"
#include "support/StatusReply.h"

namespace brevanta {

using AppDelegateTest = AppDelegateBench;

TEST_F(AppDelegateTest, TheUpdateOfferMakesWayForOnboardingAtOnceAndIsNotLost)
{
    sockets.peer = FakeLocalSockets::Peer::listens;
    sockets.pieces.push_back(statusReply().dump() + '\n');
    launch();
    ASSERT_EQ(alerts.onScreen(), 1U);
    hear(R"({"type":"setup_onboarding_started"})");
    EXPECT_EQ(log.lines.back(), "[DaemonUpgrade] onboarding started: dismissing the update prompt until it ends");
    hear(R"({"type":"setup_onboarding_ended"})");
    EXPECT_EQ(alerts.presented.size(), 1U) << "the first one has not left the screen yet";
    mainLoop.runPosted();
    EXPECT_EQ(alerts.presented.size(), 2U);
    EXPECT_EQ(alerts.onScreen(), 1U);
}

TEST_F(AppDelegateTest, ARemovalIsLoggedAndLeavesNothingOfTheUserInTheFileThatTheFilterReads)
{
    const auto poll = [this](FakeLocalSockets::Peer peer, const char* state, int seq) {
        const Json record { { "state", state }, { "launch", "A" }, { "launch_order", 1 }, { "seq", seq } };
        sockets.peer = peer;
        sockets.pieces = { statusReply({ { "auth_token", "the-token" }, { "removal", record } }).dump() + '\n' };
        mainLoop.advance(2);
        queue.runAll();
        mainLoop.runPosted();
        sharedStateQueue.runAll();
        return files.contents("/shared/block_state.json").value_or("");
    };
    using enum FakeLocalSockets::Peer;
    launch();
    poll(listens, "none", 1);
    poll(absent, "", 0);
    poll(listens, "pending", 3);
    EXPECT_TRUE(poll(listens, "finishing", 4).contains("the-token"));
    files.failure = FileStoreError { "No space left on device" };
    EXPECT_TRUE(poll(absent, "", 0).contains("the-token"));
    files.failure.reset();
    EXPECT_EQ(poll(absent, "", 0),
        R"({"shouldBlock":false,"blockedDomains":[],"blockedIPs":[],"autoTrackDomains":[],"meteredIPPrefixes":[],)"
        R"("meteredDomains":[]})");
    EXPECT_TRUE(poll(listens, "none", 5).contains("the-token")) << "it was not gone after all";
    std::erase_if(log.lines, [](const std::string& line) { return !line.starts_with("[Removal] "); });
    EXPECT_EQ(log.lines,
        (std::vector<std::string> {
            "[Removal] pending", "[Removal] finishing", "[Removal] removed", "[Removal] none" }));
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
    hear(R"({"type":"set_updater_auto_checks_on"})");
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
    hear(R"json({"type":"setup_install_service","bundledProgram":"/tmp/'; id #","account":"$(id)","root":"/tmp"})json");
    EXPECT_EQ(administrator.runs,
        (std::vector<FakeAdministrator::Run> {
            { .script = installScript(paths), .prompt = std::string(installPrompt) } }));
}

TEST_F(AppDelegateTest, ThePagesInstallFailsWithAnAlertWithoutTheFilesOfTheBundle)
{
    launch();
    hear(R"({"type":"setup_install_service"})");
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
    nativeMessagingQueue.runAll(); // The state file's own may stand still.
    EXPECT_TRUE(files.contents(manifest).value_or("").contains("/Library/Application Support/Brevanta/native-host"));
    const auto launcher = files.contents("/Library/Application Support/Brevanta/native-host").value_or("");
    EXPECT_TRUE(launcher.contains("\nPLIST='/Library/LaunchDaemons/com.brevanta.daemon.plist'\n"
                                  "HOST='/Applications/Brevanta.app/Contents/MacOS/brevanta-native-host'\n"
                                  "if [ ! -r '/Library/LaunchDaemons' ] "));
    EXPECT_TRUE(launcher.contains(", prod)"));
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

}
