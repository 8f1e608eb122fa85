#include "service/RemovalHandshake.h"

#include <gtest/gtest.h>

namespace brevanta::service {

using Standing = RemovalHandshake::CredentialStanding;
using State = RemovalHandshake::State;

static RemovalHandshake inState(State state)
{
    RemovalHandshake removal("launch-1", 1);
    if (state != State::none)
        removal.queue("42", Standing::good, 100);
    if (state == State::committed)
        removal.commit(101);
    if (state == State::finishing)
        removal.finish(101);
    return removal;
}

static std::string errorOf(const RemovalHandshake& removal) { return removal.record().value("queue_error", "(none)"); }

TEST(RemovalHandshake, AQueuedRemovalIsPendingWithAnExpiryAndCanBeCancelledByItsOwnActionAndAccount)
{
    RemovalHandshake removal("launch-1", 1);
    removal.queue("42", Standing::good, 100);
    const auto record = removal.record();
    EXPECT_EQ(record["state"], "pending");
    EXPECT_EQ(record["origin"], "in_app");
    EXPECT_EQ(record["account"], "42");
    EXPECT_GT(record["expires_at"], 100.0);
    removal.cancel(record["action_id"], "42");
    EXPECT_EQ(removal.state(), State::none);
    EXPECT_EQ(errorOf(removal), "(none)");
    EXPECT_FALSE(removal.record().contains("action_id"));
}

TEST(RemovalHandshake, AQueueRequestThatCannotBeTakenSaysWhyAndLeavesTheStateAlone)
{
    struct Row {
        State state;
        const char* account;
        Standing standing;
        const char* expected;
    };
    const Row rows[] = {
        { State::none, "42", Standing::missing, "no_credential" },
        { State::none, "42", Standing::invalid, "credential_invalid" },
        { State::none, "forty-two", Standing::good, "rejected" },
        { State::none, "", Standing::good, "rejected" },
        { State::none, "123456789012345678901234567890123", Standing::good, "rejected" },
        { State::pending, "43", Standing::good, "account_mismatch" },
        { State::committed, "42", Standing::good, "committed" },
        { State::finishing, "42", Standing::missing, "committed" },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.expected);
        auto removal = inState(row.state);
        removal.queue(row.account, row.standing, 110);
        EXPECT_EQ(errorOf(removal), row.expected);
        EXPECT_EQ(removal.state(), row.state);
    }
}

TEST(RemovalHandshake, ACancelThatDoesNotMatchSaysWhyAndLeavesTheStateAlone)
{
    struct Row {
        State state;
        std::int64_t actionIdOffset;
        const char* account;
        const char* expected;
    };
    const Row rows[] = {
        { State::none, 0, "42", "not_pending" },
        { State::pending, 1, "42", "refreshed" },
        { State::pending, 0, "43", "account_mismatch" },
        { State::committed, 0, "42", "committed" },
        { State::finishing, 0, "42", "committed" },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.expected);
        auto removal = inState(row.state);
        removal.cancel(removal.record().value("action_id", std::int64_t(0)) + row.actionIdOffset, row.account);
        EXPECT_EQ(errorOf(removal), row.expected);
        EXPECT_EQ(removal.state(), row.state);
    }
}

TEST(RemovalHandshake, ASecondRequestOfTheSameAccountOutdatesTheActionOfTheFirst)
{
    auto removal = inState(State::pending);
    const std::int64_t firstAction = removal.record()["action_id"];
    removal.queue("42", Standing::good, 200);
    removal.cancel(firstAction, "42");
    EXPECT_EQ(errorOf(removal), "refreshed");
    removal.cancel(removal.record()["action_id"], "42");
    EXPECT_EQ(removal.state(), State::none);
}

TEST(RemovalHandshake, TheServicesOwnAccountRefusesEveryOther)
{
    RemovalHandshake removal("launch-1", 1);
    removal.setServiceAccount("7");
    removal.queue("42", Standing::good, 100);
    EXPECT_EQ(errorOf(removal), "account_mismatch");
    removal.queue("7", Standing::good, 100);
    EXPECT_EQ(removal.state(), State::pending);
}

TEST(RemovalHandshake, APendingRemovalLapsesButACommittedOneDoesNot)
{
    auto pending = inState(State::pending);
    auto committed = inState(State::committed);
    const double expiresAt = pending.record()["expires_at"];
    pending.advance(expiresAt - 1);
    EXPECT_EQ(pending.state(), State::pending);
    pending.advance(expiresAt);
    committed.advance(expiresAt);
    EXPECT_EQ(pending.state(), State::none);
    EXPECT_EQ(committed.state(), State::committed);
}

TEST(RemovalHandshake, WithTimesARemovalGoesOnByItselfEachStepAtItsOwnTimeHoweverLateTheCall)
{
    RemovalHandshake removal("launch-1", 1);
    removal.setTimes({ .pending = 20, .committed = 5, .finishing = 7 });
    removal.queue("42", Standing::good, 100);
    // A second request starts anew; one that is refused does not.
    removal.queue("42", Standing::good, 110);
    removal.queue("43", Standing::good, 115);
    removal.advance(129);
    EXPECT_EQ(removal.state(), State::pending);
    removal.advance(130);
    EXPECT_EQ(removal.state(), State::committed);
    removal.advance(140);
    EXPECT_EQ(removal.state(), State::finishing);
    EXPECT_EQ(removal.record()["finishing_by"], 142.0);
    EXPECT_FALSE(removal.isOver(141));
    EXPECT_TRUE(removal.isOver(142));
    removal.clear();
    removal.makePending(200, 19);
    removal.advance(1000);
    EXPECT_EQ(removal.state(), State::none);
}

TEST(RemovalHandshake, EveryChangeRaisesTheSequenceAndNothingElseDoes)
{
    RemovalHandshake removal("launch-1", 1);
    std::uint64_t last = removal.record()["seq"];
    const auto expectRaised = [&](const char* after) {
        const std::uint64_t seq = removal.record()["seq"];
        EXPECT_GT(seq, last) << after;
        last = seq;
    };
    removal.cancel(1, "42");
    expectRaised("refused cancel");
    removal.queue("42", Standing::good, 100);
    expectRaised("queue");
    removal.setRequesting(true);
    expectRaised("requesting");
    removal.commit(110);
    expectRaised("commit");
    removal.finish(120);
    expectRaised("finish");
    EXPECT_EQ(removal.record()["blocking_off"], true);
    EXPECT_GT(removal.record()["finishing_by"], 120.0);
    removal.clear();
    expectRaised("clear");
    EXPECT_EQ(removal.record()["blocking_off"], false);
    removal.advance(1e9);
    EXPECT_EQ(removal.record()["seq"], last);
}

}
