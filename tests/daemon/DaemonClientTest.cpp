#include "daemon/DaemonClient.h"

#include "fakes/FakeDaemonTransport.h"
#include "fakes/FakeMainLoop.h"
#include "fakes/ManualExecutor.h"

#include <gtest/gtest.h>

namespace brevanta {

namespace {

class DaemonClientTest : public testing::Test {
protected:
    void settle()
    {
        queue.runAll();
        mainLoop.runPosted();
    }

    std::unique_ptr<DaemonClient> makeClient()
    {
        return std::make_unique<DaemonClient>(std::make_unique<FakeDaemonTransport>([this](const Json& request) {
            requests.push_back(request);
            return reply;
        }),
            queue, mainLoop);
    }

    FakeClock clock;
    FakeMainLoop mainLoop { clock };
    ManualExecutor queue;
    std::vector<Json> requests;
    FakeDaemonTransport::Answer reply { "{\"ok\":true}\n" };
    std::unique_ptr<DaemonClient> client { makeClient() };
};

DaemonFailure rejected(const char* reason) { return DaemonError { DaemonError::Kind::rejected, reason }; }

}

TEST_F(DaemonClientTest, EachOperationSendsExactlyItsRequest)
{
    reply = R"({"ok":true,"should_block":false,"energy":1})";
    const auto ignore = [](const auto&) { };
    client->getStatus(std::nullopt, ignore);
    settle();
    client->getStatus(Json { { "schema", 1 }, { "state", "on" } }, ignore);
    client->setAuthToken("secret", "device", ignore);
    client->setAuthToken("secret", "", ignore);
    client->forceSync(ignore);
    client->requestRemoval(QueueRemoval {}, "42", ignore);
    client->requestRemoval(CancelRemoval { 9007199254740991 }, "42", ignore);
    client->exchange({ { "type", "anything" } }, ignore);
    settle();

    std::vector<std::string> sent;
    for (const auto& request : requests)
        sent.push_back(request.dump());
    EXPECT_EQ(sent,
        (std::vector<std::string> {
            R"({"type":"get_status"})",
            R"({"device_id":"device","token":"secret","type":"set_auth_token"})",
            R"({"token":"secret","type":"set_auth_token"})",
            R"({"type":"force_sync"})",
            R"({"account":"42","origin":"in_app","type":"queue_removal"})",
            R"({"account":"42","action_id":9007199254740991,"type":"cancel_removal"})",
            R"({"type":"anything"})",
            R"({"filter_health":{"schema":1,"state":"on"},"type":"get_status"})",
        }));
}

TEST_F(DaemonClientTest, OnlyOkTrueWithoutAnErrorIsAnAcknowledgement)
{
    struct Case {
        const char* reply;
        std::optional<DaemonFailure> failure;
    };
    for (const auto& [bytes, failure] : {
             Case { R"({"ok":true})", std::nullopt },
             Case { R"({"ok":true,"error":"x"})", rejected("x") },
             Case { R"({"error":"busy"})", rejected("busy") },
             Case { R"({"error":{"code":5}})", rejected(R"({"code":5})") },
             Case { R"({"ok":true,"error":null})", rejected("null") },
             Case { R"({"ok":false})", rejected("missing ok") },
             Case { R"({"ok":1})", rejected("missing ok") },
             Case { R"({"ok":"true"})", rejected("missing ok") },
             Case { R"({})", rejected("missing ok") },
             Case { R"([])", DaemonError { DaemonError::Kind::invalidResponse, {} } },
         }) {
        reply = bytes;
        int answers = 0;
        const auto check = [&](const auto& result) {
            ++answers;
            EXPECT_EQ(result ? std::nullopt : std::optional(result.error()), failure) << bytes;
        };
        client->setAuthToken("t", "d", check);
        client->forceSync(check);
        client->requestRemoval(QueueRemoval {}, "1", check);
        client->requestRemoval(CancelRemoval { 1 }, "1", check);
        settle();
        EXPECT_EQ(answers, 4);
    }
}

TEST_F(DaemonClientTest, ARemovalRequestAnswersWithTheServicesRecordOrAnEmptyOne)
{
    const auto removalFor = [&](const char* bytes) {
        reply = bytes;
        std::optional<RemovalSnapshot> answered;
        client->requestRemoval(QueueRemoval {}, "1", [&](const auto& result) { answered = result.value(); });
        settle();
        return answered.value();
    };
    const auto snapshot
        = removalFor(R"({"ok":true,"removal":{"state":"pending","launch":"L","launch_order":2,"seq":7}})");
    EXPECT_EQ(snapshot.state, RemovalSnapshot::State::pending);
    EXPECT_EQ(snapshot.seq, 7u);
    EXPECT_EQ(removalFor(R"({"ok":true})"), RemovalSnapshot {});
    EXPECT_EQ(removalFor(R"({"ok":true,"removal":{"state":"pending"}})"), RemovalSnapshot {});
}

TEST_F(DaemonClientTest, ErrorsReachTheCallerAsTheyAre)
{
    const auto statusFailure = [&](FakeDaemonTransport::Answer answer) {
        reply = std::move(answer);
        std::optional<DaemonFailure> failure;
        client->getStatus(std::nullopt, [&](const auto& result) { failure = result.error(); });
        settle();
        return failure.value();
    };
    const DaemonFailure sendFailed = DaemonError { DaemonError::Kind::sendFailed, {} };
    EXPECT_EQ(statusFailure(std::unexpected(sendFailed)), sendFailed);
    EXPECT_TRUE(std::holds_alternative<JsonParseError>(statusFailure("{\"should_block\":tr")));
    EXPECT_TRUE(std::holds_alternative<StatusDecodingError>(statusFailure("{\"ok\":true}")));
    EXPECT_EQ(statusFailure("[]"), DaemonFailure(DaemonError { DaemonError::Kind::invalidResponse, {} }));
}

TEST_F(DaemonClientTest, AStatusReplyIsNotPutThroughTheAcknowledgementRule)
{
    reply = R"({"ok":false,"error":"x","should_block":true,"energy":2})";
    std::shared_ptr<const BlockingStatus> status;
    client->getStatus(std::nullopt, [&](const auto& result) { status = result.value(); });
    settle();
    EXPECT_TRUE(status->blocking);
}

TEST_F(DaemonClientTest, TheSameBytesGiveTheSameStatusAndOtherBytesANewOne)
{
    std::vector<std::shared_ptr<const BlockingStatus>> statuses;
    const auto ask = [&](const char* bytes) {
        reply = bytes;
        client->getStatus(std::nullopt, [&](const auto& result) {
            if (result)
                statuses.push_back(*result);
        });
        settle();
    };
    ask(R"({"should_block":true,"energy":2})");
    ask(R"({"should_block":true,"energy":2})");
    ask(R"({"should_block":true,"energy":3})");
    ask("garbage");
    ask(R"({"should_block":true,"energy":3})");
    ASSERT_EQ(statuses.size(), 4u);
    EXPECT_EQ(statuses[0], statuses[1]);
    EXPECT_NE(statuses[1], statuses[2]);
    EXPECT_EQ(statuses[2]->energy, 3);
    EXPECT_EQ(statuses[2], statuses[3]);
}

TEST_F(DaemonClientTest, WhatTheUserDoesGoesAheadOfAWaitingPoll)
{
    reply = R"({"ok":true,"should_block":true,"energy":2})";
    const auto ignore = [](const auto&) { };
    client->getStatus(std::nullopt, ignore);
    client->getStatus(std::nullopt, ignore);
    client->setAuthToken("t", "", ignore);
    client->forceSync(ignore);
    settle();
    std::vector<std::string> order;
    for (const auto& request : requests)
        order.push_back(request.at("type"));
    EXPECT_EQ(order, (std::vector<std::string> { "set_auth_token", "force_sync", "get_status", "get_status" }));
}

TEST_F(DaemonClientTest, AnswersComeOnTheMainThreadAfterTheCallHasReturned)
{
    bool answered = false;
    client->forceSync([&](const auto&) {
        EXPECT_TRUE(mainLoop.isMainThread());
        answered = true;
    });
    EXPECT_FALSE(answered);
    queue.runAll();
    EXPECT_FALSE(answered);
    mainLoop.runPosted();
    EXPECT_TRUE(answered);
}

TEST_F(DaemonClientTest, NobodyIsCalledAfterTheClientHasGone)
{
    int answers = 0;
    const auto count = [&](const auto&) { ++answers; };
    client->forceSync(count);
    queue.runAll();
    client->forceSync(count);
    client.reset();
    settle();
    EXPECT_EQ(answers, 0);
    EXPECT_EQ(requests.size(), 1u);
}

}
