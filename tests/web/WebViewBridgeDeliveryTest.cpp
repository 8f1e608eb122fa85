#include "web/WebViewBridgeTest.h"

namespace brevanta {

TEST_F(WebViewBridgeTest, OnlyTheServicesAndTheSignInPagesAreNavigatedTo)
{
    openUsable();
    using enum NavigationType;
    const auto decide = [&](const std::optional<Url>& url, NavigationType type) {
        const auto decision = navigation().decideAction({ url, type });
        settle();
        return decision;
    };
    for (const auto& url :
        { urlOf("https", "www.example.com"), urlOf("https", "EXAMPLE.com."), urlOf("https", "login.example.org") })
        EXPECT_EQ(decide(url, other), NavigationDecision::allow) << url.text;
    EXPECT_EQ(decide(std::nullopt, linkActivated), NavigationDecision::cancel);
    EXPECT_TRUE(log.lines.empty());

    const std::string cancelled = "[WebViewBridge] Cancelled navigation to non-allowed origin: ";
    for (const auto& url :
        { urlOf("http", "www.example.com"), urlOf("https", "other.example"), urlOf("data", ""), urlOf("about", "") }) {
        EXPECT_EQ(decide(url, other), NavigationDecision::cancel);
        EXPECT_EQ(log.lines.back(), cancelled + url.text);
    }
    // A script can click on a link as well, as often as it likes.
    for (const char* scheme : { "x-apple.systempreferences", "file", "ftp", "data", "blob", "tel", "brevanta", "" }) {
        for (int click = 0; click < 2; ++click) {
            log.lines.clear();
            EXPECT_EQ(decide(urlOf(scheme, "x"), linkActivated), NavigationDecision::cancel);
            EXPECT_EQ(log.lines, std::vector<std::string> { cancelled + scheme + "://x/" });
        }
    }
    EXPECT_TRUE(workspace.opened.empty());
    log.lines.clear();
    for (const char* scheme : { "https", "HTTP", "mailto" })
        EXPECT_EQ(decide(urlOf(scheme, "other.example", "/x"), linkActivated), NavigationDecision::cancel);
    EXPECT_EQ(workspace.opened,
        (std::vector<std::string> { "https://other.example/x", "HTTP://other.example/x", "mailto://other.example/x" }));
    EXPECT_TRUE(log.lines.empty());
}

TEST_F(WebViewBridgeTest, ALinkThatAsksForAWindowLoadsInThisOneAndNothingElseOpensOne)
{
    openUsable();
    auto& browser = webView.configuration->browserDelegate;
    const auto before = webView.loads.size();
    const auto service = urlOf("https", "www.example.com", "/help");
    browser.newWindowRequested({ service, NavigationType::linkActivated });
    EXPECT_EQ(webView.loads.size(), before) << "not from inside of the engine's question";
    settle();
    EXPECT_EQ(webView.loads.back(), (FakeWebView::Load { service.text, 60 }));
    EXPECT_TRUE(log.lines.empty());
    for (int time = 0; time < 2; ++time) {
        browser.newWindowRequested({ service, NavigationType::other });
        browser.newWindowRequested({ std::nullopt, NavigationType::other });
        browser.newWindowRequested({ urlOf("https", "other.example"), NavigationType::linkActivated });
        navigation().downloadRefused();
        settle();
    }
    EXPECT_EQ(webView.loads.size(), before + 1);
    const std::vector<std::string> said {
        "[WebViewBridge] the page wants what it does not get here: a window of its own",
        "[WebViewBridge] the page wants what it does not get here: a download"
    };
    EXPECT_EQ(log.lines, said) << "once for each page";
    webView.commit(service);
    log.lines.clear();
    navigation().downloadRefused();
    EXPECT_EQ(log.lines, std::vector<std::string> { said.back() });
}

TEST_F(WebViewBridgeTest, AServerErrorIsAFailureOfOurOwnLoadsOnly)
{
    open();
    window->loadCoordinator().prepare();
    window->loadCoordinator().release("released");
    EXPECT_EQ(navigation().decideResponse({ 404 }), NavigationDecision::allow);
    EXPECT_EQ(navigation().decideResponse({ 500 }), NavigationDecision::cancel);
    webView.commit(urlOf("https", "www.example.com"));
    webView.finish();
    webView.beginForeign();
    EXPECT_EQ(navigation().decideResponse({ 503 }), NavigationDecision::allow) << "the user sees the page's own error";
}

TEST_F(WebViewBridgeTest, NothingReachesADocumentThatIsNotTrusted)
{
    const auto dropped = "[WebViewBridge] Dropping native → web delivery: current document is not bridge-trusted";
    open();
    window->pushBlockingStatus(statusWith(Json::object()));
    settle();
    EXPECT_EQ(std::ranges::count(log.lines, dropped), 0) << "no document is there yet that could be refused";
    for (const auto& url : { urlOf("https", "login.example.org"), urlOf("http", "www.example.com") }) {
        webView.beginForeign();
        webView.commit(url);
        webView.finish();
        settle();
        window->pushBlockingStatus(statusWith(Json::object()));
        settle();
        window->requestToken();
        EXPECT_TRUE(webView.scripts.empty());
    }
    webView.terminateContentProcess();
    window->pushBlockingStatus(statusWith(Json::object()));
    settle();
    EXPECT_EQ(std::ranges::count(log.lines, dropped), 1) << "a row of refusals is logged once";
    webView.commit(urlOf("https", "www.example.com"));
    window->requestToken();
    EXPECT_EQ(eventCount("kestrelune_token_refresh"), 1);
    webView.commit(urlOf("https", "login.example.org"));
    window->requestToken();
    EXPECT_EQ(eventCount("kestrelune_token_refresh"), 1);
    EXPECT_EQ(std::ranges::count(log.lines, dropped), 2) << "another row";
}

TEST_F(WebViewBridgeTest, ATokenRequestThatNoPageCouldHearIsMadeAgainOnce)
{
    openUsable();
    const auto told = [this] { return eventCount("kestrelune_token_refresh"); };
    const auto load = [this](const std::string& host) {
        webView.beginForeign();
        webView.commit(urlOf("https", host));
        webView.finish();
    };
    webView.terminateContentProcess();
    window->requestToken();
    load("login.example.org");
    EXPECT_EQ(told(), 0);
    load("www.example.com");
    load("www.example.com");
    EXPECT_EQ(told(), 1);
    webView.beginForeign();
    webView.commit(urlOf("https", "www.example.com"));
    window->requestToken();
    webView.finish();
    EXPECT_EQ(told(), 3) << "its own scripts may not have listened before";
    window->requestToken();
    load("www.example.com");
    EXPECT_EQ(told(), 4) << "it was heard";
    webView.terminateContentProcess();
    window->requestToken();
    window->withdrawTokenRequest();
    load("www.example.com");
    EXPECT_EQ(told(), 4);
}

TEST_F(WebViewBridgeTest, WhatADocumentWasToldIsForgottenWithIt)
{
    openUsable();
    deviceSetup.onChange();
    post({ { "type", "get_removal_state" } });
    post({ { "type", "get_notification_status" } });
    notifications.authorization = NotificationAuthorization::denied;
    const auto change = [&] {
        webView.scripts.clear();
        deviceSetup.onChange();
        removal.consume(statusWith(Json::object()));
        window->applicationDidBecomeActive();
        settle();
        return std::vector { eventCount("kestrelune_device_setup_state"), eventCount("kestrelune_removal_state"),
            eventCount("kestrelune_notification_status") };
    };
    const std::vector<std::ptrdiff_t> nothing { 0, 0, 0 };
    EXPECT_EQ(change(), (std::vector<std::ptrdiff_t> { 0, 0, 1 }));
    webView.finish();
    EXPECT_EQ(change(), nothing) << "the same document";
    webView.beginForeign();
    webView.commit(urlOf("https", "www.example.com"));
    notifications.authorization = NotificationAuthorization::authorized;
    EXPECT_EQ(change(), (std::vector<std::ptrdiff_t> { 1, 0, 0 }))
        << "the new one has asked neither for the removal nor for the permission";
}

TEST_F(WebViewBridgeTest, OnlyTheTrustedMainFramesDialogsAreShownAndEachIsAnsweredOnce)
{
    using enum PageDialogKind;
    const FrameFacts trusted { true, "https", "www.example.com" };
    struct Case {
        PageDialogKind kind;
        FrameFacts frame;
        std::vector<std::string> buttons; // None when it is not shown.
        std::function<void(WebBench&)> end;
        DialogAnswer answer { DialogAnswer::dismissed };
    };
    const auto press = [](std::size_t button) {
        return [button](WebBench& bench) {
            bench.alertPanel.answer({ AlertEnd::button, button });
            bench.settle();
        };
    };
    const auto commit = [](WebBench& bench) { bench.webView.commit(urlOf("https", "www.example.com")); };
    for (const auto& [kind, frame, buttons, end, answer] :
        {
            Case { alert, trusted, { "OK" }, press(0), DialogAnswer::accepted },
            Case { confirm, trusted, { "OK", "Cancel" }, press(0), DialogAnswer::accepted },
            Case { confirm, trusted, { "OK", "Cancel" }, press(1) },
            Case { confirm, trusted, { "OK", "Cancel" }, commit },
            Case { confirm, trusted, { "OK", "Cancel" }, [](auto& bench) { bench.window->reload(); } },
            Case { confirm, trusted, { "OK", "Cancel" }, [](auto& bench) { bench.webView.terminateContentProcess(); } },
            Case { prompt, trusted, {}, {} },
            Case { alert, { false, "https", "www.example.com" }, {}, {} },
            Case { confirm, { true, "https", "login.example.org" }, {}, {} },
        }) {
        WebBench bench;
        bench.openUsable();
        std::vector<DialogAnswer> answers;
        // The second one comes while the alert of the first may still be on its way off the screen.
        for (std::size_t time = 1; time <= 2; ++time) {
            bench.webView.configuration->browserDelegate.showDialog(
                { kind, std::string(5000, 'x') }, frame, [&](DialogAnswer given) { answers.push_back(given); });
            if (!buttons.empty()) {
                bench.window->pushBlockingStatus(statusWith(Json::object()));
                EXPECT_EQ(bench.pageScriptQueue.pending(), 0U) << "the page could only gather scripts";
                bench.settle();
                EXPECT_EQ(answers.size(), time - 1);
                end(bench);
            }
            EXPECT_EQ(answers, std::vector(time, answer)) << "at once: the page stands still until then";
            if (!buttons.empty()) {
                commit(bench);
                bench.webView.finish();
            }
        }
        EXPECT_EQ(bench.alertPanel.presented.size(), buttons.empty() ? 0U : 2U);
        for (const auto& shown : bench.alertPanel.presented) {
            EXPECT_EQ(shown.buttons, buttons);
            EXPECT_LT(shown.informativeText.size(), 2100U);
        }
        const auto isRefusal = [](const std::string& line) { return line.contains("what it does not get here"); };
        EXPECT_EQ(std::ranges::count_if(bench.log.lines, isRefusal), buttons.empty() ? 1 : 0) << "once for each page";
    }
}

TEST_F(WebViewBridgeTest, EachEndOfANavigationAsksForTheOnboardingState)
{
    openUsable();
    const std::string script = "window.dispatchEvent(new CustomEvent('kestrelune_request_onboarding_state'));";
    webView.beginForeign();
    webView.commit(urlOf("https", "www.example.com"));
    settle();
    EXPECT_TRUE(webView.scripts.empty());
    webView.finish();
    EXPECT_TRUE(webView.scripts.empty()) << "later, not from inside the callback";
    settle();
    EXPECT_EQ(webView.scripts, std::vector<std::string> { script });
    webView.beginForeign();
    webView.fail({ "NSURLErrorDomain", -999 });
    settle();
    EXPECT_EQ(webView.scripts, (std::vector<std::string> { script, script }));
}

TEST_F(WebViewBridgeTest, TheDeviceSetupIsToldOfEveryPageChange)
{
    openUsable();
    const auto before = deviceSetup.pageChanges;
    webView.beginForeign();
    webView.commit(urlOf("https", "www.example.com"));
    webView.terminateContentProcess();
    EXPECT_EQ(deviceSetup.pageChanges, before + 2);
}

}
