#include "ServiceTesting.h"

namespace brevanta::service {

TEST(Service, RequestsThatCannotBeServedAreAnsweredWithAnError)
{
    static const std::string requests[] = { "", "garbage", "{", "[]", "7", "{}", R"({"type":7})", R"({"type":"fly"})",
        R"({"type":"set_auth_token"})", R"({"type":"set_auth_token","token":""})",
        R"({"type":"set_auth_token","token":1})", R"({"type":"queue_removal"})",
        R"({"type":"cancel_removal","account":"42"})", R"({"type":"cancel_removal","account":"42","action_id":"1"})",
        R"({"type":"cancel_removal","account":"42","action_id":1.5})", std::string("{\"type\":\"get_status\xff\"}"),
        std::string(1'000'000, '['),
        R"({"type":"get_status","a":)" + std::string(1000, '[') + std::string(1000, ']') + "}" };
    for (const auto& request : requests) {
        Service service(testIdentity());
        const auto reply = replyTo(service, request);
        EXPECT_TRUE(reply.is_object() && reply.size() == 1 && reply["error"].is_string()) << request.substr(0, 80);
    }
}

TEST(Service, ATokenIsTakenOrRefusedAsTheServiceIsSetUp)
{
    struct Row {
        const char* setUp;
        const char* token;
        bool isAccepted;
    };
    static constexpr Row rows[] = {
        { "token accept", "any", true },
        { "token reject", "any", false },
        { "token accept-only good", "good", true },
        { "token accept-only good", "goodness", false },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.setUp) + " / " + row.token);
        Service service(testIdentity());
        runCommand(service, row.setUp);
        const nlohmann::json request { { "type", "set_auth_token" }, { "token", row.token } };
        const auto reply = replyTo(service, request.dump());
        const auto status = statusOf(service);
        EXPECT_EQ(reply == nlohmann::json::parse(R"({"ok":true})"), row.isAccepted);
        EXPECT_EQ(reply.contains("error"), !row.isAccepted);
        EXPECT_EQ(status["auth_token_invalid"], !row.isAccepted);
        EXPECT_EQ(status["auth_token"] == row.token, row.isAccepted);
    }
}

TEST(Service, AGoodTokenGivesAServiceWithoutACredentialOne)
{
    Service service(testIdentity());
    runCommand(service, "credential off");
    EXPECT_EQ(
        replyTo(service, R"({"type":"queue_removal","origin":"in_app","account":"42"})")["removal"]["queue_error"],
        "no_credential");
    (void)replyTo(service, R"({"type":"set_auth_token","token":"t","device_id":"d"})");
    EXPECT_EQ(statusOf(service)["has_device_token"], true);
    EXPECT_EQ(replyTo(service, R"({"type":"queue_removal","origin":"in_app","account":"42"})")["removal"]["state"],
        "pending");
}

TEST(Service, TheRemovalReplyIsTheRecordThatTheNextStatusCarries)
{
    Service service(testIdentity());
    const auto queued = replyTo(service, R"({"type":"queue_removal","origin":"in_app","account":"42"})");
    EXPECT_EQ(queued["ok"], true);
    EXPECT_EQ(queued["removal"], statusOf(service)["removal"]);
    const nlohmann::json cancel { { "type", "cancel_removal" }, { "account", "42" },
        { "action_id", queued["removal"]["action_id"] } };
    const auto cancelled = replyTo(service, cancel.dump());
    EXPECT_EQ(cancelled["removal"]["state"], "none");
    EXPECT_EQ(cancelled["removal"], statusOf(service)["removal"]);
}

TEST(Service, TheFilterReportIsAnsweredOnlyInTheReplyToTheRequestThatCarriedIt)
{
    Service service(testIdentity());
    int sentAt = 0;
    const auto reported = [&] {
        const auto report
            = R"({"schema":1,"state":"on","observed_at_ns":1,"sent_at_ns":)" + std::to_string(++sentAt) + "}";
        return replyTo(service, R"({"type":"get_status","filter_health":)" + report + "}")
            .value("filter_health_result", "(none)");
    };
    EXPECT_EQ(reported(), "accepted");
    EXPECT_FALSE(statusOf(service).contains("filter_health_result"));
    runCommand(service, "filter-answer not today");
    EXPECT_EQ(reported(), "not today");
    runCommand(service, "filter-answer none");
    EXPECT_EQ(reported(), "(none)");
    runCommand(service, "filter-answer auto");
    EXPECT_EQ(reported(), "accepted");
    runCommand(service, "set filter_health_result \"fixed\"");
    EXPECT_EQ(reported(), "fixed");
}

TEST(Service, AScriptedAnswerReplacesTheReplyToItsTypeAndNothingElse)
{
    Service service(testIdentity());
    runCommand(service, R"(answer set_auth_token {"error": "back end unreachable"})");
    EXPECT_EQ(replyText(service, R"({"type":"set_auth_token","token":"t"})"), "{\"error\":\"back end unreachable\"}\n");
    EXPECT_EQ(statusOf(service)["auth_token"], "stand-in-token");
    runCommand(service, "answer set_auth_token none");
    EXPECT_EQ(replyText(service, R"({"type":"set_auth_token","token":"t"})"), "{\"ok\":true}\n");
}

TEST(Service, RequestsAreCountedByTypeAndTheLastIsKeptAsItCame)
{
    Service service(testIdentity());
    (void)statusOf(service);
    (void)statusOf(service);
    (void)replyTo(service, "nonsense");
    (void)replyTo(service, R"({ "type" : "force_sync" })");
    EXPECT_EQ(runCommand(service, "requests"),
        R"(ok {"cancel_removal":0,"force_sync":1,"get_status":2,"other":1,"queue_removal":0,"set_auth_token":0})");
    EXPECT_EQ(runCommand(service, "last-request"), R"(ok { "type" : "force_sync" })");
}

}
