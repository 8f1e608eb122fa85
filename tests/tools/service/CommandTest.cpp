#include "ServiceTesting.h"

namespace brevanta::service {

TEST(Command, AMalformedLineIsRefusedBeforeAnythingIsDone)
{
    static constexpr const char* lines[] = { "", "   ", "fly", "set", "set energy", "set energy {", "set energy 1 2",
        "unset", "unset a b", "get", "energy", "energy lots", "energy nan", "energy 1 2", "drain -1", "block",
        "block on", "block maybe", "task", "task Title", "task 5", "list blocked_domains", "list energy 5",
        "list blocked_domains -1", "list blocked_domains 1000001", "token", "token accept-only", "token accept more",
        "credential", "version", "boot", "track com.example", "queue", "queue nothing", "queue alert for",
        "queue alert for x", "queue alert {", "clear", "clear energy", "removal", "removal gone", "removal pending x",
        "removal hanging x", "removal error", "removal account x1", "removal launch a", "removal requesting",
        "filter-answer", "misbehave", "behave now", "answer nothing {}", "answer force_sync", "answer force_sync {",
        "await", "await get_status", "await nothing 1", "await get_status +", "quit now" };
    for (const auto line : lines) {
        const auto command = parseCommand(line);
        ASSERT_FALSE(command) << line;
        EXPECT_NE(command.error().message, "") << line;
        EXPECT_EQ(command.error().message.find('\n'), std::string::npos) << line;
    }
}

TEST(Command, OneThatIsMisusedShowsItsUsage)
{
    EXPECT_EQ(parseCommand("energy").error().message, "usage: energy COINS");
}

TEST(Command, EffectsShowInTheReply)
{
    struct Row {
        const char* command;
        const char* key;
        const char* value;
    };
    static constexpr Row rows[] = {
        { "energy -2.5", "energy", "-2.5" },
        { "version 1.4-beta", "daemon_version", "\"1.4-beta\"" },
        { "boot b2", "daemon_boot_id", "\"b2\"" },
        { "credential off", "has_device_token", "false" },
        { "token expire", "auth_token_invalid", "true" },
        { "task  A  long title   12.5 ", "active_task_title", "\"A  long title\"" },
        { "task A 12.5", "active_task_earn_rate", "12.5" },
        { "block on situation", "block_reason", "\"situation\"" },
        { "list blocked_apps 0", "blocked_apps", "[]" },
        { "track com.example.a 60", "auto_track_sessions",
            R"([{"budget_end_epoch":1000060.0,"bundle_id":"com.example.a","session_id":"session-1"}])" },
        { "set energy [1, {\"a\": null}]", "energy", "[1,{\"a\":null}]" },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.command);
        Service service(testIdentity());
        EXPECT_EQ(runCommand(service, row.command), "ok");
        EXPECT_EQ(runCommand(service, std::string("get ") + row.key), std::string("ok ") + row.value);
    }
}

TEST(Command, WhatIsSetToNoneIsLeftOutOfTheReply)
{
    Service service(testIdentity());
    runCommand(service, "task A 1");
    runCommand(service, "task none");
    runCommand(service, "version none");
    runCommand(service, "credential off");
    const auto status = statusOf(service);
    for (const auto key :
        { "active_task_title", "active_task_earn_rate", "daemon_version", "auth_token", "block_reason" })
        EXPECT_FALSE(status.contains(key)) << key;
}

TEST(Command, RemovalCommandsMoveTheRecordThroughItsStates)
{
    Service service(testIdentity());
    const auto after = [&](const char* command) {
        EXPECT_EQ(runCommand(service, command), "ok") << command;
        return statusOf(service)["removal"];
    };
    runCommand(service, "block on situation");
    EXPECT_EQ(after("removal pending 30")["expires_at"], 1'000'030.0);
    EXPECT_EQ(after("removal error unavailable")["queue_error"], "unavailable");
    EXPECT_FALSE(after("removal error none").contains("queue_error"));
    EXPECT_EQ(after("removal requesting on")["requesting"], true);
    EXPECT_EQ(after("removal committed")["state"], "committed");
    EXPECT_EQ(statusOf(service)["should_block"], true);
    EXPECT_EQ(after("removal finishing")["blocking_off"], true);
    EXPECT_EQ(statusOf(service)["should_block"], false);
    EXPECT_EQ(after("removal none")["state"], "none");
    const auto relaunched = after("removal launch other 9");
    EXPECT_EQ(relaunched["launch"], "other");
    EXPECT_EQ(relaunched["launch_order"], 9);
    EXPECT_EQ(relaunched["seq"], 1);
}

TEST(Command, AwaitWaitsForAsManyRequestsAsItNames)
{
    Service service(testIdentity());
    (void)statusOf(service);
    EXPECT_EQ(runCommand(service, "await get_status 1"), "ok 1");
    const auto relative = parseCommand("await get_status +2");
    ASSERT_TRUE(relative);
    EXPECT_FALSE((*relative)(service)->has_value());
    (void)statusOf(service);
    EXPECT_FALSE((*relative)(service)->has_value());
    (void)statusOf(service);
    EXPECT_EQ((*relative)(service)->value_or("waiting"), "3");
}

}
