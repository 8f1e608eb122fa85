#include "WebTest.h"

namespace brevanta::functional {

// The page's messages, and what comes of them outside of the client.
class PageBridgeTest : public WebTest {
protected:
    void SetUp() override
    {
        WebTest::SetUp();
        ASSERT_TRUE(showsPage());
    }

    // Presses a button of the page, which must be one that can be pressed.
    void press(const std::string& selector)
    {
        const auto enabled = "document.querySelector('" + selector + ":enabled') !== null";
        EXPECT_TRUE(web().awaitTrue(enabled)) << selector;
        EXPECT_EQ(web().evaluate("(document.querySelector('" + selector + "').click(), true)"), "true");
    }
};

TEST_F(PageBridgeTest, signingInReachesTheServiceWithAndWithoutADevice)
{
    const auto before = service().requestCount("set_auth_token").value_or(0);
    tell("token accept");
    post("{ type: 'auth_token', token: 'tok-plain' }");
    ASSERT_TRUE(logs("[KestreluneMac] auth_token bridge: forwarding (len=9, deviceBound=false) to daemon"));
    ASSERT_TRUE(logs("[KestreluneMac] auth_token bridge: daemon accepted token"));
    post("{ type: 'auth_token', token: 'tok-bound', device_id: window.__kestreluneDevice.id }");
    ASSERT_TRUE(logs("[KestreluneMac] auth_token bridge: forwarding (len=9, deviceBound=true) to daemon"));
    ASSERT_TRUE(service().command("await set_auth_token " + std::to_string(before + 2)));
    EXPECT_FALSE(bench().client().log().contains("tok-plain"));
    EXPECT_FALSE(bench().client().log().contains("tok-bound"));
}

TEST_F(PageBridgeTest, aRejectedTokenIsAskedForAgain)
{
    listenFor("kestrelune_token_refresh");
    tell("token expire");
    EXPECT_TRUE(web().awaitTrue("window.heard.some((e) => e.name === 'kestrelune_token_refresh')"));
    EXPECT_TRUE(logs("auth_token_invalid: signalled SPA to re-forward daemon token"));
}

TEST_F(PageBridgeTest, everyStateIsAnswered)
{
    for (const auto& [request, event] : std::initializer_list<std::pair<const char*, const char*>> {
             { "get_blocking_status", "kestrelune_blocking_status" },
             { "get_notification_status", "kestrelune_notification_status" },
             { "get_device_setup_state", "kestrelune_device_setup_state" },
             { "get_removal_state", "kestrelune_removal_state" },
             { "get_updater_state", "kestrelune_updater_state" },
         }) {
        listenFor(event);
        ASSERT_EQ(web().evaluate("(window.heard = [], true)"), "true");
        post(std::string("{ type: '") + request + "' }");
        EXPECT_TRUE(web().awaitTrue(
            std::string("window.heard.some((e) => e.name === '") + event + "' && typeof e.detail === 'object')"))
            << request;
    }
}

TEST_F(PageBridgeTest, thePagesButtonsSynchroniseAskForARemovalAndTakeItBack)
{
    press("#settings [data-message=force_sync]");
    ASSERT_TRUE(service().command("await force_sync 1"));
    EXPECT_TRUE(logs("[KestreluneMac] force_sync bridge: daemon accepted"));
    press("#leave");
    press("#settings [data-message=request_uninstall]");
    ASSERT_TRUE(service().command("await queue_removal 1"));
    ASSERT_TRUE(web().awaitTrue("!document.getElementById('keep-service').closest('[hidden]')"));
    press("#keep-service");
    ASSERT_TRUE(service().command("await cancel_removal 1"));
    EXPECT_TRUE(web().awaitTrue("document.getElementById('removal-note').hidden"));
}

TEST_F(PageBridgeTest, aLinkToAnOutsideSiteOpensOutsideAndThePageStays)
{
    ASSERT_EQ(
        web().evaluate("(window.kept = 1, document.querySelector('a[href^=\"https://example.org\"]').click(), true)"),
        "true");
    EXPECT_TRUE(awaitByAsking(
        [this] { return openedOutside() == std::vector<std::string> { "https://example.org/" }; }, patience));
    EXPECT_EQ(web().evaluate("window.kept"), "1");
}

TEST_F(PageBridgeTest, aRedirectByScriptIsCancelledAndThePageStays)
{
    ASSERT_EQ(web().evaluate("(window.kept = 1, location.href = 'https://example.org/', true)"), "true");
    EXPECT_TRUE(logs("[WebViewBridge] Cancelled navigation to non-allowed origin: https://example.org/"));
    EXPECT_EQ(web().evaluate("window.kept"), "1");
    EXPECT_TRUE(openedOutside().empty());
    // The page works on as before.
    listenFor("kestrelune_updater_state");
    post("{ type: 'get_updater_state' }");
    EXPECT_TRUE(web().awaitTrue("window.heard.length > 0"));
}

TEST_F(PageBridgeTest, aConfirmIsAnsweredByTheUserOrByAReload)
{
    const auto& display = bench().display();
    const auto ask = [&] {
        EXPECT_EQ(web().evaluate("(setTimeout(() => { window.answer = confirm('Sure?'); }, 0), true)"), "true");
        return display.awaitWindows("localhost", 1, patience);
    };
    ASSERT_TRUE(ask());
    display.pressCloseButton(display.windowsTitled("localhost").front());
    EXPECT_TRUE(web().awaitTrue("window.answer === false"));
    ASSERT_TRUE(ask());
    click("Reload");
    EXPECT_TRUE(web().awaitTrue("window.answer === undefined"));
    EXPECT_TRUE(display.awaitWindows("localhost", 0, patience));
}

TEST_F(PageBridgeTest, aPickedApplicationIsWhatThePageGetsOrNothing)
{
    post("{ type: 'pick_app', platform: 'windows' }");
    EXPECT_TRUE(logs("[WebViewBridge] Ignoring pick_app for non-macOS platform: windows"));
    post("{ type: 'pick_app', platform: 'macos' }");
    ASSERT_TRUE(bench().display().awaitWindows("Select an Application", 1, patience));
    post("{ type: 'pick_app', platform: 'macos' }");
    EXPECT_TRUE(logs("[WebViewBridge] pick_app: a picker is already open"));
    bench().display().pressCloseButton(bench().display().windowsTitled("Select an Application").front());
    EXPECT_TRUE(bench().display().awaitWindows("Select an Application", 0, patience));
}

}
