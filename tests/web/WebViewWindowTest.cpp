#include "support/WebBench.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace brevanta {

namespace {

class WebViewWindowTest : public testing::Test, protected WebBench { };

constexpr double week = 604'800;

}

TEST_F(WebViewWindowTest, TheWebViewIsConfiguredAndTheWindowBuiltHidden)
{
    open();
    ASSERT_TRUE(webView.configuration);
    EXPECT_EQ(webView.configuration->messageHandlers.at(0).name, "kestrelune");
    EXPECT_EQ(webView.configuration->replyHandlers.at(0).name, "kestreluneNav");
    EXPECT_EQ(webView.configuration->applicationNameForUserAgent, "KestreluneMac/0.121.0");
    EXPECT_EQ(webView.configuration->documentStartScript,
        "window.__kestreluneDevice = { id: \"" + uuid
            + "\", name: \"Ada's \\\"Mac\\\"\" };\nwindow.isKestreluneMac = true; window.kestreluneVersion = "
              "\"0.121.0\";\nwindow.kestreluneCapabilities = { dictation: true };");
    EXPECT_EQ(mainWindow.built, (MainWindowLayout { .title = "Brevanta", .width = 1200, .height = 800 }));
    EXPECT_FALSE(mainWindow.isVisible());
    EXPECT_TRUE(placeholder.isShown);
    EXPECT_TRUE(webView.loads.empty());
}

TEST_F(WebViewWindowTest, TheDeviceKeepsItsIdentifierUnlessItIsSpoilt)
{
    const std::string kept = "00000000-0000-4000-8000-000000000000";
    for (const auto& [stored, expected] : std::initializer_list<std::pair<DefaultsValue, std::string>> {
             { kept, kept }, { std::string("\" };alert(1)//"), uuid }, { true, uuid } }) {
        WebBench bench;
        bench.defaults.set("brevantaDeviceIdentifier", stored);
        bench.open();
        EXPECT_TRUE(bench.webView.configuration->documentStartScript.contains("id: \"" + expected + "\""));
        EXPECT_EQ(bench.defaults.get("brevantaDeviceIdentifier"), DefaultsValue(expected));
    }
}

TEST_F(WebViewWindowTest, OpeningOnceMoreKeepsThePageAndReloadingReloadsIt)
{
    openUsable();
    window->open();
    mainWindow.hide();
    window->open();
    EXPECT_TRUE(mainWindow.isVisible());
    EXPECT_EQ(activations, 2);
    EXPECT_EQ(webView.reloads, 0);
    window->reload();
    EXPECT_EQ(webView.reloads, 1);
    EXPECT_EQ(window->recover(), RecoverAnswer::deferred) << "the reload is under way";
}

TEST_F(WebViewWindowTest, AWindowThatIsGoneLeavesNothingBehindInTheEngine)
{
    openUsable();
    window.reset();
    EXPECT_TRUE(webView.isDetached);
    removal.serviceFailed(DaemonError {});
    placeholder.pressButton();
    mainLoop.advance(100);
    EXPECT_TRUE(webView.scripts.empty());
}

TEST_F(WebViewWindowTest, ASetupLinkWaitsForThePageUntilItIsConfirmed)
{
    const std::string pending = "window.dispatchEvent(new CustomEvent('kestrelune_navigation_pending'));";
    openUsable();
    EXPECT_EQ(ask({ { "type", "take_pending_navigation" } }), std::nullopt);
    window->deviceSetupLinkArrived();
    settle();
    EXPECT_EQ(webView.scripts, std::vector<std::string> { pending });
    const auto answer = ask({ { "type", "take_pending_navigation" } });
    ASSERT_TRUE(answer);
    EXPECT_EQ(Json::parse(*answer), (Json { { "target", "device-setup" }, { "token", uuid } }));
    EXPECT_EQ(ask({ { "type", "take_pending_navigation" } }), answer) << "taking does not end it";

    webView.scripts.clear();
    webView.beginForeign();
    webView.commit(urlOf("https", "www.example.com"));
    webView.finish();
    settle();
    EXPECT_EQ(std::ranges::count(webView.scripts, pending), 1) << "the next page is told too";

    for (const auto& ack :
        { Json { { "type", "ack_navigation" } }, Json { { "type", "ack_navigation" }, { "token", "no uuid" } },
            Json { { "type", "ack_navigation" }, { "token", "00000000-0000-4000-8000-000000000000" } },
            Json { { "type", "other" }, { "token", uuid } }, Json { { "token", uuid } }, Json(1) }) {
        EXPECT_EQ(ask(ack), std::nullopt);
        EXPECT_TRUE(ask({ { "type", "take_pending_navigation" } })) << ack.dump();
    }
    EXPECT_EQ(ask({ { "type", "ack_navigation" }, { "token", uuid } }), std::nullopt);
    EXPECT_EQ(ask({ { "type", "take_pending_navigation" } }), std::nullopt);
}

TEST_F(WebViewWindowTest, ASetupLinkIsForgottenAfterTwoMinutes)
{
    openUsable();
    window->deviceSetupLinkArrived();
    mainLoop.advance(120);
    EXPECT_TRUE(ask({ { "type", "take_pending_navigation" } }));
    mainLoop.advance(0.5);
    EXPECT_FALSE(ask({ { "type", "take_pending_navigation" } }));
}

TEST_F(WebViewWindowTest, OnlyTheTrustedMainFrameGetsOrEndsAPendingNavigation)
{
    openUsable();
    window->deviceSetupLinkArrived();
    for (const auto& frame : { FrameFacts { false, "https", "www.example.com" },
             FrameFacts { true, "http", "www.example.com" }, FrameFacts { true, "https", "login.example.org" },
             FrameFacts { true, "https", "" }, FrameFacts { true, "", "" } }) {
        EXPECT_EQ(ask({ { "type", "take_pending_navigation" } }, frame), std::nullopt);
        EXPECT_EQ(ask({ { "type", "ack_navigation" }, { "token", uuid } }, frame), std::nullopt);
    }
    EXPECT_TRUE(ask({ { "type", "take_pending_navigation" } }));
}

TEST_F(WebViewWindowTest, OnlyTheMicrophoneAndOnlyForTheTrustedMainFrame)
{
    struct Case {
        CaptureType type;
        FrameFacts frame;
        const char* denied; // Empty when it is granted.
    };
    openUsable();
    const FrameFacts trusted { true, "https", "www.example.com" };
    for (const auto& [type, frame, denied] : {
             Case { CaptureType::microphone, trusted, "" },
             Case { CaptureType::camera, trusted, "type 0 for https://www.example.com (mainFrame=true)" },
             Case { CaptureType::cameraAndMicrophone, trusted, "type 2 for https://www.example.com (mainFrame=true)" },
             Case { CaptureType::microphone, { false, "https", "www.example.com" },
                 "type 1 for https://www.example.com (mainFrame=false)" },
             Case { CaptureType::microphone, { true, "http", "www.example.com" },
                 "type 1 for http://www.example.com (mainFrame=true)" },
             Case { CaptureType::microphone, { true, "https", "login.example.org" },
                 "type 1 for https://login.example.org (mainFrame=true)" },
             Case { CaptureType::microphone, { true, "https", "" }, "type 1 for https:// (mainFrame=true)" },
         }) {
        log.lines.clear();
        const bool granted = std::string(denied).empty();
        EXPECT_EQ(webView.configuration->uiDelegate.decideCapture(type, frame),
            granted ? CaptureDecision::grant : CaptureDecision::deny)
            << denied;
        EXPECT_EQ(log.lines,
            granted ? std::vector<std::string> {}
                    : std::vector<std::string> { "[MediaCapture] Denied " + std::string(denied) });
    }
}

TEST_F(WebViewWindowTest, FilesAreChosenForTheTrustedMainFrameAndRefusedWithAnAnswer)
{
    openUsable();
    std::vector<std::vector<std::string>> answers;
    const auto choose = [&](const FrameFacts& frame) {
        webView.configuration->uiDelegate.chooseFiles({ .allowsMultiple = true, .allowsDirectories = false }, frame,
            [&](auto paths) { answers.push_back(std::move(paths)); });
    };
    choose({ false, "https", "www.example.com" });
    EXPECT_EQ(answers, (std::vector<std::vector<std::string>> { {} }));
    EXPECT_EQ(log.lines.back(), "[FileInput] Denied open panel for https://www.example.com (mainFrame=false)");
    EXPECT_FALSE(mainWindow.isVisible());

    choose({ true, "https", "www.example.com" });
    EXPECT_TRUE(mainWindow.isVisible());
    EXPECT_EQ(openPanel.presented,
        (std::vector<OpenPanelRequest> { { .kind = OpenPanelKind::files,
            .title = {},
            .directory = {},
            .allowsMultiple = true,
            .allowsDirectories = false } }));
    openPanel.choose({ "/a", "/b" });
    settle();
    EXPECT_EQ(answers.back(), (std::vector<std::string> { "/a", "/b" }));
}

TEST_F(WebViewWindowTest, TheInspectorIsOnUntilItsDateAndNoLonger)
{
    defaults.set("WebInspectorEnabledUntil", DefaultsDate { clock.wallSeconds() + 3600 });
    open();
    EXPECT_EQ(webView.inspectable, Inspectable::yes);
    EXPECT_EQ(log.categorized, std::vector<std::string> { "WebInspector: Web Inspector on" });
    mainLoop.advance(3599);
    EXPECT_EQ(webView.inspectable, Inspectable::yes);
    mainLoop.advance(1);
    EXPECT_EQ(webView.inspectable, Inspectable::no);
    EXPECT_EQ(log.categorized.back(), "WebInspector: Web Inspector off");
    EXPECT_FALSE(defaults.persistent("WebInspectorEnabledUntil").isStored);
}

TEST_F(WebViewWindowTest, WhatIsNoDateOfTheNextSevenDaysIsRemoved)
{
    const auto now = clock.wallSeconds();
    for (const auto& value : std::initializer_list<DefaultsValue> { DefaultsDate { now }, DefaultsDate { now - 1 },
             DefaultsDate { now + week + 1 }, DefaultsDate { std::numeric_limits<double>::quiet_NaN() },
             std::string("2099-01-01"), now + 10, true }) {
        WebBench bench;
        bench.defaults.set("WebInspectorEnabledUntil", value);
        bench.open();
        EXPECT_EQ(bench.webView.inspectable, Inspectable::no);
        EXPECT_FALSE(bench.defaults.persistent("WebInspectorEnabledUntil").isStored);
        EXPECT_EQ(bench.log.categorized,
            (std::vector<std::string> {
                "WebInspector: Web Inspector switch value rejected and removed", "WebInspector: Web Inspector off" }));
    }
    WebBench bench;
    bench.defaults.storeUnknownShape("WebInspectorEnabledUntil");
    bench.open();
    EXPECT_FALSE(bench.defaults.persistent("WebInspectorEnabledUntil").isStored);
}

TEST_F(WebViewWindowTest, TheInspectorsSwitchIsLookedAtAgainWhenTheUserComesBackOrTheMachineWakes)
{
    open();
    defaults.set("WebInspectorEnabledUntil", DefaultsDate { clock.wallSeconds() + week });
    window->applicationDidBecomeActive();
    EXPECT_EQ(webView.inspectable, Inspectable::yes);
    clock.setWallSeconds(clock.wallSeconds() + week + 1); // Slept through it; the timer has not noticed.
    window->systemDidWake();
    EXPECT_EQ(webView.inspectable, Inspectable::no);
    EXPECT_EQ(mainLoop.timerCount(), 0U);
}

}
