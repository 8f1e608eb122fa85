#include "menubar/CoinNotices.h"

#include "daemon/BlockingStatus.h"

#include <gtest/gtest.h>

namespace brevanta {

namespace {

struct Settings {
    std::optional<double> low { 10 };
    std::optional<double> high { 50 };
    std::optional<bool> notifyLow { true };
    std::optional<bool> notifyNone;
    std::optional<bool> notifyHigh { true };
};

BlockingStatus balance(double energy, const Settings& settings)
{
    BlockingStatus status;
    status.energy = energy;
    status.lowLpThreshold = settings.low;
    status.highLpThreshold = settings.high;
    status.notifyMacosLowLp = settings.notifyLow;
    status.notifyMacosNoLp = settings.notifyNone;
    status.notifyMacosHighLp = settings.notifyHigh;
    return status;
}

// The identifiers of the notices that the last of these balances raises.
std::vector<std::string> raisedByLast(const std::vector<double>& balances, const Settings& settings = {})
{
    CoinNotices notices;
    std::vector<std::string> identifiers;
    for (const double energy : balances) {
        identifiers.clear();
        for (const auto& notice : notices.update(balance(energy, settings)))
            identifiers.push_back(notice.identifier);
    }
    return identifiers;
}

using Identifiers = std::vector<std::string>;

}

TEST(CoinNotices, CrossingAThresholdNotifiesOnce)
{
    struct Case {
        std::vector<double> balances;
        Identifiers expected;
    };
    for (const auto& [balances, expected] : {
             Case { { 0 }, {} }, // The first poll has no balance before it.
             Case { { 100 }, {} },
             Case { { 12, 8 }, { "low-lp" } },
             Case { { 12, 10 }, { "low-lp" } },
             Case { { 10, 8 }, {} },
             Case { { 12, 8, 7 }, {} },
             Case { { 8, 12, 8 }, { "low-lp" } },
             Case { { 3, 0 }, { "no-lp" } },
             Case { { 3, -1 }, { "no-lp" } },
             Case { { 0, -1 }, {} },
             Case { { 12, 0 }, { "low-lp", "no-lp" } },
             Case { { 40, 50 }, { "high-lp" } },
             Case { { 49.99, 50 }, { "high-lp" } },
             Case { { 50, 60 }, {} },
             Case { { 60, 40 }, {} },
         })
        EXPECT_EQ(raisedByLast(balances), expected) << testing::PrintToString(balances);
}

TEST(CoinNotices, ASwitchOrAMissingThresholdSilencesItsNotice)
{
    EXPECT_EQ(raisedByLast({ 12, 0 }, { .low = std::nullopt }), Identifiers {});
    EXPECT_EQ(raisedByLast({ 12, 0 }, { .notifyLow = false }), Identifiers { "no-lp" });
    EXPECT_EQ(raisedByLast({ 12, 0 }, { .notifyLow = std::nullopt }), Identifiers { "no-lp" });
    EXPECT_EQ(raisedByLast({ 12, 0 }, { .notifyNone = false }), Identifiers { "low-lp" });
    EXPECT_EQ(raisedByLast({ 40, 50 }, { .notifyHigh = false }), Identifiers {});
    EXPECT_EQ(raisedByLast({ 40, 50 }, { .notifyHigh = std::nullopt }), Identifiers {});
    EXPECT_EQ(raisedByLast({ 40, 50 }, { .high = std::nullopt }), Identifiers {});
    EXPECT_EQ(raisedByLast({ -1, 1 }, { .high = 0 }), Identifiers {});
    // A switched-off notice is not made up for when it is switched on.
    CoinNotices notices;
    (void)notices.update(balance(12, {}));
    EXPECT_TRUE(notices.update(balance(8, { .notifyLow = false })).empty());
    EXPECT_TRUE(notices.update(balance(8, {})).empty());
}

TEST(CoinNotices, TheTextsRoundTheBalance)
{
    CoinNotices notices;
    (void)notices.update(balance(12, {}));
    EXPECT_EQ(notices.update(balance(7.6, {})),
        (std::vector<Notification> { { "low-lp", "Low Coins", "Coins dropped to 8 (threshold: 10)" } }));
    EXPECT_EQ(notices.update(balance(0, {})),
        (std::vector<Notification> { { "no-lp", "No Coins", "Coins reached 0 — blocking is now active" } }));
    EXPECT_EQ(notices.update(balance(51.2, {})),
        (std::vector<Notification> { { "high-lp", "Coins Restored", "Coins are back to 51 (threshold: 50)" } }));
}

}
