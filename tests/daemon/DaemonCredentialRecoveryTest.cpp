#include "daemon/DaemonCredentialRecovery.h"

#include "daemon/BlockingStatus.h"

#include <functional>
#include <gtest/gtest.h>
#include <vector>

namespace brevanta {

namespace {

BlockingStatus status(std::optional<bool> hasToken, std::optional<std::string> bootId = std::nullopt,
    std::optional<double> deletedAt = std::nullopt)
{
    BlockingStatus made;
    made.hasDeviceToken = hasToken;
    made.daemonBootId = std::move(bootId);
    made.accountDeletedAt = deletedAt;
    return made;
}

// The seconds at which one poll a second signals.
std::vector<int> signalsUntil(int end, const std::function<BlockingStatus(int)>& statusAt)
{
    DaemonCredentialRecovery recovery;
    std::vector<int> signals;
    for (int now = 0; now <= end; ++now) {
        if (recovery.shouldSignal(statusAt(now), now))
            signals.push_back(now);
    }
    return signals;
}

}

TEST(DaemonCredentialRecovery, SignalsLessAndLessOftenWhileTheCredentialIsMissing)
{
    EXPECT_EQ(signalsUntil(1300, [](int) { return status(false); }),
        (std::vector { 0, 10, 30, 70, 150, 310, 610, 910, 1210 }));
}

TEST(DaemonCredentialRecovery, ARestartOfTheServiceBeginsAnew)
{
    EXPECT_EQ(signalsUntil(60, [](int now) { return status(false, now < 35 ? "one" : "two"); }),
        (std::vector { 0, 10, 30, 35, 45 }));
    // A status without a boot identifier says nothing about a restart, and does not forget the last one.
    EXPECT_EQ(signalsUntil(60, [](int now) { return now % 2 ? status(false) : status(false, "one"); }),
        (std::vector { 0, 10, 30 }));
}

TEST(DaemonCredentialRecovery, ACredentialOrADeletedAccountEndsTheSignalsAndBeginsAnewAfterwards)
{
    for (const auto& quiet : { status(true), status(std::nullopt), status(false, std::nullopt, 5) })
        EXPECT_EQ(signalsUntil(60, [&](int now) { return now >= 12 && now < 20 ? quiet : status(false); }),
            (std::vector { 0, 10, 20, 30, 50 }));
}

}
