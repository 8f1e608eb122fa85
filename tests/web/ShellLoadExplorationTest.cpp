#include "web/ShellLoadReducer.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <map>
#include <tuple>

namespace brevanta {

namespace {

using Event = ShellLoadEvent;
using Command = ShellLoadCommand;

// The delays and time-outs no longer change from the sixth retry on.
constexpr std::int64_t attemptsThatDiffer = 7;

struct State {
    ShellLoadReducer reducer;
    double uptime { 1000 }; // Of the last event that told it.
    bool terminatedBefore { false };
    // The page itself navigated before the launch allowed a load. Nothing is loaded then that could, but if it did and
    // failed, its retry would load; that is the one way to load before both flags.
    bool navigatedTooEarly { false };
};

// States with an equal key behave alike: generations count only by whether they are the live one, an uptime only by its
// distance from the one before, which each event sets anew.
auto keyOf(const State& state)
{
    const auto& reducer = state.reducer;
    const auto age = [&](std::optional<ShellGeneration> generation) {
        return generation ? reducer.nextGeneration() - *generation : 0;
    };
    return std::tuple(reducer.isPrepared(), reducer.isReleased(), reducer.phase(), age(reducer.inFlight()),
        age(reducer.retryArmed()), std::min(reducer.attempt(), attemptsThatDiffer), reducer.priorPhase(),
        state.terminatedBefore, state.navigatedTooEarly);
}

bool shows(ShellLoadPhase phase) { return phase == ShellLoadPhase::committed || phase == ShellLoadPhase::usable; }

bool pageShows(const ShellLoadReducer& reducer)
{
    return shows(reducer.phase())
        || (reducer.phase() == ShellLoadPhase::provisional && reducer.priorPhase() && shows(*reducer.priorPhase()));
}

template <typename What> std::vector<What> all(const std::vector<Command>& commands)
{
    std::vector<What> found;
    for (const auto& command : commands) {
        if (const auto* what = std::get_if<What>(&command.what))
            found.push_back(*what);
    }
    return found;
}

std::vector<Event> eventsAbout(ShellGeneration generation)
{
    return { { Event::DidCommit { generation } }, { Event::DidFinish { generation } },
        { Event::DidFail { generation, "NSURLErrorDomain", -1001 } },
        { Event::DidFail { generation, "NSURLErrorDomain", -999 } },
        { Event::DidFail { generation, "NSURLErrorDomain", -1200 } },
        { Event::DidFail { generation, "ShellLoadCoordinator", 1 } }, { Event::RetryTimerFired { generation } } };
}

std::vector<Event> eventsFrom(const State& state)
{
    std::vector<Event> events { { Event::Prepare {} }, { Event::Release {} }, { Event::ForeignNavigationStarted {} },
        { Event::UserRetry {} }, { Event::Recover { ShellRecoverSource::authWatchdog } },
        { Event::ContentProcessTerminated { state.uptime + 1 } },
        { Event::ContentProcessTerminated { state.uptime + 11 } } };
    constexpr ShellGeneration stale = 0; // Never handed out.
    for (const auto generation : { state.reducer.inFlight(), state.reducer.retryArmed(), std::optional(stale) }) {
        if (generation)
            std::ranges::copy(eventsAbout(*generation), std::back_inserter(events));
    }
    return events;
}

std::optional<ShellGeneration> generationOf(const Event& event)
{
    return std::visit(
        [](const auto& what) -> std::optional<ShellGeneration> {
            if constexpr (requires { what.generation; })
                return what.generation;
            else
                return std::nullopt;
        },
        event.what);
}

// True when the event is about a navigation or a timer that is not the live one.
bool isStale(const ShellLoadReducer& before, const Event& event)
{
    const auto generation = generationOf(event);
    if (!generation)
        return false;
    const bool isTimer = std::holds_alternative<Event::RetryTimerFired>(event.what);
    return isTimer ? before.retryArmed() != generation : before.inFlight() != generation;
}

void checkFailure(const ShellLoadReducer& before, const ShellLoadReducer& after, const std::vector<Command>& commands)
{
    const auto shown = all<Command::ShowPlaceholder>(commands);
    const auto retries = all<Command::ScheduleRetry>(commands);
    if (commands.empty()) {
        ASSERT_FALSE(after.retryArmed());
    } else if (!retries.empty()) {
        ASSERT_EQ(commands.size(), 2u);
        ASSERT_EQ(shown, std::vector { Command::ShowPlaceholder { ShellPlaceholderState::retrying } });
        ASSERT_EQ(after.retryArmed(), retries[0].generation);
    } else {
        ASSERT_EQ(commands.size(), 1u);
        ASSERT_EQ(shown, std::vector { Command::ShowPlaceholder { ShellPlaceholderState::unreachable } });
    }
    // While nothing of the new page had rendered, the old one is still there, and stays.
    if (before.phase() == ShellLoadPhase::provisional && pageShows(before)) {
        ASSERT_TRUE(shown.empty() && shows(after.phase()));
    }
}

void checkStep(
    const State& from, const Event& event, const ShellLoadReducer& after, const std::vector<Command>& commands)
{
    const auto& before = from.reducer;
    if (isStale(before, event)) {
        ASSERT_EQ(before, after);
        ASSERT_TRUE(commands.empty());
        return;
    }
    ASSERT_GE(after.nextGeneration(), before.nextGeneration());
    for (const auto live : { after.inFlight(), after.retryArmed() })
        ASSERT_LT(live.value_or(0), after.nextGeneration());
    ASSERT_FALSE(after.inFlight() && after.retryArmed());
    ASSERT_EQ(after.phase() == ShellLoadPhase::provisional, after.inFlight() && !shows(after.phase()));

    std::vector<ShellGeneration> started;
    for (const auto& load : all<Command::Load>(commands)) {
        started.push_back(load.generation);
        ASSERT_TRUE((after.isPrepared() && after.isReleased()) || from.navigatedTooEarly);
    }
    for (const auto& reload : all<Command::ReloadFromOrigin>(commands)) {
        started.push_back(reload.generation);
        ASSERT_TRUE(pageShows(before));
        ASSERT_TRUE(all<Command::ShowPlaceholder>(commands).empty());
    }
    for (const auto& adopt : all<Command::Adopt>(commands))
        started.push_back(adopt.generation);
    ASSERT_LE(started.size(), 1u);
    if (started.empty()) {
        ASSERT_TRUE(!after.inFlight() || after.inFlight() == before.inFlight());
    } else {
        ASSERT_EQ(after.inFlight(), started[0]);
    }

    // A timer that no longer counts is cancelled, but by its own firing or by the one that takes its place.
    if (before.retryArmed() && after.retryArmed() != before.retryArmed()
        && !std::holds_alternative<Event::RetryTimerFired>(event.what)) {
        ASSERT_FALSE(all<Command::CancelRetry>(commands).empty() && all<Command::ScheduleRetry>(commands).empty());
    }
    if (std::holds_alternative<Event::DidFail>(event.what))
        checkFailure(before, after, commands);
}

}

TEST(ShellLoadExploration, EveryReachableStateKeepsTheInvariants)
{
    std::map<decltype(keyOf(State {})), State> known;
    std::vector<State> frontier { State {} };
    known.emplace(keyOf(frontier[0]), frontier[0]);
    std::size_t transitions = 0;
    int depth = 0;
    for (; !frontier.empty(); ++depth) {
        std::vector<State> next;
        for (const auto& from : frontier) {
            for (const auto& event : eventsFrom(from)) {
                State to = from;
                ++transitions;
                const auto commands = to.reducer.reduce(event);
                if (const auto* terminated = std::get_if<Event::ContentProcessTerminated>(&event.what)) {
                    to.uptime = terminated->uptime;
                    to.terminatedBefore = true;
                }
                if (std::holds_alternative<Event::ForeignNavigationStarted>(event.what)
                    && !(from.reducer.isPrepared() && from.reducer.isReleased()))
                    to.navigatedTooEarly = true;
                checkStep(from, event, to.reducer, commands);
                if (HasFatalFailure())
                    FAIL() << "depth " << depth << ", " << describe(from.reducer.phase()) << " to "
                           << describe(to.reducer.phase()) << " by event " << event.what.index() << ": "
                           << describe(commands);
                if (known.emplace(keyOf(to), to).second)
                    next.push_back(to);
            }
        }
        frontier = std::move(next);
    }
    // Nothing new is found any more, so this covers every depth.
    std::cout << known.size() << " states, " << transitions << " transitions, nothing new after depth " << depth
              << '\n';
    EXPECT_GT(known.size(), 100u);
    EXPECT_GT(depth, 10);
}

}
