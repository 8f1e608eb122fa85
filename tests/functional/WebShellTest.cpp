#include "WebTest.h"

namespace brevanta::functional {

using WebShellTest = WebTest;

static constexpr Milliseconds firstTimeout { 30000 };

TEST_F(WebShellTest, theApplicationIsLoadedThroughTheLaunchHoldAndKnowsWhoShowsIt)
{
    ASSERT_TRUE(showsPage());
    EXPECT_TRUE(logs("[ShellLoad] released (filter activation settled) → phase=provisional attempt=0 inFlight=1 "
                     "commands=[load(1, 20.0)]"));
    EXPECT_TRUE(logs("[ShellLoad] didFinish gen 1 → phase=usable attempt=0 inFlight=nil "
                     "commands=[cancelRetry, hidePlaceholder]"));
    EXPECT_TRUE(web().awaitTrue("window.isKestreluneMac === true && window.kestreluneVersion === '0.121.0' && "
                                "window.kestreluneCapabilities.dictation === true && "
                                "/^[0-9a-f-]{36}$/.test(window.__kestreluneDevice.id) && "
                                "window.__kestreluneDevice.name.length > 0"));
    EXPECT_TRUE(web().awaitTrue("navigator.userAgent.endsWith(' KestreluneMac/0.121.0')"));
}

TEST_F(WebShellTest, thePageShowsWhatThePollPushes)
{
    ASSERT_TRUE(showsPage());
    listenFor("kestrelune_blocking_status");
    tell("energy 7.25");
    tell("block on situation");
    EXPECT_TRUE(web().awaitTrue("window.heard.some((e) => e.detail.energy === 7.25 && e.detail.blocking === true)"));
}

TEST_F(WebShellTest, closingTheWindowKeepsThePageAndItsState)
{
    ASSERT_TRUE(showsPage());
    ASSERT_TRUE(web().evaluate("window.kept = 'still here'"));
    ASSERT_TRUE(showsWindows(1));
    const auto window = [this] { return bench().display().windowsTitled(BrevantaClient::windowTitle).front(); };
    for (const bool byKey : { false, true }) {
        if (byKey)
            ASSERT_TRUE(bench().display().press(window(), "ctrl+w"));
        else
            bench().display().pressCloseButton(window());
        ASSERT_TRUE(showsWindows(0));
        click("Open Brevanta");
        ASSERT_TRUE(showsWindows(1));
        EXPECT_EQ(web().evaluate("window.kept"), "\"still here\"");
    }
}

TEST_F(WebShellTest, reloadByItsKeyBringsANewDocument)
{
    ASSERT_TRUE(showsPage());
    // A text field of the page has the keyboard, and the page would take every key.
    ASSERT_TRUE(web().evaluate("(document.body.appendChild(document.createElement('input')).focus(), "
                               "window.onkeydown = (event) => event.preventDefault(), window.kept = 'still here')"));
    const auto window = bench().display().windowsTitled(BrevantaClient::windowTitle).front();
    ASSERT_TRUE(bench().display().press(window, "ctrl+r"));
    EXPECT_TRUE(logs("[ShellLoad] user retry → phase=provisional attempt=0 inFlight=2 commands=[cancelRetry, "
                     "reloadFromOrigin(2)]"));
    EXPECT_TRUE(web().awaitTrue("window.kept === undefined"));
}

TEST_F(WebShellTest, aReloadThatFailsKeepsThePage)
{
    ASSERT_TRUE(showsPage());
    ASSERT_TRUE(web().evaluate("window.kept = 'still here'"));
    std::size_t reloads = 0;
    // Nobody listens where the second one leads. A connection that is closed in the middle would do, too, but that
    // makes the engine's own network process crash now and then (WebKitGTK 2.52).
    for (const char* misbehaviour : { "status 503", "redirect https://localhost:1/" }) {
        tellWeb(misbehaviour);
        // The line is written only when no reload is under way any more, so the one before has come to its end.
        ++reloads;
        ASSERT_TRUE(awaitByAsking(
            [&] {
                click("Reload");
                return lineCount("[ShellLoad] user retry") == reloads;
            },
            pagePatience));
        ASSERT_TRUE(web().command("await / " + std::to_string(reloads + 1)));
        EXPECT_EQ(web().evaluate("window.kept"), "\"still here\"") << misbehaviour;
    }
    tellWeb("behave");
    EXPECT_TRUE(awaitByAsking(
        [&] {
            click("Reload");
            return web().evaluate("window.kept === undefined") == "true";
        },
        pagePatience));
}

TEST_F(WebShellTest, aServerThatGoesIsMissedAndFoundAgain)
{
    ASSERT_TRUE(showsPage());
    tellWeb("refuse");
    killWebProcess();
    ASSERT_TRUE(logs("NSURLErrorDomain -1004 → phase=blank attempt=1 inFlight=nil "
                     "commands=[showPlaceholder(retrying), scheduleRetry("));
    tellWeb("behave");
    EXPECT_TRUE(showsPage()) << "by itself";
}

TEST_F(WebShellTest, aWebProcessThatDiesIsReplacedAtOnceAndTheSecondTimeWithCare)
{
    ASSERT_TRUE(showsPage());
    ASSERT_TRUE(web().evaluate("window.kept = 'still here'"));
    killWebProcess();
    EXPECT_TRUE(logs("[ShellLoad] content process terminated → phase=provisional attempt=0 inFlight=2 "
                     "commands=[cancelRetry, showPlaceholder(loading), load(2, 20.0)]"));
    ASSERT_TRUE(web().awaitTrue("window.kept === undefined"));
    ASSERT_TRUE(logs("didFinish gen 2"));
    killWebProcess();
    EXPECT_TRUE(logs("[ShellLoad] content process terminated → phase=blank attempt=1 inFlight=nil "
                     "commands=[cancelRetry, showPlaceholder(loading), showPlaceholder(retrying), "
                     "scheduleRetry(3, after: 1.0)]"));
    EXPECT_TRUE(logs("didFinish gen 3"));
    EXPECT_TRUE(showsPage());
}

class OtherCertificateTest : public WebTest {
protected:
    OtherCertificateTest()
        : WebTest({ .webPreparations = { "certificate other" } })
    {
    }
};

TEST_F(OtherCertificateTest, isNotTrustedAndNotTriedAgainUntilTheUserAsks)
{
    ASSERT_TRUE(logs("commands=[showPlaceholder(unreachable)]"));
    tellWeb("certificate own");
    click("Open Brevanta");
    EXPECT_TRUE(showsPage());
}

class ServerErrorTest : public WebTest {
protected:
    ServerErrorTest()
        : WebTest({ .webPreparations = { "status 500" } })
    {
    }
};

TEST_F(ServerErrorTest, isTriedAgainUntilTheServerIsWell)
{
    ASSERT_TRUE(logs("[ShellLoad] the server answered with status 500"));
    ASSERT_TRUE(logs("[ShellLoad] didFail gen 1 NSURLErrorDomain -1011 → phase=blank attempt=1"));
    tellWeb("behave");
    EXPECT_TRUE(showsPage());
}

class OutsideRedirectTest : public WebTest {
protected:
    OutsideRedirectTest()
        : WebTest({ .webPreparations = { "redirect https://example.org/" } })
    {
    }
};

TEST_F(OutsideRedirectTest, isNotFollowed)
{
    EXPECT_TRUE(logs("[WebViewBridge] Cancelled navigation to non-allowed origin: https://example.org/"));
    EXPECT_TRUE(logs("commands=[showPlaceholder(unreachable)]"));
    EXPECT_TRUE(openedOutside().empty());
}

class SilentServerTest : public WebTest {
protected:
    SilentServerTest()
        : WebTest({ .webPreparations = { "hang" } })
    {
    }
};

TEST_F(SilentServerTest, isGivenUpAfterTwentySecondsAndFoundOnceItAnswers)
{
    ASSERT_TRUE(logs("commands=[load(1, 20.0)]"));
    // The client stays alive meanwhile.
    tell("energy 17");
    EXPECT_TRUE(showsLine("Blocking: Inactive (17.00 Coins)"));
    ASSERT_TRUE(logs("[ShellLoad] didFail gen 1 NSURLErrorDomain -1001 → phase=blank attempt=1", firstTimeout));
    tellWeb("behave");
    EXPECT_TRUE(showsPage());
}

class SlowServerTest : public WebTest {
protected:
    SlowServerTest()
        : WebTest({ .webPreparations = { "delay 25000 times 2" } })
    {
    }
};

TEST_F(SlowServerTest, isGivenUpAfterTwentySecondsAndThenGivenMoreTime)
{
    constexpr Milliseconds secondAnswer { 60000 };
    ASSERT_TRUE(logs("[ShellLoad] didFail gen 1 NSURLErrorDomain -1001 → phase=blank attempt=1", firstTimeout));
    EXPECT_TRUE(logs("[ShellLoad] didFinish gen 2 → phase=usable attempt=0", secondAnswer));
}

}
