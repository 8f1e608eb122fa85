#include "menubar/MenuBarController.h"

#include "daemon/DaemonClient.h"
#include "daemon/StatusConsumer.h"
#include "fakes/FakeDaemonTransport.h"
#include "fakes/FakeMainLoop.h"
#include "fakes/FakePorts.h"
#include "fakes/FakeWebShell.h"
#include "fakes/ManualExecutor.h"
#include "notify/NotificationHelper.h"
#include "support/ComponentBench.h"
#include "support/StatusReply.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace brevanta {

namespace {

constexpr int blockingTag = 100;

class RecordingConsumer final : public StatusConsumer {
public:
    void pollBegan() override { ++begun; }
    void consume(const std::shared_ptr<const BlockingStatus>& status) override { seen.push_back(status); }
    void serviceFailed(const DaemonFailure&) override { ++failures; }

    std::vector<std::shared_ptr<const BlockingStatus>> seen;
    int failures { 0 };
    int begun { 0 };
};

class MenuBarControllerTest : public testing::Test {
protected:
    void start()
    {
        controller = std::make_unique<MenuBarController>(MenuBarController::Dependencies {
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
            .consumers = { &firstConsumer, &secondConsumer },
            .version = "1.2.3",
            .systemVersion = { .major = 15, .minor = 0, .patch = 0 },
            .onFilterActivationSettled = [this](const auto& outcome) { settled.push_back(outcome); },
            .openWindow = [this] { ++windowOpened; },
            .quit = [this] { ++quits; },
        });
        controller->start();
        settle();
    }

    // From a service that needs no update.
    static Json replyWith(const Json& additions)
    {
        auto reply = statusReply({ { "daemon_version", "1.2.3" } });
        reply.update(additions);
        return reply;
    }

    void settle()
    {
        queue.runAll();
        mainLoop.runPosted();
    }

    // One tick of the poll, answered at once.
    void tick()
    {
        mainLoop.advance(PollLoop::interval);
        settle();
    }

    void answer(const Json& additions) { reply = replyWith(additions).dump(); }
    void answer(DaemonError::Kind kind) { reply = std::unexpected(DaemonError { kind, {} }); }

    [[nodiscard]] bool logs(const std::string& line) const
    {
        return std::ranges::find(log.lines, line) != log.lines.end();
    }

    std::vector<std::string> notices() const
    {
        std::vector<std::string> identifiers;
        for (const auto& notification : notifications.added)
            identifiers.push_back(notification.identifier);
        return identifiers;
    }

    FakeClock clock;
    FakeMainLoop mainLoop { clock };
    ManualExecutor queue;
    FakeSystemLog log;
    FakeStatusItem statusItem;
    FakeNotificationCenter notifications { mainLoop };
    SystemNotificationCenterClient notificationClient { notifications, mainLoop,
        [this] { return clock.continuousSeconds(); } };
    NotificationHelper notificationHelper { notificationClient, log };
    FakeWebShell webShell;
    ComponentBench components { mainLoop, clock, log };
    std::vector<LaunchActivationOutcome> settled;
    RecordingConsumer firstConsumer;
    RecordingConsumer secondConsumer;
    int windowOpened { 0 };
    int quits { 0 };
    int requests { 0 };
    std::function<void()> whileServiceWorks { [] { } };
    FakeDaemonTransport::Answer reply { replyWith(Json::object()).dump() };
    DaemonClient client { std::make_unique<FakeDaemonTransport>([this](const Json&) {
                             ++requests;
                             ManualExecutor::meanwhile(whileServiceWorks);
                             return reply;
                         }),
        queue, mainLoop };
    std::unique_ptr<MenuBarController> controller;
};

}

TEST_F(MenuBarControllerTest, ShowsUnknownBeforeTheFirstReplyAndPollsAtOnceAndThenEveryTwoSeconds)
{
    controller = nullptr;
    start();
    EXPECT_EQ(requests, 1);
    mainLoop.advance(1.99);
    settle();
    EXPECT_EQ(requests, 1);
    mainLoop.advance(0.02);
    settle();
    EXPECT_EQ(requests, 2);
    for (int index = 0; index < 30; ++index)
        tick();
    EXPECT_EQ(requests, 32);
}

TEST_F(MenuBarControllerTest, TheMenuFollowsTheService)
{
    answer(
        { { "should_block", true }, { "energy", 5 }, { "active_task_title", "Write" }, { "block_reason", "Focus" } });
    start();
    EXPECT_EQ(statusItem.content.image, StatusImage::block);
    EXPECT_EQ(statusItem.visibleTitle(blockingTag), "Blocking: Active (5.00 Coins)");
    EXPECT_EQ(statusItem.visibleTitle(102), "Active: Write");
    EXPECT_EQ(statusItem.visibleTitle(101), "Reason: Focus");
    EXPECT_EQ(statusItem.content.menu.items[1].title, "Brevanta 1.2.3");

    answer({ { "should_block", false }, { "energy", 6.5 } });
    tick();
    EXPECT_EQ(statusItem.content.image, StatusImage::open);
    EXPECT_EQ(statusItem.visibleTitle(blockingTag), "Blocking: Inactive (6.50 Coins)");
    EXPECT_FALSE(statusItem.visibleTitle(102) || statusItem.visibleTitle(101));
}

TEST_F(MenuBarControllerTest, AFailedPollShowsUnknownAndTheLoopGoesOn)
{
    start();
    answer(DaemonError::Kind::connectionFailed);
    tick();
    EXPECT_EQ(statusItem.content.image, StatusImage::unknown);
    EXPECT_EQ(statusItem.visibleTitle(blockingTag), "Blocking service starting");
    while (clock.continuousSeconds() < 1000 + MenuBarController::startUpGrace - 2)
        tick();
    EXPECT_EQ(statusItem.visibleTitle(blockingTag), "Blocking service starting");
    tick();
    EXPECT_EQ(statusItem.visibleTitle(blockingTag), "Blocking service unreachable");

    answer(Json { { "energy", 9 } });
    tick();
    EXPECT_EQ(statusItem.visibleTitle(blockingTag), "Blocking: Active (9.00 Coins)");
    EXPECT_EQ(log.lines,
        (std::vector<std::string> { "[DaemonUpgrade] daemon 1.2.3 is current",
            "[MenuBar] status poll failed: connectionFailed", "[MenuBar] the blocking service answers again" }));
}

TEST_F(MenuBarControllerTest, NothingOfAReplyThatDoesNotDecodeIsApplied)
{
    answer({ { "energy", 12 }, { "low_lp_threshold", 10 }, { "notify_macos_low_lp", true } });
    start();
    answer({ { "energy", 8 }, { "low_lp_threshold", 10 }, { "notify_macos_low_lp", 1 } });
    tick();
    EXPECT_TRUE(notices().empty());
    EXPECT_EQ(firstConsumer.seen.size(), 1u);
    EXPECT_EQ(statusItem.content.image, StatusImage::unknown);

    // The balance of the bad reply is not remembered either: the crossing is told by the next good one.
    answer({ { "energy", 8 }, { "low_lp_threshold", 10 }, { "notify_macos_low_lp", true } });
    tick();
    EXPECT_EQ(notices(), std::vector<std::string> { "low-lp" });
    tick();
    EXPECT_EQ(notices().size(), 1u);
}

TEST_F(MenuBarControllerTest, APollThatNeverEndsIsNotTakenForProtection)
{
    answer({ { "should_block", true }, { "energy", 5 } });
    start();
    const auto isShownAs = [this](StatusImage image) { return statusItem.content.image == image; };
    mainLoop.advance(30); // The next one waits behind what the user does.
    EXPECT_TRUE(isShownAs(StatusImage::block));
    EXPECT_EQ(queue.pending(), 1u) << "no other is begun meanwhile";
    whileServiceWorks = [&] {
        clock.sleep(3600);
        mainLoop.advance(PollLoop::overdueAfter);
        EXPECT_TRUE(isShownAs(StatusImage::block));
        EXPECT_EQ(firstConsumer.failures, 0);
        mainLoop.advance(PollLoop::interval);
        EXPECT_TRUE(isShownAs(StatusImage::unknown));
        EXPECT_EQ(firstConsumer.failures, 1);
        EXPECT_EQ(statusItem.visibleTitle(200), "⚠ Restart Blocking Service…");
        whileServiceWorks = [] { };
    };
    settle();
    EXPECT_TRUE(isShownAs(StatusImage::block));
}

TEST_F(MenuBarControllerTest, AnUnchangedReplyChangesNothingOnScreenAndIsHandedOnAsTheSameObject)
{
    start();
    const auto changes = statusItem.changes;
    tick();
    tick();
    EXPECT_EQ(statusItem.changes, changes);
    ASSERT_EQ(firstConsumer.seen.size(), 3u);
    EXPECT_EQ(firstConsumer.seen[0], firstConsumer.seen[2]);
    EXPECT_EQ(secondConsumer.seen, firstConsumer.seen);
    EXPECT_EQ(firstConsumer.begun, 3);
    mainLoop.advance(PollLoop::interval);
    EXPECT_EQ(firstConsumer.begun, 4);
    mainLoop.advance(PollLoop::interval);
    EXPECT_EQ(firstConsumer.begun, 4) << "a tick that is skipped begins nothing";
    EXPECT_EQ(webShell.pushed, firstConsumer.seen);
}

TEST_F(MenuBarControllerTest, ThePageIsAskedForTheTokenAndThenReloaded)
{
    answer({ { "auth_token_invalid", true } });
    webShell.recoverAnswer = RecoverAnswer::deferred;
    start();
    for (int index = 0; index < 4; ++index)
        tick();
    webShell.recoverAnswer = RecoverAnswer::started;
    tick();
    EXPECT_EQ(webShell.tokenRequests, 1);
    EXPECT_EQ(webShell.recoveries, 2);
    EXPECT_EQ(log.standardError,
        (std::vector<std::string> { "auth_token_invalid: signalled SPA to re-forward daemon token",
            "auth_token_invalid persisted 5 polls → reload deferred: shell load in progress",
            "auth_token_invalid persisted 6 polls → reloading WebView (attempt 1/5)" }));
    EXPECT_EQ(webShell.withdrawals, 0);
    answer(Json::object());
    tick();
    EXPECT_EQ(webShell.withdrawals, 1) << "the token is there";
}

TEST_F(MenuBarControllerTest, AMissingCredentialIsAskedForLessAndLessOften)
{
    answer({ { "has_device_token", false } });
    start();
    for (int index = 0; index < 20; ++index)
        tick();
    EXPECT_EQ(webShell.tokenRequests, 3); // After 0, 10 and 30 seconds.
    EXPECT_EQ(webShell.withdrawals, 0);
    EXPECT_EQ(log.standardError,
        std::vector<std::string>(3, "daemon has no credential: signalled SPA to forward daemon token"));
}

TEST_F(MenuBarControllerTest, MenuChoicesReachTheirActions)
{
    start();
    statusItem.choose("Open Brevanta");
    statusItem.choose("Reload");
    statusItem.choose("Quit");
    statusItem.choose("Check for Updates…");
    EXPECT_EQ(windowOpened, 1);
    EXPECT_EQ(webShell.reloads, 1);
    EXPECT_EQ(quits, 1);
}

TEST_F(MenuBarControllerTest, EachRemedyOfTheServiceIsOneChoiceAway)
{
    answer({ { "daemon_version", "1.2.2" } });
    start();
    EXPECT_EQ(components.panel.presented.size(), 1u) << "the update is offered";
    statusItem.choose("⚠ Update Blocking Service to 1.2.3…");
    EXPECT_EQ(components.installer.begun, 1);
    EXPECT_FALSE(statusItem.visibleTitle(201)) << "a restart is no remedy here";

    answer(DaemonError::Kind::connectionFailed);
    tick();
    statusItem.choose("⚠ Install Blocking Service…");
    EXPECT_EQ(components.installer.begun, 2);
    components.services.programIsInstalled = true;
    components.services.backgroundItems.answerAll();
    tick();
    statusItem.choose("⚠ Restart Blocking Service…");
    statusItem.choose("Restart Blocking Service…");
    EXPECT_EQ(components.installer.begun, 4);

    components.services.backgroundItems.isHeld = false;
    components.services.backgroundItems.result = BackgroundItem::requiresApproval;
    for (int ticks = 0; ticks < 3; ++ticks)
        tick();
    components.workspace.outcome = OpenOutcome::refused;
    statusItem.choose("⚠ Blocking Service Turned Off in System Settings…");
    EXPECT_EQ(components.installer.begun, 4);
    EXPECT_EQ(components.workspace.opened,
        std::vector<std::string> { "x-apple.systempreferences:com.apple.LoginItems-Settings.extension" });
    tick();
    EXPECT_EQ(components.panel.presented.back().identifier, "loginItemsOpenFailed");
    EXPECT_EQ(components.panel.onScreen(), 1U);
    answer({ { "daemon_version", "1.2.3" } });
    tick();
    EXPECT_EQ(components.panel.onScreen(), 0U) << "it runs again";
}

TEST_F(MenuBarControllerTest, AFilterThatIsCurrentIsConfiguredOrLedToItsPane)
{
    components.systemAnswers({}, {});
    start();
    EXPECT_EQ(this->settled, std::vector { LaunchActivationOutcome {} });
    const auto tap = [this](bool enabled) {
        auto existing = activeExtension;
        existing.isEnabled = enabled;
        statusItem.choose("⚠ Install Content Filter…");
        components.filterSystem.requests.back().askWhetherToReplace(existing, activeExtension);
        settle();
    };
    tap(false);
    EXPECT_TRUE(logs("[MenuBar] tap request cancelled by our replace check; extension off: opening the pane"));
    EXPECT_EQ(components.workspace.opened.size(), 1u);
    EXPECT_EQ(components.filterSystem.enabling.asked, 0);
    tap(true);
    EXPECT_TRUE(logs("[MenuBar] tap request cancelled by our replace check; extension enabled: configuring"));
    EXPECT_EQ(components.filterSystem.enabling.asked, 1);
}

TEST_F(MenuBarControllerTest, HoweverARequestForTheFilterEndsTheUserIsToldOnceAndMayAskAgain)
{
    struct Row {
        const char* name;
        bool isParked;
        std::optional<std::expected<ExtensionRequestResult, FilterError>> end; // Nothing: it never comes.
        std::optional<std::expected<void, FilterError>> saving;
        std::vector<std::string> told;
    };
    const std::string approve = "Approve the Brevanta content filter";
    const std::string failed = "The content filter could not be turned on";
    const FilterError refused { "OSSystemExtensionErrorDomain", 10, "OSSystemExtensionErrorDomain error 10" };
    const FilterError notSaved { "NEFilterErrorDomain", 5, {} };
    const auto completed = ExtensionRequestResult::completed;
    const Row rows[] {
        { "refused", false, std::unexpected(refused), {}, { failed } },
        { "refused after the approval", true, std::unexpected(refused), {}, { approve, failed } },
        { "a restart", true, ExtensionRequestResult::willCompleteAfterReboot, {}, { "Restart this Mac" } },
        { "no answer", false, {}, {}, { failed } },
        { "not saved", true, completed, std::unexpected(notSaved), { failed } },
        { "no answer to the saving", false, completed, {}, { failed } },
        { "all is well", true, completed, std::expected<void, FilterError> {}, {} },
    };
    auto& filterSystem = components.filterSystem;
    components.systemAnswers({}, {});
    start();
    std::size_t requested = 0;
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        components.panel.presented.clear();
        filterSystem.enabling.isHeld = !row.saving;
        filterSystem.enabling.result = row.saving.value_or(std::expected<void, FilterError> {});
        int ended = 0;
        for (int caller = 0; caller < 2; ++caller)
            controller->filterRequests().activate([&] { ++ended; });
        ASSERT_EQ(filterSystem.requests.size(), ++requested);
        if (row.isParked)
            filterSystem.requests.back().needUserApproval();
        if (row.end)
            filterSystem.requests.back().end(*row.end);
        for (int second = 0; second <= FilterManager::requestTimeout; second += 2)
            tick();
        EXPECT_EQ(ended, 2);
        std::vector<std::string> told;
        for (const auto& alert : components.panel.presented) {
            told.push_back(alert.message);
            EXPECT_EQ(alert.informativeText.find("ErrorDomain"), std::string::npos) << alert.informativeText;
        }
        EXPECT_EQ(told, row.told) << "the approval is explained once";
        components.panel.answer({ .end = AlertEnd::button, .button = 0 });
    }
    filterSystem.removal.result
        = std::unexpected(FilterError { "OSSystemExtensionErrorDomain", 1, "odd\nodd: password=hunter22" });
    controller->filterRequests().remove();
    tick();
    EXPECT_EQ(components.panel.presented.back().message, "The content filter could not be removed");
    EXPECT_EQ(components.panel.presented.back().informativeText,
        "macOS reported a problem that Brevanta does not know. Try again, and restart this Mac if that does not "
        "help.\n\nDetails: OSSystemExtensionErrorDomain 1: odd; odd: password=[removed]");
}

TEST_F(MenuBarControllerTest, AReplacementAtLaunchThatNeedsARestartSaysSoInTheMenu)
{
    components.filterSystem.bundled = ExtensionRecord { .shortVersion = "2.0", .buildVersion = "1" };
    components.systemAnswers({ activeExtension }, filterSwitchedOn);
    start();
    EXPECT_FALSE(statusItem.visibleTitle(301));
    components.filterSystem.requests.at(0).end(ExtensionRequestResult::willCompleteAfterReboot);
    settle();
    EXPECT_EQ(statusItem.visibleTitle(301), "Content Filter: Restart this Mac to finish");
    EXPECT_TRUE(components.panel.presented.empty()) << "the user asked for nothing";
}

TEST_F(MenuBarControllerTest, NothingHappensOnceItHasGone)
{
    start();
    mainLoop.advance(PollLoop::interval); // A poll is in flight.
    controller.reset();
    settle();
    mainLoop.advance(60);
    settle();
    EXPECT_EQ(mainLoop.timerCount(), 0u);
    EXPECT_EQ(firstConsumer.seen.size(), 1u);
    statusItem.choose("Quit");
    EXPECT_EQ(quits, 0);
}

}
