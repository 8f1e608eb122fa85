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
#include "support/StatusReply.h"

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

    // What the trusted page posts, once there is one.
    void hear(const std::string& message)
    {
        webView.commit({ .text = {}, .scheme = "https", .host = "www.example.com" });
        webView.configuration->messageHandlers.at(0).handler.messageArrived(
            { message, { true, "https", "www.example.com" } });
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

    // Keeps the calls that a test of an order is about; one that only repeats the call before is left out.
    void note(const std::string& call)
    {
        if (std::ranges::find(expected, call) != expected.end() && (calls.empty() || calls.back() != call))
            calls.push_back(call);
    }

    std::vector<std::string> expected;
    std::vector<std::string> calls;

    // Usable once it is among the URLs.
    static constexpr auto updaterFeed = "https://updates.example.com/";

    std::map<std::string, Url> urls;
    FakeClock clock;
    FakeMainLoop mainLoop { clock };
    ManualExecutor queue;
    ManualExecutor sharedStateQueue;
    ManualExecutor pageScriptQueue;
    ManualExecutor nativeMessagingQueue;
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
        AppPorts { mainLoop, queue, sharedStateQueue, pageScriptQueue, nativeMessagingQueue, sockets, clock, log,
            defaults, lifecycle, window, statusItem, alerts, workspace, notifications, loginRecords, webView,
            placeholder, openPanel, services, filterSystem, files, [] { return std::filesystem::path("/shared"); },
            SystemVersion {}, [] { return "6f9619ff-8b86-4011-b42d-00c04fc964ff"; }, "A Mac",
            [this](const std::string& text) { return parseUrl(text); }, "/Applications/Brevanta.app/Contents/Resources",
            "/Users/ada", { "es-MX" }, "/Applications/Brevanta.app", administrator, crashReporter, "staging", updater,
            updaterFeed, std::string(43, 'A') + "=", loginItem, programs,
            [this] {
                note("location");
                return location;
            } },
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

TEST_F(AppDelegateTest, TheLaunchKeepsItsOrder)
{
    urls[updaterFeed] = { .text = updaterFeed, .scheme = "https", .host = "updates.example.com", .path = "/" };
    urls["https://key@crashes.example/7"] = { .text = "https://key@crashes.example/7",
        .scheme = "https",
        .user = "key",
        .host = "crashes.example",
        .path = "/7" };
    expected = { "[CrashReporting]", "location", "[NotificationSounds]", "updater", "activation policy", "window",
        "timer of 5.000000", "menu", "[Launch]", "[ShellLoad] prepared", "location", "service program",
        "/usr/bin/mdfind", "service program" };
    for (Recorded* const fake : std::initializer_list<Recorded*> {
             &updater, &lifecycle, &window, &mainLoop, &statusItem, &services, &programs })
        fake->onCall = [this](const std::string& call) { note(call); };
    log.onCall = [this](const std::string& line) {
        const auto tag = line.substr(0, line.find(']') + 1);
        note(tag);
        note(line.substr(0, line.find(" →")));
        if (tag != "[Launch]")
            return;
        // The hold ends within the launch, so that the first load tells when the window was prepared.
        statusItem.onCall = {};
        mainLoop.advance(5);
    };
    launch();
    EXPECT_EQ(calls, expected);
    EXPECT_EQ(crashReporter.starts.front().release, "com.example.Client@0.121.0");
    EXPECT_EQ(log.lines.front(), "[CrashReporting] started (host=crashes.example, environment=staging)");
    EXPECT_EQ(lifecycle.policy, ActivationPolicy::regular);
    EXPECT_TRUE(window.isVisible());
    EXPECT_EQ(webView.loads, (std::vector<FakeWebView::Load> { { "https://www.example.com/", 20 } }));
    EXPECT_EQ(sockets.paths, std::vector<std::string> { "/the/socket" });
    EXPECT_TRUE(hasLine("[LoginItem] registered after the 1st attempt"));
    statusItem.choose("⚠ Install Blocking Service…");
    ASSERT_EQ(crashReporter.captured.size(), 1u);
    EXPECT_EQ(crashReporter.captured.front().kind, "install");
    EXPECT_TRUE(crashReporter.captured.front().message.starts_with("Daemon file missing from bundle: "));
}

TEST_F(AppDelegateTest, AStatusIsHandedOnInOneOrder)
{
    const auto alert = [](int id) {
        return Json { { "alert_id", id }, { "kind", "timer" }, { "notification_title", "t" }, { "body", "b" },
            { "sound_prefix", "task-timer" }, { "expires_in_seconds", 60 } };
    };
    const auto answer = [this](const Json& additions) {
        sockets.pieces.push_back(statusReply(additions).dump() + '\n');
        queue.runAll();
        mainLoop.runPosted();
    };
    sockets.peer = FakeLocalSockets::Peer::listens;
    launch();
    webView.commit({ .text = {}, .scheme = "https", .host = "www.example.com" });
    mainLoop.advance(2);
    answer({ { "energy", 12 }, { "pending_local_alerts", { alert(1) } } });
    sharedStateQueue.runAll();
    pageScriptQueue.runAll();
    mainLoop.advance(2);

    expected = { "state file", "removal", "task-timer-2", "[DaemonUpgrade] daemon 0.121.0 is current", "low-lp",
        "auth_token_invalid: signalled SPA to re-forward daemon token",
        "daemon has no credential: signalled SPA to forward daemon token", "menu", "page" };
    for (Recorded* const fake : std::initializer_list<Recorded*> { &notifications, &log, &statusItem })
        fake->onCall = [this](const std::string& call) { note(call); };
    sharedStateQueue.onCall = [this](const std::string&) { note("state file"); };
    pageScriptQueue.onCall = [this](const std::string&) { note("page"); };
    webView.onCall = [this](const std::string& script) {
        if (script.contains("kestrelune_removal_state"))
            note("removal");
    };
    answer({ { "energy", 8 }, { "low_lp_threshold", 10 }, { "notify_macos_low_lp", true },
        { "pending_local_alerts", { alert(2) } }, { "daemon_version", "0.121.0" }, { "auth_token_invalid", true },
        { "has_device_token", false },
        { "removal", { { "state", "pending" }, { "launch", "L" }, { "launch_order", 1 }, { "seq", 1 } } } });
    EXPECT_EQ(calls, expected);
}

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
