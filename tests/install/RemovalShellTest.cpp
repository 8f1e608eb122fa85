#include "install/RemovalShell.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace brevanta {

namespace {

using State = RemovalSnapshot::State;
using Change = RemovalShell::Change;
using Listener = RemovalShell::Listener;

RemovalStatusField record(State state, const char* launch, std::uint64_t order, std::uint64_t seq)
{
    return { RemovalSnapshot { .state = state,
        .origin = {},
        .queueError = {},
        .account = {},
        .launch = launch,
        .launchOrder = order,
        .seq = seq } };
}

}

TEST(RemovalShell, StaleAndReorderedRecordsAreDropped)
{
    struct Step {
        const char* launch;
        std::uint64_t order;
        std::uint64_t seq;
        Change change;
    };
    RemovalShell shell;
    for (const auto& [launch, order, seq, change] : {
             Step { "A", 5, 3, Change::changed },
             Step { "A", 5, 3, Change::none },
             Step { "A", 5, 2, Change::none },
             Step { "A", 9, 3, Change::none }, // Within one launch only seq counts.
             Step { "B", 4, 100, Change::none },
             Step { "B", 5, 100, Change::none },
             Step { "B", 6, 1, Change::changed },
             Step { "A", 5, 4, Change::none },
             Step { "B", 6, 2, Change::changed },
         })
        EXPECT_EQ(shell.statusArrived(record(State::pending, launch, order, seq)), change)
            << launch << ' ' << order << ' ' << seq;
}

TEST(RemovalShell, ThePageHearsWhatTheServiceSaysAndWhatItsSilenceMeans)
{
    RemovalShell shell;
    const auto state = [&] { return shell.state(false).at("state").get<std::string>(); };
    EXPECT_EQ(state(), "unavailable");
    (void)shell.statusArrived({});
    EXPECT_EQ(state(), "unavailable") << "a service without a record";
    (void)shell.statusArrived(record(State::pending, "A", 1, 1));
    EXPECT_EQ(state(), "pending");
    (void)shell.statusFailed(Listener::none);
    EXPECT_EQ(state(), "unavailable") << "nothing was committed";
    (void)shell.statusArrived(record(State::pending, "A", 1, 1));
    EXPECT_EQ(state(), "pending");
    (void)shell.statusArrived(record(State::finishing, "A", 1, 2));
    EXPECT_TRUE(shell.isFinishing());
    EXPECT_EQ(state(), "finishing");
    (void)shell.statusFailed(Listener::there);
    EXPECT_EQ(state(), "unavailable") << "it hangs, and is not gone";
    EXPECT_TRUE(shell.isFinishing()) << "and still gets no token";
    (void)shell.statusFailed(Listener::none);
    EXPECT_EQ(state(), "removed");
    EXPECT_FALSE(shell.isFinishing());
    (void)shell.statusArrived(record(State::none, "B", 2, 1));
    EXPECT_EQ(state(), "none") << "it was installed anew";
    EXPECT_EQ(shell.statusFailed(Listener::none), Change::changed);
    EXPECT_EQ(shell.statusFailed(Listener::none), Change::none);
}

TEST(RemovalShell, AServiceThatAnswersAgainOrIsInstalledAnewHasNotBeenRemoved)
{
    RemovalShell shell;
    const auto state = [&] { return shell.state(false).at("state").get<std::string>(); };
    (void)shell.statusArrived(record(State::committed, "A", 1, 2));
    (void)shell.statusFailed(Listener::none);
    EXPECT_EQ(state(), "removed");
    EXPECT_EQ(shell.statusArrived(record(State::committed, "A", 1, 2)), Change::changed);
    EXPECT_EQ(state(), "committed") << "one poll had failed";
    (void)shell.statusFailed(Listener::none);
    (void)shell.statusArrived(record(State::pending, "A", 1, 1));
    EXPECT_EQ(state(), "unavailable") << "it is there, but what it says is stale";
    (void)shell.statusFailed(Listener::none);
    EXPECT_EQ(state(), "removed");
    EXPECT_EQ(shell.serviceInstalled(), Change::changed);
    EXPECT_EQ(state(), "unavailable");
    (void)shell.statusArrived(record(State::none, "B", 2, 1));
    (void)shell.statusFailed(Listener::none);
    EXPECT_EQ(state(), "unavailable") << "the new one has merely stopped";
}

TEST(RemovalShell, TheStateHasItsKeysAndOnlyThem)
{
    RemovalShell shell;
    EXPECT_EQ(shell.state(true),
        Json::parse(R"({"schema":1,"state":"unavailable","origin":null,"expiresAt":null,"actionId":null,
            "queueError":null,"account":null,"requesting":false,"filterRemovable":true})"));
    auto field = record(State::finishing, "A", 1, 1);
    field.snapshot->origin = "in_app";
    field.snapshot->expiresAt = 1.5;
    field.snapshot->actionId = 7;
    field.snapshot->queueError = "rejected";
    field.snapshot->account = "42";
    field.snapshot->requesting = true;
    field.snapshot->finishingBy = 2.5;
    field.snapshot->blockingOff = true;
    (void)shell.statusArrived(field);
    EXPECT_EQ(shell.state(false),
        Json::parse(R"({"schema":1,"state":"finishing","origin":"in_app","expiresAt":1.5,"actionId":7,
            "queueError":"rejected","account":"42","requesting":true,"filterRemovable":false,
            "finishingBy":2.5,"blockingOff":true})"));
}

}
