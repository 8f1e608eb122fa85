#include "support/AppDelegateBench.h"
#include "support/StatusReply.h"

#include <initializer_list>

namespace brevanta {

using LaunchOrderTest = AppDelegateBench;

TEST_F(LaunchOrderTest, TheLaunchKeepsItsOrder)
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

TEST_F(LaunchOrderTest, AStatusIsHandedOnInOneOrder)
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

}
