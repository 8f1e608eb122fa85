#include "WebTest.h"

#include <array>

namespace brevanta::functional {

using Clock = std::chrono::steady_clock;

using ServiceTroubleTest = WebTest;

static constexpr auto starting = "Blocking service starting";
static constexpr auto unreachable = "Blocking service unreachable";
// Longer than the client calls an unreachable service a starting one.
static constexpr Milliseconds pastTheGrace { 30000 };

TEST_F(ServiceTroubleTest, aStoppedServiceIsShownAsSuchUntilItIsBack)
{
    ASSERT_TRUE(showsDescription(notBlocking));
    const auto known = bench().statusItem().read();
    ASSERT_TRUE(known) << known.error();
    service().stop();
    ASSERT_TRUE(showsDescription(statusUnknown));
    EXPECT_TRUE(showsLine(starting));
    const auto unknown = bench().statusItem().read();
    ASSERT_TRUE(unknown) << unknown.error();
    EXPECT_NE(unknown->iconName, known->iconName);
    ASSERT_TRUE(showsLine(unreachable, pastTheGrace));
    EXPECT_TRUE(showsDescription(statusUnknown));

    const auto started = service().start();
    ASSERT_TRUE(started) << started.error();
    tell("energy 7");
    EXPECT_TRUE(showsLine("Blocking: Inactive (7.00 Coins)"));
    EXPECT_TRUE(showsDescription(notBlocking));
}

TEST_F(ServiceTroubleTest, aKilledServiceIsFoundAgainAtItsOldSocketAndThePageCallsWhatIsOldOld)
{
    ASSERT_TRUE(showsDescription(notBlocking));
    ASSERT_TRUE(web().awaitTrue("document.getElementById('blocking').dataset.state === 'open'", pagePatience));
    service().kill();
    ASSERT_TRUE(showsDescription(statusUnknown));
    EXPECT_TRUE(web().awaitTrue("document.getElementById('blocking').dataset.state === 'old'"));
    EXPECT_TRUE(web().awaitTrue("document.getElementById('as-of').textContent.startsWith('as of')"));
    const auto started = service().start();
    ASSERT_TRUE(started) << started.error();
    tell("block on situation");
    EXPECT_TRUE(showsDescription(blocking));
    EXPECT_TRUE(web().awaitTrue("document.getElementById('sentence').textContent.includes('a situation of yours')"));
}

class AbsentServiceTest : public ClientTest {
protected:
    AbsentServiceTest()
        : ClientTest({ .serviceAtStart = ServiceAtStart::absent })
    {
    }
};

TEST_F(AbsentServiceTest, aClientThatIsFirstWaitsForTheService)
{
    EXPECT_TRUE(showsLine(starting));
    EXPECT_TRUE(showsDescription(statusUnknown));
    const auto started = service().start();
    ASSERT_TRUE(started) << started.error();
    tell("energy 3");
    EXPECT_TRUE(showsLine("Blocking: Inactive (3.00 Coins)"));
    EXPECT_TRUE(showsDescription(notBlocking));
}

TEST_F(ServiceTroubleTest, aSilentServiceNeitherPilesUpPollsNorHoldsTheClient)
{
    ASSERT_TRUE(showsDescription(notBlocking));
    tell("misbehave silence");
    ASSERT_TRUE(service().awaitPolls(1));
    const auto firstPollAt = Clock::now();
    ASSERT_TRUE(service().awaitPolls(1));
    // The exchange is given up after five seconds, and only then may the next one begin.
    EXPECT_GE(Clock::now() - firstPollAt, Milliseconds(4900));
    EXPECT_TRUE(showsDescription(statusUnknown));

    // In the middle of the next exchange.
    ASSERT_TRUE(service().awaitPolls(1));
    const auto clickedAt = Clock::now();
    ASSERT_TRUE(showsWindows(1));
    bench().display().pressCloseButton(bench().display().windowsTitled(BrevantaClient::windowTitle).front());
    ASSERT_TRUE(showsWindows(0));
    click("Open Brevanta");
    EXPECT_TRUE(showsWindows(1));
    EXPECT_LT(Clock::now() - clickedAt, Milliseconds(2500)) << "the main thread waits for the service";
    click("Quit");
    expectCleanExit(Milliseconds(1000));
}

// One after another against the same client: bad, and good again.
class MisbehavingServiceTest : public ClientTest, public testing::WithParamInterface<std::vector<std::string>> { };

TEST_P(MisbehavingServiceTest, aSpoiltReplyIsAnUnknownStatusAndTheNextGoodOneIsBelieved)
{
    int coins = 100;
    for (const auto& misbehaviour : GetParam()) {
        SCOPED_TRACE(misbehaviour);
        ASSERT_TRUE(showsDescription(notBlocking));
        tell("misbehave " + misbehaviour);
        ASSERT_TRUE(showsDescription(statusUnknown));
        EXPECT_TRUE(showsLine(starting, Milliseconds(1000)) || showsLine(unreachable, Milliseconds(1000)));
        tell("behave");
        tell("energy " + std::to_string(++coins));
        ASSERT_TRUE(showsLine("Blocking: Inactive (" + std::to_string(coins) + ".00 Coins)"));
    }
    EXPECT_TRUE(bench().client().process().isRunning());
    EXPECT_TRUE(bench().notifications().identified("low-lp").empty()) << bench().notifications().describe();
}

INSTANTIATE_TEST_SUITE_P(CutShort, MisbehavingServiceTest,
    testing::Values(std::vector<std::string> { "half", "close", "close-early", "refuse", "half-hang" }));
INSTANTIATE_TEST_SUITE_P(WrongContents, MisbehavingServiceTest,
    testing::Values(std::vector<std::string> { "garbage", "array", "wrong-types", "ok-and-error", "nested 100000" }));

TEST_F(ServiceTroubleTest, anOddlyDeliveredReplyIsAGoodReply)
{
    static constexpr std::array misbehaviours { "delay 1000", "segments 100 5", "no-newline", "exact 4096" };
    ASSERT_TRUE(showsDescription(notBlocking));
    int coins = 100;
    for (const auto* misbehaviour : misbehaviours) {
        SCOPED_TRACE(misbehaviour);
        tell(std::string("misbehave ") + misbehaviour);
        tell("energy " + std::to_string(++coins));
        ASSERT_TRUE(showsLine("Blocking: Inactive (" + std::to_string(coins) + ".00 Coins)"));
        EXPECT_TRUE(showsDescription(notBlocking, Milliseconds(0)));
    }
}

}
