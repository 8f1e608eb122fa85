#include "WebTest.h"

namespace brevanta::functional {

class HostileTest : public WebTest {
protected:
    using WebTest::WebTest;

    // Nothing of what the hostile script posts may have come through.
    void expectNothingReached()
    {
        for (const char* type : { "set_auth_token", "force_sync", "queue_removal", "cancel_removal" })
            EXPECT_EQ(service().requestCount(type), 0U) << type;
        EXPECT_TRUE(bench().display().windowsTitled("Select an Application").empty());
        EXPECT_EQ(lineCount("[KestreluneMac]"), 0U);
        EXPECT_EQ(lineCount("[Removal]"), 0U);
        EXPECT_FALSE(bench().client().log().contains("stolen"));
    }
};

class UntrustedMainFrameTest : public HostileTest {
protected:
    // The page may be navigated to, as a sign-in page may, and is not trusted.
    UntrustedMainFrameTest()
        : HostileTest({ .pagesFolder = BREVANTA_TEST_PAGES,
              .startPage = "pages/hostile.html",
              .trustedHosts = "www.brevanta.example",
              .signInHosts = "localhost" })
    {
    }
};

TEST_F(UntrustedMainFrameTest, isHeardByNobodyAndToldNothing)
{
    for (const char* type :
        { "auth_token", "request_uninstall", "cancel_uninstall", "logout", "force_sync", "pick_app" })
        EXPECT_TRUE(logs(std::string("[WebViewBridge] Ignoring '") + type
            + "' message — untrusted source frame (mainFrame=true, origin=https://localhost)"))
            << type;
    EXPECT_TRUE(logs("[WebViewBridge] Dropping native → web delivery: current document is not bridge-trusted"));
    ASSERT_TRUE(service().awaitHandledPolls(2));
    EXPECT_EQ(web().evaluate("window.heard.length"), "0");
    EXPECT_EQ(web().evaluate("window.stolen === undefined"), "true");
    expectNothingReached();
}

class HostileFramesTest : public HostileTest {
protected:
    HostileFramesTest()
        : HostileTest({ .pagesFolder = BREVANTA_TEST_PAGES, .startPage = "pages/frames.html" })
    {
    }
};

TEST_F(HostileFramesTest, ofEveryKindAreHeardByNobody)
{
    ASSERT_TRUE(web().awaitTrue("typeof addFrames === 'function'"));
    ASSERT_EQ(web().evaluate("addFrames('" + web().secondUrl() + "', '" + web().plainUrl() + "')"), "9");
    // Five of them may load, and are refused for who they are: the same origin, sandboxed and not, the other port and
    // the blank one that inherits it; and the sandboxed one that has no origin. The others may not even load.
    const std::string refused
        = "[WebViewBridge] Ignoring 'auth_token' message — untrusted source frame (mainFrame=false, ";
    EXPECT_TRUE(awaitLines(refused + "origin=https://localhost)", 4));
    EXPECT_TRUE(awaitLines(refused + "origin=://)", 1));
    for (const char* url : { "data:text/html", "blob:https://localhost", "about:srcdoc", "http://localhost" })
        EXPECT_TRUE(awaitLines(std::string("[WebViewBridge] Cancelled navigation to non-allowed origin: ") + url, 1))
            << url;
    // The main frame is heard as before, after all that.
    listenFor("kestrelune_updater_state");
    post("{ type: 'get_updater_state' }");
    EXPECT_TRUE(web().awaitTrue("window.heard.length > 0"));
    ASSERT_TRUE(service().awaitHandledPolls(2));
    EXPECT_EQ(lineCount("(mainFrame=true"), 0U);
    expectNothingReached();
}

}
