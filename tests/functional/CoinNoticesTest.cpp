#include "ClientTest.h"

namespace brevanta::functional {

class CoinNoticesTest : public ClientTest {
protected:
    explicit CoinNoticesTest(ClientBenchOptions options
        = { .preparations = { "energy 12", "set low_lp_threshold 10", "set high_lp_threshold 50",
                "unset notify_macos_no_lp", "set notify_macos_low_lp true", "set notify_macos_high_lp true" } })
        : ClientTest(std::move(options))
    {
    }

    // Goes to a balance and waits until the client has seen it.
    void spendTo(int coins)
    {
        tell("energy " + std::to_string(coins));
        const auto state = coins > 0 ? std::string("Inactive") : std::string("Active");
        ASSERT_TRUE(showsLine("Blocking: " + state + " (" + std::to_string(coins) + ".00 Coins)"));
    }

    // What has come so far, all answers to earlier polls included.
    [[nodiscard]] std::size_t noticeCount()
    {
        EXPECT_TRUE(service().awaitHandledPolls(1));
        return bench().notifications().all().size();
    }
};

TEST_F(CoinNoticesTest, eachMarkIsNoticedOnceWhenItIsPassed)
{
    auto& notifications = bench().notifications();
    ASSERT_TRUE(showsLine("Blocking: Inactive (12.00 Coins)"));
    spendTo(8);
    ASSERT_TRUE(notifications.await("low-lp")) << notifications.describe();
    const auto low = notifications.identified("low-lp").front();
    EXPECT_EQ(low.title, "Low Coins");
    EXPECT_EQ(low.body, "Coins dropped to 8 (threshold: 10)");

    spendTo(7);
    spendTo(3);
    EXPECT_EQ(noticeCount(), 1u) << notifications.describe();

    spendTo(0);
    ASSERT_TRUE(notifications.await("no-lp")) << "an absent switch counts as on: " << notifications.describe();
    EXPECT_EQ(notifications.identified("no-lp").front().title, "No Coins");
    EXPECT_EQ(notifications.identified("no-lp").front().body, "Coins reached 0 — blocking is now active");

    spendTo(40);
    EXPECT_EQ(notifications.all().size(), 2u) << notifications.describe();
    spendTo(50);
    ASSERT_TRUE(notifications.await("high-lp")) << notifications.describe();
    EXPECT_EQ(notifications.identified("high-lp").front().title, "Coins Restored");
    EXPECT_EQ(notifications.identified("high-lp").front().body, "Coins are back to 50 (threshold: 50)");
    EXPECT_EQ(noticeCount(), 3u) << notifications.describe();
}

class CoinNoticesAtLaunchTest : public CoinNoticesTest {
protected:
    CoinNoticesAtLaunchTest()
        : CoinNoticesTest({ .preparations = { "energy 0", "set low_lp_threshold 10", "set high_lp_threshold 50" } })
    {
    }
};

TEST_F(CoinNoticesAtLaunchTest, theFirstPollNoticesNothing)
{
    ASSERT_TRUE(showsLine("Blocking: Active (0.00 Coins)"));
    EXPECT_EQ(noticeCount(), 0u) << bench().notifications().describe();
}

class CoinNoticesWithoutMarksTest : public CoinNoticesTest {
protected:
    CoinNoticesWithoutMarksTest()
        : CoinNoticesTest({ .preparations = { "energy 12", "unset low_lp_threshold", "set high_lp_threshold 0" } })
    {
    }
};

TEST_F(CoinNoticesWithoutMarksTest, nothingIsNoticedWithoutMarks)
{
    ASSERT_TRUE(showsLine("Blocking: Inactive (12.00 Coins)"));
    spendTo(0);
    spendTo(60);
    EXPECT_EQ(noticeCount(), 0u) << bench().notifications().describe();
}

class CoinNoticesWithoutTakerTest : public CoinNoticesTest {
protected:
    CoinNoticesWithoutTakerTest()
        : CoinNoticesTest({ .preparations = { "energy 12", "set low_lp_threshold 10" },
              .notificationTaker = NotificationTaker::nobody })
    {
    }
};

TEST_F(CoinNoticesWithoutTakerTest, theClientGoesOnWhereNobodyShowsNotifications)
{
    ASSERT_TRUE(showsLine("Blocking: Inactive (12.00 Coins)"));
    spendTo(8);
    spendTo(0);
    EXPECT_TRUE(bench().client().process().isRunning());
    click("Quit");
    expectCleanExit(patience);
}

}
