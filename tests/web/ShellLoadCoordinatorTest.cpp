#include "web/ShellLoadCoordinator.h"
#include "fakes/FakeMainLoop.h"
#include "fakes/FakePorts.h"
#include "fakes/FakeWebView.h"

#include <gtest/gtest.h>

namespace brevanta {

namespace {

using Load = FakeWebView::Load;

constexpr auto loading = "Loading Brevanta…";
constexpr auto retrying = "Brevanta can't be reached right now. Retrying…";
constexpr auto unreachable = "Brevanta can't be reached right now.";

const WebError timedOut { "NSURLErrorDomain", -1001 };
const WebError tlsFailed { "NSURLErrorDomain", -1200 };

class ShellLoadCoordinatorTest : public testing::Test {
protected:
    ShellLoadCoordinatorTest() { create(); }

    void create()
    {
        coordinator = std::make_unique<ShellLoadCoordinator>(ShellLoadCoordinator::Dependencies {
            webView, placeholder, mainLoop, clock, log, [this] { return appUrl; }, [] {} });
    }
    void startFirstLoad()
    {
        coordinator->prepare();
        coordinator->release("released (deadline)");
    }
    void makeUsable()
    {
        startFirstLoad();
        coordinator->didCommit(webView.lastNavigation);
        coordinator->didFinish(webView.lastNavigation);
    }
    void failLast(const WebError& error) { coordinator->didFail(webView.lastNavigation, error); }

    FakeClock clock;
    FakeMainLoop mainLoop { clock };
    FakeSystemLog log;
    FakeWebView webView;
    FakePlaceholder placeholder;
    std::optional<std::string> appUrl { "https://www.example.com/" };
    std::unique_ptr<ShellLoadCoordinator> coordinator;
};

}

TEST_F(ShellLoadCoordinatorTest, ShowsThatItLoadsAndLoadsOnceBothSignalsAreThere)
{
    EXPECT_EQ(placeholder.content, (PlaceholderContent { loading, "" }));
    EXPECT_TRUE(placeholder.isShown);
    coordinator->release("released (filter activation settled)");
    coordinator->release("released (deadline)");
    EXPECT_TRUE(webView.loads.empty());
    EXPECT_TRUE(log.lines.empty()) << "an event that leads to nothing is not logged";
    coordinator->prepare();
    coordinator->prepare();
    EXPECT_EQ(webView.loads, (std::vector<Load> { { "https://www.example.com/", 20 } }));
    EXPECT_EQ(log.lines,
        std::vector<std::string> { "[ShellLoad] prepared → phase=provisional attempt=0 inFlight=1 commands=[load(1, "
                                   "20.0)]" });
}

TEST_F(ShellLoadCoordinatorTest, APageThatArrivesUncoversTheWebView)
{
    startFirstLoad();
    coordinator->didCommit(webView.lastNavigation);
    EXPECT_FALSE(placeholder.isShown);
    coordinator->didFinish(webView.lastNavigation);
    EXPECT_EQ(log.lines.back(),
        "[ShellLoad] didFinish gen 1 → phase=usable attempt=0 inFlight=nil commands=[cancelRetry, hidePlaceholder]");
}

TEST_F(ShellLoadCoordinatorTest, RetriesLaterAndLaterAndWaitsLongerEachTime)
{
    struct Step {
        double delay;
        double timeout;
    };
    startFirstLoad();
    for (const auto& step : { Step { 1, 30 }, Step { 2, 45 }, Step { 4, 60 }, Step { 8, 60 }, Step { 16, 60 },
             Step { 30, 60 }, Step { 30, 60 } }) {
        failLast(timedOut);
        EXPECT_EQ(placeholder.content, (PlaceholderContent { retrying, "Try Again" }));
        const auto loadsBefore = webView.loads.size();
        mainLoop.advance(step.delay - 0.01);
        EXPECT_EQ(webView.loads.size(), loadsBefore);
        mainLoop.advance(0.02);
        ASSERT_EQ(webView.loads.size(), loadsBefore + 1) << "after " << step.delay << " s";
        EXPECT_EQ(webView.loads.back().timeout, step.timeout);
    }
    EXPECT_EQ(log.lines.at(1),
        "[ShellLoad] didFail gen 1 NSURLErrorDomain -1001 → phase=blank attempt=1 inFlight=nil "
        "commands=[showPlaceholder(retrying), scheduleRetry(2, after: 1.0)]");
    EXPECT_EQ(log.lines.at(2), "[ShellLoad] no page is shown: the server has not answered in time");
    EXPECT_EQ(log.lines.at(3),
        "[ShellLoad] retry timer gen 2 → phase=provisional attempt=1 inFlight=2 commands=[load(2, 30.0)]");
}

TEST_F(ShellLoadCoordinatorTest, AFinalFailureWaitsForTheUser)
{
    startFirstLoad();
    failLast(tlsFailed);
    EXPECT_EQ(placeholder.content, (PlaceholderContent { unreachable, "Try Again" }));
    EXPECT_EQ(mainLoop.timerCount(), 0U);
    placeholder.pressButton();
    EXPECT_EQ(placeholder.content, (PlaceholderContent { loading, "" }));
    EXPECT_EQ(webView.loads.size(), 2U);
    placeholder.pressButton();
    EXPECT_EQ(webView.loads.size(), 2U) << "there is no button while it loads";
}

TEST_F(ShellLoadCoordinatorTest, TheLogSaysInPlainWordsWhatThePlaceholderStandsFor)
{
    const std::string intro = "[ShellLoad] no page is shown: ";
    for (const auto& [error, words] : std::initializer_list<std::pair<WebError, const char*>> {
             { { "NSURLErrorDomain", -1009 }, "this computer is offline" },
             { { "NSURLErrorDomain", -1202 }, "the server's certificate is not valid or not trusted" },
             { { "NSURLErrorDomain", -1011 }, "the server answered with an error" },
             { { "NSURLErrorDomain", -9999 }, "the page could not be loaded" },
             { { "WebKitErrorDomain", 102 }, "what is at this address is not shown in this window" },
             { { "WebKitErrorDomain", -1009 }, "the page could not be loaded" } }) {
        create();
        startFirstLoad();
        failLast(error);
        EXPECT_EQ(log.lines.back(), intro + words);
    }
    makeUsable();
    coordinator->contentProcessDidTerminate();
    EXPECT_EQ(log.lines.back(), intro + "the process that shows the page has crashed or was ended");
    makeUsable();
    log.lines.clear();
    coordinator->userRetry();
    failLast(tlsFailed);
    EXPECT_EQ(log.lines.size(), 1U) << "the page that was showing stays";
}

TEST_F(ShellLoadCoordinatorTest, TryAgainTakesThePlaceOfTheRetryThatWaits)
{
    startFirstLoad();
    failLast(timedOut);
    placeholder.pressButton();
    EXPECT_EQ(webView.loads.size(), 2U);
    mainLoop.advance(10);
    EXPECT_EQ(webView.loads.size(), 2U);
}

TEST_F(ShellLoadCoordinatorTest, CallbacksOfAnEarlierNavigationChangeNothing)
{
    startFirstLoad();
    const auto first = webView.lastNavigation;
    failLast(timedOut);
    mainLoop.advance(1);
    const auto lines = log.lines.size();
    coordinator->didCommit(first);
    coordinator->didFinish(first);
    coordinator->didFail(first, tlsFailed);
    EXPECT_EQ(log.lines.size(), lines);
    EXPECT_EQ(placeholder.content.label, retrying);
    EXPECT_TRUE(placeholder.isShown);
}

TEST_F(ShellLoadCoordinatorTest, ACallbackWithoutANavigationMeansTheOneThatIsAwaitedOrNone)
{
    coordinator->didCommit(nullptr);
    EXPECT_TRUE(placeholder.isShown) << "nothing is awaited";
    startFirstLoad();
    coordinator->didStartProvisional(nullptr);
    coordinator->didCommit(nullptr);
    EXPECT_FALSE(placeholder.isShown);
    const auto foreign = FakeWebView::newNavigation();
    coordinator->didStartProvisional(foreign); // Two are recorded now.
    const auto lines = log.lines.size();
    coordinator->didFinish(nullptr);
    EXPECT_EQ(log.lines.size(), lines);
}

TEST_F(ShellLoadCoordinatorTest, ANavigationOfThePageIsAdopted)
{
    makeUsable();
    const auto foreign = FakeWebView::newNavigation();
    coordinator->didStartProvisional(foreign);
    EXPECT_EQ(log.lines.back(),
        "[ShellLoad] foreign navigation started → phase=provisional attempt=0 inFlight=2 commands=[cancelRetry, "
        "adopt(2)]");
    EXPECT_FALSE(coordinator->awaitsOwnNavigation());
    coordinator->didFail(foreign, tlsFailed);
    EXPECT_FALSE(placeholder.isShown) << "the page that was showing stays";
}

TEST_F(ShellLoadCoordinatorTest, OwnNavigationsAreNotAdopted)
{
    startFirstLoad();
    EXPECT_TRUE(coordinator->awaitsOwnNavigation());
    const auto lines = log.lines.size();
    coordinator->didStartProvisional(webView.lastNavigation);
    EXPECT_EQ(log.lines.size(), lines);
}

TEST_F(ShellLoadCoordinatorTest, WhatCannotBeginFailsLaterAndForGood)
{
    struct Case {
        const char* what;
        bool beginsNothing;
        std::optional<std::string> url;
        const char* line;
    };
    for (const auto& [what, beginsNothing, url, line] :
        { Case { "no URL", false, std::nullopt,
              "[ShellLoad] synthetic failure: no app URL → phase=blank attempt=0 inFlight=nil "
              "commands=[showPlaceholder(unreachable)]" },
            Case { "an engine that refuses", true, "https://www.example.com/",
                "[ShellLoad] synthetic failure: load returned nil → phase=blank attempt=0 inFlight=nil "
                "commands=[showPlaceholder(unreachable)]" } }) {
        create();
        webView.beginsNothing = beginsNothing;
        appUrl = url;
        startFirstLoad();
        EXPECT_EQ(placeholder.content.label, loading) << what << ": not from inside the command";
        mainLoop.runPosted();
        EXPECT_EQ(placeholder.content.label, unreachable) << what;
        EXPECT_EQ(log.lines.back(), line);
    }
}

TEST_F(ShellLoadCoordinatorTest, AReloadThatCannotBeginKeepsThePage)
{
    makeUsable();
    webView.beginsNothing = true;
    coordinator->userRetry();
    mainLoop.runPosted();
    EXPECT_FALSE(placeholder.isShown);
    webView.beginsNothing = false;
    EXPECT_EQ(coordinator->recover(ShellRecoverSource::authWatchdog), ShellLoadCoordinator::Recovery::started)
        << "the page counts as showing";
}

TEST_F(ShellLoadCoordinatorTest, RecoverReloadsOnlyAPageThatShows)
{
    EXPECT_EQ(coordinator->recover(ShellRecoverSource::authWatchdog), ShellLoadCoordinator::Recovery::deferred);
    makeUsable();
    EXPECT_EQ(coordinator->recover(ShellRecoverSource::authWatchdog), ShellLoadCoordinator::Recovery::started);
    EXPECT_EQ(webView.reloads, 1);
    EXPECT_EQ(log.lines.back(),
        "[ShellLoad] recover(authWatchdog) → phase=provisional attempt=0 inFlight=2 commands=[cancelRetry, "
        "reloadFromOrigin(2)]");
    EXPECT_EQ(coordinator->recover(ShellRecoverSource::authWatchdog), ShellLoadCoordinator::Recovery::deferred);
}

TEST_F(ShellLoadCoordinatorTest, AContentProcessThatDiesIsReplacedAtOnceAndTheSecondTimeWithCare)
{
    makeUsable();
    mainLoop.advance(100);
    coordinator->contentProcessDidTerminate();
    EXPECT_EQ(webView.loads.size(), 2U);
    EXPECT_EQ(placeholder.content.label, loading);
    mainLoop.advance(9.9);
    coordinator->contentProcessDidTerminate();
    EXPECT_EQ(webView.loads.size(), 2U);
    EXPECT_EQ(placeholder.content.label, retrying);
    mainLoop.advance(1);
    EXPECT_EQ(webView.loads.size(), 3U);
    mainLoop.advance(10);
    coordinator->contentProcessDidTerminate();
    EXPECT_EQ(webView.loads.size(), 4U) << "ten seconds after the one before: at once again";
}

TEST_F(ShellLoadCoordinatorTest, OpeningTheWindowRetriesOnlyAPageThatIsMissing)
{
    startFirstLoad();
    coordinator->windowOpened();
    EXPECT_EQ(webView.loads.size(), 1U) << "a load is under way";
    failLast(tlsFailed);
    coordinator->windowOpened();
    EXPECT_EQ(webView.loads.size(), 2U);
    coordinator->didCommit(webView.lastNavigation);
    coordinator->didFinish(webView.lastNavigation);
    coordinator->windowOpened();
    EXPECT_EQ(webView.loads.size(), 2U);
    EXPECT_EQ(webView.reloads, 0);
}

TEST_F(ShellLoadCoordinatorTest, ACoordinatorThatIsGoneIsNotCalledAnyMore)
{
    startFirstLoad();
    failLast(timedOut);
    webView.beginsNothing = true;
    placeholder.pressButton(); // Posts a synthetic failure.
    coordinator.reset();
    mainLoop.advance(100);
    placeholder.pressButton();
    EXPECT_EQ(webView.loads.size(), 2U);
}

}
