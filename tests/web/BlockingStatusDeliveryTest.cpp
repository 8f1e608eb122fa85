#include "web/BlockingStatusDelivery.h"

#include "fakes/FakeMainLoop.h"
#include "fakes/FakePorts.h"
#include "fakes/FakeWebView.h"
#include "fakes/ManualExecutor.h"
#include "support/StatusReply.h"
#include "web/PageDelivery.h"
#include "web/TrustedOrigins.h"

#include <gtest/gtest.h>

namespace brevanta {

namespace {

class BlockingStatusDeliveryTest : public testing::Test {
protected:
    BlockingStatusDeliveryTest() { webView.committed = trusted; }

    static std::shared_ptr<const BlockingStatus> status(int energy) { return statusWith({ { "energy", energy } }); }

    // The energies that the page has been told, in order; each is told apart by one digit.
    [[nodiscard]] std::string told() const
    {
        std::string energies;
        for (const auto& script : webView.scripts)
            energies += script.at(script.find("energy: ") + 8);
        return energies;
    }

    void settle()
    {
        do {
            queue.runAll();
            mainLoop.runPosted();
        } while (queue.pending() > 0);
    }

    const Url trusted { .text = {}, .scheme = "https", .host = "www.example.com" };
    FakeClock clock;
    FakeMainLoop mainLoop { clock };
    ManualExecutor queue;
    FakeWebView webView;
    FakeSystemLog log;
    TrustedOrigins origins { { "www.example.com" }, {} };
    PageDelivery page { webView, origins, log };
    std::unique_ptr<BlockingStatusDelivery> delivery = std::make_unique<BlockingStatusDelivery>(queue, mainLoop, page);
};

}

TEST_F(BlockingStatusDeliveryTest, TheScriptIsMadeOnTheQueueAndHandedOverOnTheMainThread)
{
    delivery->push(status(1));
    mainLoop.runPosted();
    EXPECT_EQ(told(), "");
    queue.runAll();
    EXPECT_EQ(told(), "");
    mainLoop.runPosted();
    EXPECT_EQ(told(), "1");
}

TEST_F(BlockingStatusDeliveryTest, OfWhatArrivesMeanwhileOnlyTheNewestIsToldAndAfterTheOneBefore)
{
    delivery->push(status(1));
    queue.runAll();
    for (int energy = 2; energy <= 5; ++energy)
        delivery->push(status(energy));
    EXPECT_EQ(queue.pending(), 0U) << "one script at a time";
    settle();
    EXPECT_EQ(told(), "15");
    delivery->push(status(6));
    settle();
    EXPECT_EQ(told(), "156");
}

TEST_F(BlockingStatusDeliveryTest, TheSameObjectIsToldEachTimeAndItsScriptNeverMadeAgain)
{
    const auto kept = status(1);
    delivery->push(kept);
    delivery->push(kept);
    settle();
    EXPECT_EQ(told(), "1") << "one delivery for all that came while the script was being made";
    delivery->push(kept);
    delivery->push(kept);
    EXPECT_EQ(told(), "111");
    EXPECT_EQ(queue.pending(), 0U);
    delivery->push(status(1));
    EXPECT_EQ(queue.pending(), 1U) << "an equal one is another object";
}

TEST_F(BlockingStatusDeliveryTest, TrustIsJudgedWhenTheScriptIsThereAndARefusedOneIsTriedAgain)
{
    const auto kept = status(1);
    delivery->push(kept);
    queue.runAll();
    webView.committed.reset();
    mainLoop.runPosted();
    EXPECT_EQ(told(), "");
    delivery->push(kept);
    EXPECT_EQ(told(), "");
    webView.committed = trusted;
    delivery->push(kept);
    EXPECT_EQ(told(), "1");
    EXPECT_EQ(queue.pending(), 0U);
}

TEST_F(BlockingStatusDeliveryTest, NothingComesAfterTheEndAndNothingIsLeftBehind)
{
    const auto kept = status(1);
    delivery->push(kept);
    delivery.reset();
    settle();
    delivery = std::make_unique<BlockingStatusDelivery>(queue, mainLoop, page);
    delivery->push(kept);
    delivery->push(status(2));
    queue.runAll();
    delivery.reset();
    settle();
    EXPECT_EQ(told(), "");
    EXPECT_EQ(kept.use_count(), 1);
}

}
