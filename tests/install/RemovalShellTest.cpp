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
    constexpr auto there = ServiceProgram::present;
    constexpr auto gone = ServiceProgram::absent;
    RemovalShell shell;
    const auto says = [&](const RemovalStatusField& field) {
        (void)shell.statusArrived(field);
        return shell.state(false).at("state").get<std::string>();
    };
    const auto fails = [&](Listener listener, ServiceProgram program) {
        (void)shell.statusFailed(listener, program);
        return shell.state(false).at("state").get<std::string>();
    };
    EXPECT_EQ(says({}), "unavailable") << "a service without a record";
    EXPECT_EQ(says(record(State::pending, "A", 1, 1)), "pending");
    EXPECT_EQ(fails(Listener::none, gone), "unavailable") << "nothing was committed";
    EXPECT_EQ(says(record(State::pending, "A", 1, 1)), "pending");
    EXPECT_EQ(says(record(State::committed, "A", 1, 2)), "committed");
    EXPECT_EQ(fails(Listener::none, there), "unavailable") << "it has crashed, and is started again";
    EXPECT_EQ(says(record(State::finishing, "B", 2, 1)), "finishing");
    EXPECT_EQ(fails(Listener::there, gone), "unavailable") << "it hangs, and is not gone";
    EXPECT_TRUE(shell.isFinishing()) << "and still gets no token";
    EXPECT_EQ(fails(Listener::none, gone), "removed");
    EXPECT_FALSE(shell.isFinishing());
    EXPECT_EQ(shell.statusFailed(Listener::none, gone), Change::none);
    EXPECT_EQ(says({}), "unavailable") << "it is there, but gives no record";
    EXPECT_EQ(says(record(State::finishing, "C", 1, 1)), "finishing") << "a new service may count anew";
    EXPECT_EQ(shell.serviceInstalled(), Change::changed);
    EXPECT_FALSE(shell.isFinishing());
    EXPECT_EQ(says(record(State::none, "D", 1, 1)), "none");
    EXPECT_EQ(fails(Listener::none, gone), "unavailable") << "the new one has committed nothing";
}

TEST(RemovalShell, ARemovalIsOverdueHalfAMinuteAfterTheServicesOwnWordAndOnlyWhileItsProgramIsThere)
{
    struct Case {
        State state;
        std::optional<double> finishingBy;
        double now;
        ServiceProgram program;
        bool isOverdue;
    };
    for (const auto& [state, finishingBy, now, program, isOverdue] : {
             Case { State::finishing, 1000, 1030, ServiceProgram::present, true },
             Case { State::finishing, 1000, 1029.9, ServiceProgram::present, false },
             Case { State::finishing, 1000, 1030, ServiceProgram::absent, false },
             Case { State::finishing, std::nullopt, 1030, ServiceProgram::present, false },
             Case { State::committed, 1000, 1030, ServiceProgram::present, false },
         }) {
        RemovalShell shell;
        EXPECT_EQ(shell.overdue(now, program), std::nullopt) << "the service has not said so";
        auto field = record(state, "A", 1, 1);
        field.snapshot->finishingBy = finishingBy;
        field.snapshot->account = "42";
        field.snapshot->actionId = 7;
        (void)shell.statusArrived(field);
        (void)shell.statusFailed(Listener::none, ServiceProgram::present);
        const RemovalHandover expected { .account = "42", .actionId = 7, .launch = "A" };
        EXPECT_EQ(shell.overdue(now, program), isOverdue ? std::optional(expected) : std::nullopt) << now;
        (void)shell.serviceInstalled();
        EXPECT_EQ(shell.overdue(now, program), std::nullopt) << "that was another service";
    }
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
