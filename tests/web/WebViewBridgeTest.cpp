#include "web/WebViewBridgeTest.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace brevanta {

namespace {

Json authToken(const Json& additions = Json::object())
{
    Json message { { "type", "auth_token" }, { "token", "secret-token" } };
    message.update(additions);
    return message;
}

}

TEST_F(WebViewBridgeTest, OnlyTheMainFrameOfATrustedHttpsOriginIsHeard)
{
    struct Case {
        FrameFacts frame;
        bool accepted;
        const char* origin;
    };
    for (const auto& [frame, accepted, origin] : {
             Case { { true, "https", "www.example.com" }, true, "" },
             Case { { true, "HTTPS", "WWW.Example.COM." }, true, "" },
             Case { { true, "https", "example.com" }, true, "" },
             Case { { false, "https", "www.example.com" }, false, "false, origin=https://www.example.com" },
             Case { { true, "http", "www.example.com" }, false, "true, origin=http://www.example.com" },
             Case { { true, "https", "www.example.com.." }, false, "true, origin=https://www.example.com.." },
             Case { { true, "https", "login.example.org" }, false, "true, origin=https://login.example.org" },
             Case { { true, "https", "evil-example.com" }, false, "true, origin=https://evil-example.com" },
             Case { { true, "", "" }, false, "true, origin=://" },
             Case { { true, "https", "" }, false, "true, origin=https://" },
         }) {
        WebBench bench;
        bench.openUsable();
        bench.post(authToken(), frame);
        EXPECT_EQ(bench.requests.size(), accepted ? 1U : 0U) << frame.protocol << frame.host;
        if (!accepted) {
            EXPECT_EQ(bench.log.lines,
                std::vector<std::string> {
                    "[WebViewBridge] Ignoring 'auth_token' message — untrusted source frame (mainFrame="
                    + std::string(origin) + ")" });
        }
    }
}

TEST_F(WebViewBridgeTest, WhatIsNoMessageChangesNothing)
{
    openUsable();
    auto& handler = webView.configuration->messageHandlers.at(0).handler;
    const std::string tooLong = R"({"type":"force_sync","x":")" + std::string(1U << 20U, 'x') + "\"}";
    const std::string nested
        = R"({"type":"force_sync","x":)" + std::string(100'000, '[') + std::string(100'000, ']') + "}";
    for (const std::string& body :
        { std::string(), std::string("null"), std::string("\"force_sync\""), std::string("[1]"), std::string("{}"),
            std::string(R"({"type":1})"), std::string(R"({"type":"unknown"})"), std::string(R"({"type":"FORCE_SYNC"})"),
            std::string("{\"type\":\"force_sync\"} x"), std::string("{\"type\":\"\xff\"}"), tooLong })
        handler.messageArrived({ body, { true, "https", "www.example.com" } });
    settle();
    EXPECT_TRUE(requests.empty());
    EXPECT_TRUE(webView.scripts.empty());
    handler.messageArrived({ nested, { true, "https", "www.example.com" } });
    settle();
    EXPECT_EQ(requests.size(), 1U) << "depth alone is no fault, and brings nothing down";
}

TEST_F(WebViewBridgeTest, AHostilePageCannotFloodTheLog)
{
    openUsable();
    const std::string flood = std::string(100'000, 'x') + "\n";
    post({ { "type", flood } }, { false, "https", "evil.example" });
    post({ { "type", "pick_app" }, { "platform", flood } });
    post({ { "type", "pick_app" }, { "platform", { flood } } });
    reply = Json { { "error", flood } }.dump(); // A service may quote what it was sent.
    post(authToken());
    EXPECT_EQ(navigation().decideAction({ urlOf("data", flood), NavigationType::other }), NavigationDecision::cancel);
    ASSERT_EQ(log.lines.size(), 6U);
    for (const auto& line : log.lines)
        EXPECT_LT(line.size(), 400U) << line.substr(0, 400);
}

TEST_F(WebViewBridgeTest, SigningInForwardsTheTokenAndNeverLogsIt)
{
    openUsable();
    post(authToken());
    post(authToken({ { "device_id", "d-1" } }));
    ASSERT_EQ(requests.size(), 2U);
    EXPECT_EQ(requests[0], (Json { { "type", "set_auth_token" }, { "token", "secret-token" } }));
    EXPECT_EQ(
        requests[1], (Json { { "type", "set_auth_token" }, { "token", "secret-token" }, { "device_id", "d-1" } }));
    EXPECT_TRUE(hasLine("[KestreluneMac] auth_token bridge: forwarding (len=12, deviceBound=false) to daemon"));
    EXPECT_TRUE(hasLine("[KestreluneMac] auth_token bridge: forwarding (len=12, deviceBound=true) to daemon"));
    for (const auto& line : log.lines)
        EXPECT_FALSE(line.contains("secret-token")) << line;
}

TEST_F(WebViewBridgeTest, TheServicesAnswerToATokenIsLoggedWithoutTheToken)
{
    openUsable();
    reply = R"({"ok":true})";
    post(authToken());
    EXPECT_TRUE(hasLine("[KestreluneMac] auth_token bridge: daemon accepted token"));
    reply = R"({"error":"no such token: secret-token!"})";
    post(authToken());
    EXPECT_TRUE(hasLine("[KestreluneMac] auth_token bridge: daemon rejected: rejected (no such token: …!)"));
    post({ { "type", "auth_token" }, { "token", 5 } });
    post({ { "type", "auth_token" } });
    EXPECT_EQ(std::ranges::count(log.lines, "[KestreluneMac] auth_token bridge: missing token field"), 2);
    EXPECT_EQ(requests.size(), 2U);
}

TEST_F(WebViewBridgeTest, SigningOutEndsTheNoticesUntilATokenIsAccepted)
{
    openUsable();
    const DeliveryGeneration generation(defaults);
    const auto isOn = [&] { return generation.allows(generation.current()); };
    post({ { "type", "logout" } });
    EXPECT_FALSE(isOn());
    EXPECT_EQ(defaults.get("habitReminders.signedOut"), DefaultsValue(true));
    reply = R"({"error":"no such token"})";
    post(authToken());
    EXPECT_FALSE(isOn());
    reply = R"({"ok":true})";
    const auto before = generation.current();
    post(authToken());
    EXPECT_TRUE(isOn());
    EXPECT_FALSE(generation.allows(before)) << "what was asked for while nobody was signed in";
}

TEST_F(WebViewBridgeTest, AnAcceptThatLandsAfterALogoutChangesNothing)
{
    openUsable();
    reply = R"({"ok":true})";
    auto& handler = webView.configuration->messageHandlers.at(0).handler;
    handler.messageArrived({ authToken().dump(), { true, "https", "www.example.com" } });
    handler.messageArrived({ R"({"type":"logout"})", { true, "https", "www.example.com" } });
    settle();
    const auto* const late
        = "[KestreluneMac] auth_token bridge: accept landed after a logout; habit reminders stay suppressed";
    EXPECT_TRUE(hasLine(late));
    EXPECT_EQ(defaults.get("habitReminders.logoutSequence"), DefaultsValue(std::int64_t { 1 }));
    EXPECT_EQ(defaults.get("habitReminders.signedOut"), DefaultsValue(true));
    EXPECT_EQ(defaults.get("habitReminders.deliveryGeneration"), DefaultsValue(std::int64_t { 1 }));
    log.lines.clear();
    post(authToken());
    EXPECT_FALSE(hasLine(late));
    EXPECT_EQ(defaults.get("habitReminders.signedOut"), DefaultsValue(false));
}

TEST_F(WebViewBridgeTest, NoTokenIsForwardedWhileTheServiceIsBeingRemoved)
{
    openUsable();
    removal.consume(statusWith(
        { { "removal", { { "state", "finishing" }, { "launch", "A" }, { "launch_order", 1 }, { "seq", 1 } } } }));
    post(authToken());
    EXPECT_TRUE(requests.empty());
    EXPECT_EQ(log.lines.back(), "[KestreluneMac] auth_token bridge: removal finishing, token not forwarded");
}

TEST_F(WebViewBridgeTest, ForceSyncAsksTheServiceAndSaysHowItWent)
{
    openUsable();
    reply = R"({"ok":true})";
    post({ { "type", "force_sync" } });
    EXPECT_EQ(requests.back(), (Json { { "type", "force_sync" } }));
    EXPECT_EQ(log.lines.back(), "[KestreluneMac] force_sync bridge: daemon accepted");
    reply = std::unexpected(DaemonError { DaemonError::Kind::connectionFailed, {} });
    post({ { "type", "force_sync" } });
    EXPECT_EQ(log.lines.back(), "[KestreluneMac] force_sync bridge: failed: connectionFailed");
}

TEST_F(WebViewBridgeTest, EveryStateThatThePageAsksForIsAnswered)
{
    openUsable();
    reply = statusReply({ { "energy", 12.5 } }).dump();
    for (const auto& [type, event] : std::initializer_list<std::pair<const char*, const char*>> {
             { "get_blocking_status", "kestrelune_blocking_status" },
             { "get_notification_status", "kestrelune_notification_status" },
             { "request_notification_permission", "kestrelune_notification_status" },
             { "get_device_setup_state", "kestrelune_device_setup_state" },
             { "get_removal_state", "kestrelune_removal_state" },
             { "get_updater_state", "kestrelune_updater_state" },
             { "set_updater_auto_checks_on", "kestrelune_updater_state" },
             { "set_updater_auto_checks_off", "kestrelune_updater_state" },
             { "updater_check_now", "kestrelune_updater_state" },
         }) {
        for (int time = 0; time < 2; ++time) { // Asking again is answered again.
            webView.scripts.clear();
            post({ { "type", type } });
            EXPECT_EQ(eventCount(event), 1) << type;
            EXPECT_EQ(webView.scripts.size(), 1U) << type;
        }
    }
    EXPECT_EQ(webView.scripts.back(),
        "window.dispatchEvent(new CustomEvent('kestrelune_updater_state', { detail: "
        R"({"automaticChecks":false,"available":false,"version":"0.121.0"} }));)");
}

TEST_F(WebViewBridgeTest, TheBlockingStatusIsTheServicesNowAndNothingWhenItIsAway)
{
    openUsable();
    reply = std::unexpected(DaemonError { DaemonError::Kind::connectionFailed, {} });
    post({ { "type", "get_blocking_status" } });
    EXPECT_TRUE(webView.scripts.empty());
    reply = statusReply({ { "energy", 7 } }).dump();
    auto& handler = webView.configuration->messageHandlers.at(0).handler;
    for (int time = 0; time < 50; ++time)
        handler.messageArrived({ R"({"type":"get_blocking_status"})", { true, "https", "www.example.com" } });
    settle();
    EXPECT_EQ(requests.size(), 2U) << "a page that keeps asking is asked for once";
    EXPECT_EQ(eventCount("kestrelune_blocking_status"), 1);
}

TEST_F(WebViewBridgeTest, UpdaterCommandsReachTheUpdater)
{
    FakeUpdater updater;
    openUsable(&updater);
    post({ { "type", "set_updater_auto_checks_on" } });
    EXPECT_TRUE(updater.checks);
    EXPECT_TRUE(webView.scripts.back().contains(R"("automaticChecks":true,"available":true)"));
    post({ { "type", "set_updater_auto_checks_off" } });
    EXPECT_FALSE(updater.checks);
    post({ { "type", "updater_check_now" } });
    EXPECT_EQ(updater.checksNow, 1);
}

TEST_F(WebViewBridgeTest, SetupActionsGoToTheDeviceSetup)
{
    openUsable();
    post({ { "type", "setup_install_service" } });
    EXPECT_EQ(deviceSetup.performed, std::vector<std::string> { "setup_install_service" });
}

TEST_F(WebViewBridgeTest, RemovalIsAskedForAndFollowed)
{
    openUsable();
    for (const auto& message :
        { Json { { "type", "request_uninstall" } }, Json { { "type", "request_uninstall" }, { "account", "12x" } },
            Json { { "type", "cancel_uninstall" }, { "account", "12" } },
            Json { { "type", "cancel_uninstall" }, { "account", "12" }, { "actionId", -1 } },
            Json { { "type", "cancel_uninstall" }, { "account", "12" }, { "actionId", 1.5 } },
            Json { { "type", "cancel_uninstall" }, { "account", "12" }, { "actionId", true } },
            Json { { "type", "cancel_uninstall" }, { "account", "12" }, { "actionId", 1ULL << 53U } } })
        post(message);
    EXPECT_TRUE(requests.empty());
    reply = R"({"ok":true,"removal":{"state":"pending","launch":"A","launch_order":1,"seq":2}})";
    post({ { "type", "request_uninstall" }, { "account", "12" } });
    post({ { "type", "cancel_uninstall" }, { "account", "12" }, { "actionId", 7 } });
    ASSERT_EQ(requests.size(), 2U);
    EXPECT_EQ(requests[0].at("type"), "queue_removal");
    EXPECT_EQ(requests[1].at("type"), "cancel_removal");
    EXPECT_EQ(eventCount("kestrelune_removal_state"), 1) << "the second reply brought nothing new";
}

TEST_F(WebViewBridgeTest, DuringAnInstallARemovalMayBeCancelledButNotAskedFor)
{
    openUsable();
    installer.inFlight = true;
    post({ { "type", "request_uninstall" }, { "account", "12" } });
    EXPECT_EQ(log.lines.back(), "[Removal] request_uninstall refused: a blocking service install is in flight (#8008)");
    EXPECT_TRUE(requests.empty());
    post({ { "type", "cancel_uninstall" }, { "account", "12" }, { "actionId", 7.0 } });
    ASSERT_EQ(requests.size(), 1U);
    EXPECT_EQ(requests[0].at("action_id").dump(), "7");
    installer.inFlight = false;
    post({ { "type", "request_uninstall" }, { "account", "12" } });
    EXPECT_EQ(requests.back().at("type"), "queue_removal");
}

TEST_F(WebViewBridgeTest, APageThatFollowsTheRemovalHearsWhenTheFilterMayBeRemoved)
{
    openUsable();
    deviceSetup.removable = true;
    deviceSetup.onChange();
    EXPECT_EQ(eventCount("kestrelune_removal_state"), 0) << "it has not asked";
    post({ { "type", "get_removal_state" } });
    deviceSetup.removable = false;
    deviceSetup.onChange();
    deviceSetup.onChange();
    EXPECT_EQ(eventCount("kestrelune_removal_state"), 2);
    EXPECT_TRUE(webView.scripts.back().contains(R"("filterRemovable":false)"));
}

TEST_F(WebViewBridgeTest, TheNotificationPermissionIsToldAgainWhenItChanged)
{
    openUsable();
    window->applicationDidBecomeActive();
    settle();
    EXPECT_TRUE(webView.scripts.empty()) << "the page has not asked yet";
    post({ { "type", "get_notification_status" } });
    EXPECT_EQ(webView.scripts.back(),
        "window.dispatchEvent(new CustomEvent('kestrelune_notification_status',{ detail: { authorization: "
        "'notDetermined' } }));");
    notifications.authorization = NotificationAuthorization::denied;
    for (int time = 0; time < 2; ++time) {
        window->applicationDidBecomeActive();
        settle();
    }
    EXPECT_EQ(webView.scripts.size(), 2U);
    EXPECT_TRUE(webView.scripts.back().contains("'denied'"));
}

TEST_F(WebViewBridgeTest, SettingsAndTheStoreOpenOutside)
{
    openUsable();
    post({ { "type", "open_extension_store" } });
    post({ { "type", "open_notification_settings" } });
    const std::string pane = "x-apple.systempreferences:com.apple.Notifications-Settings.extension";
    EXPECT_EQ(workspace.opened,
        (std::vector<std::string> { "https://store.example/extension", pane + "?id=com.brevanta.KestreluneMac" }));
    workspace.outcome = OpenOutcome::refused;
    post({ { "type", "open_extension_store" } });
    EXPECT_EQ(log.lines.back(), "[WebViewBridge] open_extension_store: the default browser refused the store URL");
    post({ { "type", "open_notification_settings" } });
    EXPECT_EQ(workspace.opened.back(), pane) << "the plain pane is tried too";
    EXPECT_EQ(log.lines.back(), "[WebViewBridge] open_notification_settings: System Settings refused every URL");
}

TEST_F(WebViewBridgeTest, TheLanguageIsKeptOnlyWhenItIsOneOfOurs)
{
    openUsable();
    for (const char* language : { "en", "zh-Hans", "es" }) {
        post({ { "type", "set_locale_preference" }, { "preference", language } });
        EXPECT_EQ(defaults.get("brevantaAppLanguage"), DefaultsValue(std::string(language)));
    }
    for (const auto& preference : { Json("fr"), Json(""), Json(1), Json() }) {
        post({ { "type", "set_locale_preference" }, { "preference", preference } });
        EXPECT_EQ(log.lines.back(), "[WebViewBridge] set_locale_preference: ignoring an unsupported value");
    }
    EXPECT_EQ(defaults.get("brevantaAppLanguage"), DefaultsValue(std::string("es")));
    post({ { "type", "set_locale_preference" }, { "preference", "system" } });
    EXPECT_EQ(defaults.get("brevantaAppLanguage"), std::nullopt);
}

TEST_F(WebViewBridgeTest, AnApplicationIsPickedOneAtATime)
{
    openUsable();
    workspace.applications["/Applications/Notes.app"]
        = { .bundleIdentifier = "com.example.notes", .displayName = "My \"Notes\"", .name = "Notes" };
    workspace.icon = { 1, 2, 3 };
    post({ { "type", "pick_app" }, { "platform", "windows" } });
    EXPECT_EQ(log.lines.back(), "[WebViewBridge] Ignoring pick_app for non-macOS platform: windows");
    post({ { "type", "pick_app" }, { "platform", 3 } });
    EXPECT_EQ(log.lines.back(), "[WebViewBridge] Ignoring pick_app for non-macOS platform: 3");
    EXPECT_TRUE(openPanel.presented.empty());

    post({ { "type", "pick_app" } });
    EXPECT_TRUE(mainWindow.isVisible());
    EXPECT_EQ(activations, 1);
    post({ { "type", "pick_app" }, { "platform", "macos" } });
    EXPECT_EQ(log.lines.back(), "[WebViewBridge] pick_app: a picker is already open");
    ASSERT_EQ(openPanel.presented.size(), 1U);
    EXPECT_EQ(openPanel.presented.front(),
        (OpenPanelRequest {
            .kind = OpenPanelKind::applications, .title = "Select an Application", .directory = "/Applications" }));
    openPanel.choose({ "/Applications/Notes.app" });
    settle();
    EXPECT_EQ(webView.scripts.back(),
        "window.dispatchEvent(new CustomEvent('kestrelune_app_picked', { detail: "
        R"({"bundle_id":"com.example.notes","name":"My \"Notes\"","icon":"data:image/png;base64,AQID"} }));)");
    EXPECT_EQ(workspace.iconSizes, std::vector<int> { 64 });

    webView.scripts.clear();
    for (const auto& choice : { std::vector<std::string> {}, std::vector<std::string> { "/Applications/Odd.app" } }) {
        post({ { "type", "pick_app" } });
        openPanel.choose(choice);
        settle();
    }
    EXPECT_TRUE(webView.scripts.empty()) << "a cancel, and a bundle without an identifier";
}

TEST_F(WebViewBridgeTest, APickedApplicationsNameFallsBack)
{
    openUsable();
    workspace.applications["/a/Plain.app"] = { .bundleIdentifier = "p", .displayName = {}, .name = "Short" };
    workspace.applications["/a/My.Tool.app"] = { .bundleIdentifier = "t", .displayName = {}, .name = {} };
    for (const auto& [path, name] : std::initializer_list<std::pair<const char*, const char*>> {
             { "/a/Plain.app", R"("name":"Short")" }, { "/a/My.Tool.app", R"("name":"My.Tool")" } }) {
        post({ { "type", "pick_app" } });
        openPanel.choose({ path });
        settle();
        EXPECT_TRUE(webView.scripts.back().contains(name)) << webView.scripts.back();
    }
}

}
