#include "daemon/DaemonClient.h"
#include "fakes/FakeDaemonTransport.h"
#include "fakes/FakeMainLoop.h"
#include "fakes/FakePorts.h"
#include "fakes/FakeWebShell.h"
#include "fakes/ManualExecutor.h"
#include "menubar/MenuBarController.h"
#include "notify/NotificationHelper.h"
#include "support/ComponentBench.h"
#include "support/StatusReply.h"

#include <gtest/gtest.h>
#include <random>

namespace brevanta {

namespace {

// A service that lives through a day at random: it blocks and unblocks, coins come and go, tokens are lost, and now
// and then it misbehaves for a while.
class RandomService {
public:
    FakeDaemonTransport::Answer answer()
    {
        if (!m_troubleLeft && chance(200))
            m_troubleLeft = std::uniform_int_distribution(1, 40)(m_random);
        if (m_troubleLeft) {
            --m_troubleLeft;
            lastGood.reset();
            return trouble();
        }
        m_energy += std::normal_distribution(0.0, 3.0)(m_random);
        if (chance(500))
            m_tokenInvalid = !m_tokenInvalid;
        if (chance(700))
            m_hasToken = !m_hasToken;
        lastGood = statusReply({ { "should_block", m_energy <= 0 }, { "energy", m_energy }, { "low_lp_threshold", 10 },
            { "high_lp_threshold", 50 }, { "notify_macos_low_lp", true }, { "notify_macos_high_lp", true },
            { "auth_token_invalid", m_tokenInvalid }, { "has_device_token", m_hasToken },
            { "auth_token", "secret-token" } });
        ++goodReplies;
        countCrossings();
        return lastGood->dump() + "\n";
    }

    bool chance(int oneIn) { return std::uniform_int_distribution(1, oneIn)(m_random) == 1; }

    std::optional<Json> lastGood; // Absent while there is trouble.
    int goodReplies { 0 };
    int crossings { 0 }; // How many notices the balances call for.

private:
    FakeDaemonTransport::Answer trouble()
    {
        const auto failed = [](DaemonError::Kind kind) { return std::unexpected(DaemonError { kind, {} }); };
        switch (std::uniform_int_distribution(0, 6)(m_random)) {
        case 0:
            return failed(DaemonError::Kind::connectionFailed);
        case 1:
            return failed(DaemonError::Kind::sendFailed);
        case 2:
            return "";
        case 3:
            return "{\"should_block\":true,\"ener";
        case 4:
            return "[1,2,3]\n";
        case 5:
            return statusReply({ { "auth_token", 5 } }).dump();
        default:
            return "{\"ok\":true,\"error\":\"x\"}\n";
        }
    }

    void countCrossings()
    {
        if (m_lastBalance) {
            crossings += m_energy <= 10 && 10 < *m_lastBalance;
            crossings += m_energy <= 0 && 0 < *m_lastBalance;
            crossings += *m_lastBalance < 50 && 50 <= m_energy;
        }
        m_lastBalance = m_energy;
    }

    std::mt19937 m_random { 20'260'101 };
    double m_energy { 30 };
    std::optional<double> m_lastBalance;
    bool m_tokenInvalid { false };
    bool m_hasToken { true };
    int m_troubleLeft { 0 };
};

}

TEST(SimulatedDay, ADayOfPollsWithRandomFaultsKeepsTheMenuTrueAndLosesNoNotice)
{
    constexpr int pollsOfADay = 43'200;
    FakeClock clock;
    FakeMainLoop mainLoop(clock);
    ManualExecutor queue;
    FakeSystemLog log;
    FakeStatusItem statusItem;
    FakeNotificationCenter notifications(mainLoop);
    SystemNotificationCenterClient notificationClient(
        notifications, mainLoop, [&] { return clock.continuousSeconds(); });
    NotificationHelper notificationHelper(notificationClient, log);
    FakeWebShell webShell;
    ComponentBench components(mainLoop, clock, log);
    RandomService service;
    DaemonClient client(
        std::make_unique<FakeDaemonTransport>([&](const Json&) { return service.answer(); }), queue, mainLoop);
    MenuBarController controller({
        .mainLoop = mainLoop,
        .clock = clock,
        .log = log,
        .statusItem = statusItem,
        .notifications = notifications,
        .notificationHelper = notificationHelper,
        .daemonClient = client,
        .workspace = components.workspace,
        .alerts = components.alerts,
        .monitor = components.monitor,
        .deviceSetup = components.deviceSetup,
        .installer = components.installer,
        .webShell = webShell,
        .consumers = {},
        .version = "0.121.0",
        .systemVersion = {},
        .onFilterActivationSettled = [](const auto&) { },
        .openWindow = [] { },
        .quit = [] { },
    });
    controller.start();

    int delayed = 0;
    for (int poll = 0; poll < pollsOfADay; ++poll) {
        mainLoop.advance(PollLoop::interval);
        ASSERT_LE(queue.pending(), 1u);
        if (service.chance(50)) {
            ++delayed; // The service takes its time: this poll stays in flight.
            continue;
        }
        queue.runAll();
        mainLoop.runPosted();

        const auto& content = statusItem.content;
        if (!service.lastGood) {
            ASSERT_EQ(content.image, StatusImage::unknown);
            continue;
        }
        const bool blocking = service.lastGood->at("should_block");
        ASSERT_EQ(content.image, blocking ? StatusImage::block : StatusImage::open);
        ASSERT_TRUE(
            statusItem.visibleTitle(100)->starts_with(blocking ? "Blocking: Active (" : "Blocking: Inactive ("));
    }

    EXPECT_GT(delayed, 0);
    EXPECT_GT(service.goodReplies, pollsOfADay / 2);
    EXPECT_GT(service.crossings, 0);
    EXPECT_EQ(notifications.added.size(), static_cast<std::size_t>(service.crossings));
    EXPECT_EQ(webShell.pushed.size(), static_cast<std::size_t>(service.goodReplies));
    EXPECT_GT(webShell.recoveries, 0);
    for (const auto* lines : { &log.lines, &log.standardError }) {
        for (const auto& line : *lines)
            ASSERT_EQ(line.find("secret-token"), std::string::npos) << line;
    }
}

}
