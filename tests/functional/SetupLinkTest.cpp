#include "WebTest.h"

namespace brevanta::functional {

static constexpr auto link = "brevanta://open/device-setup";

static constexpr auto pageTookTheLink = "window.demo.navigations.length === 1";

using SetupLinkTest = WebTest;

TEST_F(SetupLinkTest, toARunningClientBringsItForwardAndReachesThePage)
{
    ASSERT_TRUE(showsPage());
    ASSERT_TRUE(showsWindows(1));
    bench().display().pressCloseButton(bench().display().windowsTitled(BrevantaClient::windowTitle).front());
    ASSERT_TRUE(showsWindows(0));
    const auto second = bench().client().startProcess({ link });
    ASSERT_TRUE(second) << second.error();
    EXPECT_EQ((*second)->awaitExit(patience), 0) << (*second)->errors().text();
    EXPECT_TRUE(logs("[URLScheme] open/device-setup: bringing the window to the front"));
    EXPECT_TRUE(showsWindows(1));
    EXPECT_TRUE(web().awaitTrue(pageTookTheLink));
    // It is confirmed, so that nobody gets it once more.
    EXPECT_TRUE(web().awaitTrue("window.webkit.messageHandlers.kestreluneNav.postMessage({ type: "
                                "'take_pending_navigation' }).then((answer) => answer === undefined)"));
}

TEST_F(SetupLinkTest, isTheClientsForTheDesktop)
{
    ASSERT_TRUE(showsPage());
    const auto opener = bench().client().openLink(link);
    ASSERT_TRUE(opener) << opener.error();
    EXPECT_EQ((*opener)->awaitExit(patience), 0) << (*opener)->errors().text();
    EXPECT_TRUE(logs("[URLScheme] open/device-setup: bringing the window to the front"));
    EXPECT_TRUE(web().awaitTrue(pageTookTheLink));
}

TEST_F(SetupLinkTest, thatIsNoneOfOursChangesNothing)
{
    ASSERT_TRUE(showsPage());
    const auto second = bench().client().startProcess({ "brevanta://open/elsewhere?token=secret" });
    ASSERT_TRUE(second) << second.error();
    EXPECT_EQ((*second)->awaitExit(patience), 0);
    EXPECT_TRUE(logs("[URLScheme] ignoring an unknown link (scheme=brevanta"));
    EXPECT_FALSE(bench().client().log().contains("secret"));
}

class StartingLinkTest : public WebTest {
protected:
    StartingLinkTest()
        : WebTest({ .webPreparations = { "refuse" }, .arguments = { link } })
    {
    }
};

TEST_F(StartingLinkTest, waitsForThePageUntilItIsReady)
{
    EXPECT_TRUE(logs("[URLScheme] open/device-setup launched the app: bringing the window to the front"));
    EXPECT_TRUE(showsWindows(1));
    ASSERT_TRUE(logs("commands=[showPlaceholder(retrying)"));
    tellWeb("behave");
    ASSERT_TRUE(showsPage());
    EXPECT_TRUE(web().awaitTrue(pageTookTheLink));
}

}
