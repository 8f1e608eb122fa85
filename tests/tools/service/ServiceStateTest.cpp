#include "ServiceTesting.h"

namespace brevanta::service {

TEST(ServiceState, EnergyDrainsWhileAMeteredAppIsUsedAndIsEarnedWhileATaskIsActive)
{
    struct Row {
        const char* what;
        double energy;
        double drainPerSecond;
        double earnPerMinute;
        double seconds;
        double expected;
    };
    static constexpr Row rows[] = {
        { "nothing going on", 20, 0, 0, 60, 20 },
        { "a metered app", 20, 0.5, 0, 10, 15 },
        { "a task", 20, 0, 30, 10, 25 },
        { "both at once", 20, 1, 30, 10, 15 },
        { "draining stops at nothing", 3, 2, 0, 60, 0 },
        { "a debt is not drained deeper", -5, 2, 0, 60, -5 },
        { "a debt is earned back", -5, 0, 60, 8, 3 },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        ServiceState state(testIdentity());
        state.advance(100);
        state.setEnergy(row.energy);
        state.coins().setDrainPerSecond(row.drainPerSecond);
        state.startTask("t", row.earnPerMinute);
        state.advance(100 + row.seconds);
        EXPECT_DOUBLE_EQ(state.coins().energy(), row.expected);
    }
}

TEST(ServiceState, ARateCountsOnlyForItsOwnTime)
{
    ServiceState state(testIdentity());
    state.setEnergy(100);
    state.coins().setDrainPerSecond(1);
    state.advance(10);
    state.coins().setDrainPerSecond(3);
    state.advance(20);
    state.coins().setDrainPerSecond(0);
    state.advance(500);
    EXPECT_DOUBLE_EQ(state.coins().energy(), 60);
}

TEST(ServiceState, BlockingBeginsWhenTheCoinsRunOutAndEndsWhenSomeAreEarned)
{
    Service service(testIdentity());
    runCommand(service, "energy 4");
    runCommand(service, "drain 2");
    service.advance(1);
    EXPECT_EQ(statusOf(service)["should_block"], false);
    EXPECT_FALSE(statusOf(service).contains("block_reason"));
    service.advance(2);
    EXPECT_EQ(statusOf(service)["should_block"], true);
    EXPECT_EQ(statusOf(service)["block_reason"], "coins_depleted");
    runCommand(service, "drain 0");
    runCommand(service, "task Read a book 60");
    service.advance(3);
    const auto status = statusOf(service);
    EXPECT_EQ(status["should_block"], false);
    EXPECT_EQ(status["active_task_title"], "Read a book");
    EXPECT_EQ(status["active_task_earn_rate"], 60.0);
}

TEST(ServiceState, AnOrderedBlockHoldsWhateverTheBalanceAndLiftingItExcusesAnEmptyOneOnce)
{
    Service service(testIdentity());
    runCommand(service, "block on deep work");
    EXPECT_EQ(statusOf(service)["block_reason"], "deep work");
    runCommand(service, "block off");
    EXPECT_EQ(statusOf(service)["should_block"], false);

    runCommand(service, "energy 0");
    EXPECT_EQ(statusOf(service)["should_block"], true);
    runCommand(service, "block off");
    service.advance(1);
    EXPECT_EQ(statusOf(service)["should_block"], false);
    runCommand(service, "energy 1");
    runCommand(service, "drain 1");
    service.advance(2);
    service.advance(3);
    EXPECT_EQ(statusOf(service)["should_block"], true);
}

TEST(ServiceState, AnOverrideReplacesAValueOfAnyKindUntilItIsUnset)
{
    struct Row {
        const char* key;
        const char* value;
    };
    static constexpr Row rows[] = {
        { "should_block", "\"yes\"" },
        { "energy", "null" },
        { "blocked_domains", "[\"a\",7]" },
        { "metered_domains", "{}" },
        { "filter_health_result", "3" },
        { "removal", "[]" },
        { "made_up", "{\"a\":[1]}" },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.key);
        Service service(testIdentity());
        const auto before = statusOf(service);
        EXPECT_EQ(runCommand(service, std::string("set ") + row.key + " " + row.value), "ok");
        EXPECT_EQ(statusOf(service)[row.key], nlohmann::json::parse(row.value));
        EXPECT_EQ(runCommand(service, std::string("get ") + row.key), std::string("ok ") + row.value);
        EXPECT_EQ(runCommand(service, std::string("unset ") + row.key), "ok");
        EXPECT_EQ(statusOf(service), before);
        EXPECT_EQ(runCommand(service, std::string("unset ") + row.key), "ok");
        EXPECT_FALSE(statusOf(service).contains(row.key));
        EXPECT_EQ(runCommand(service, std::string("restore ") + row.key), "ok");
        EXPECT_EQ(statusOf(service), before);
    }
}

TEST(ServiceState, AReplyWithoutAnyOfItsOwnKeysIsStillAnObject)
{
    Service service(testIdentity());
    const auto whole = statusOf(service);
    for (const auto& [key, value] : whole.items()) {
        if (!EntryLists::isListKey(key))
            runCommand(service, "unset " + key);
    }
    EXPECT_EQ(statusOf(service).size(), EntryLists::keys.size());
    for (const auto key : EntryLists::keys)
        runCommand(service, "unset " + std::string(key));
    EXPECT_EQ(replyText(service, R"({"type":"get_status"})"), "{}\n");
    runCommand(service, "restore energy");
    EXPECT_EQ(replyText(service, R"({"type":"get_status"})"), "{\"energy\":50.0}\n");
}

TEST(ServiceState, RepliesOfAnIdleServiceAreTheSameBytesUntilTheLeaseIsRenewed)
{
    Service service(testIdentity());
    const std::string request = R"({"type":"get_status"})";
    const auto first = replyText(service, request);
    service.advance(29);
    EXPECT_EQ(replyText(service, request), first);
    service.advance(30);
    EXPECT_EQ(statusOf(service)["lease_until_uptime_ns"], 125'000'000'000u);
}

TEST(ServiceState, NoticesStayUntilTheyAreClearedOrTheirTimeIsUp)
{
    Service service(testIdentity(3));
    EXPECT_EQ(runCommand(service, "queue reminder"), "ok 3001");
    EXPECT_EQ(runCommand(service, "queue alert for 10"), "ok 3002");
    EXPECT_EQ(runCommand(service, "queue rejection {\"event_id\":\"odd\"}"), "ok");
    EXPECT_EQ(runCommand(service, "queue resume for 10 [1, 2]"), "ok");
    auto status = statusOf(service);
    EXPECT_EQ(status["pending_reminders"][0]["event_id"], 3001);
    EXPECT_EQ(status["pending_local_alerts"][0]["alert_id"], 3002);
    EXPECT_EQ(status["pending_app_rejections"], nlohmann::json::parse(R"([{"event_id":"odd"}])"));
    EXPECT_EQ(status["pending_task_resumes"], nlohmann::json::parse("[[1,2]]"));

    service.advance(10);
    status = statusOf(service);
    EXPECT_EQ(status["pending_reminders"].size(), 1u);
    EXPECT_TRUE(status["pending_local_alerts"].empty());
    EXPECT_TRUE(status["pending_task_resumes"].empty());
    runCommand(service, "clear reminder");
    EXPECT_TRUE(statusOf(service)["pending_reminders"].empty());
    EXPECT_EQ(statusOf(service)["pending_app_rejections"].size(), 1u);
    runCommand(service, "clear queues");
    EXPECT_TRUE(statusOf(service)["pending_app_rejections"].empty());
}

}
