#include "web/ShellLoadReducer.h"

#include <gtest/gtest.h>

namespace brevanta {

namespace {

using Event = ShellLoadEvent;
using Command = ShellLoadCommand;

constexpr std::int64_t timedOut = -1001;
constexpr std::int64_t cancelled = -999;
constexpr std::int64_t tlsFailure = -1200;

Event didFail(ShellGeneration generation, std::int64_t code)
{
    return { Event::DidFail { generation, "NSURLErrorDomain", code } };
}
Event didCommit(ShellGeneration generation) { return { Event::DidCommit { generation } }; }
Event didFinish(ShellGeneration generation) { return { Event::DidFinish { generation } }; }
Event retryTimer(ShellGeneration generation) { return { Event::RetryTimerFired { generation } }; }
Event terminated(double uptime) { return { Event::ContentProcessTerminated { uptime } }; }
const Event prepare { Event::Prepare {} };
const Event release { Event::Release {} };
const Event foreign { Event::ForeignNavigationStarted {} };
const Event userRetry { Event::UserRetry {} };
const Event recover { Event::Recover { ShellRecoverSource::authWatchdog } };

// What the last of these events, from the initial state on, calls for.
std::string lastOf(const std::vector<Event>& events)
{
    ShellLoadReducer reducer;
    std::vector<Command> commands;
    for (const auto& event : events)
        commands = reducer.reduce(event);
    return describe(commands);
}

std::string phaseAfter(const std::vector<Event>& events)
{
    ShellLoadReducer reducer;
    for (const auto& event : events)
        (void)reducer.reduce(event);
    return std::string(describe(reducer.phase()));
}

// Loaded once: generation 1 is the page that shows.
std::vector<Event> usable(std::vector<Event> then = {})
{
    std::vector<Event> events { prepare, release, didCommit(1), didFinish(1) };
    events.insert(events.end(), then.begin(), then.end());
    return events;
}

}

TEST(ShellLoadReducer, TheFirstLoadNeedsBothFlagsInEitherOrderAndHappensOnce)
{
    EXPECT_EQ(lastOf({ prepare }), "[]");
    EXPECT_EQ(lastOf({ release }), "[]");
    EXPECT_EQ(lastOf({ prepare, release }), "[load(1, 20.0)]");
    EXPECT_EQ(lastOf({ release, prepare }), "[load(1, 20.0)]");
    EXPECT_EQ(lastOf({ prepare, release, prepare }), "[]");
    EXPECT_EQ(lastOf({ prepare, release, release }), "[]");
    EXPECT_EQ(lastOf({ prepare, release, didFail(1, timedOut), prepare }), "[]");
}

TEST(ShellLoadReducer, ALoadShowsItsPageWhenItCommits)
{
    EXPECT_EQ(lastOf({ prepare, release, didCommit(1) }), "[hidePlaceholder]");
    EXPECT_EQ(lastOf(usable()), "[cancelRetry, hidePlaceholder]");
    EXPECT_EQ(phaseAfter({ prepare, release, didCommit(1) }), "committed");
    EXPECT_EQ(phaseAfter(usable()), "usable");
}

TEST(ShellLoadReducer, RetriesWaitLongerAndLongerAndAreGivenMoreTime)
{
    ShellLoadReducer reducer;
    (void)reducer.reduce(prepare);
    (void)reducer.reduce(release);
    struct Case {
        double after;
        double timeout;
    };
    ShellGeneration inFlight = 1;
    for (const auto& [after, timeout] :
        { Case { 1, 30 }, { 2, 45 }, { 4, 60 }, { 8, 60 }, { 16, 60 }, { 30, 60 }, { 30, 60 }, { 30, 60 } }) {
        const auto next = inFlight + 1;
        EXPECT_EQ(reducer.reduce(didFail(inFlight, timedOut)),
            (std::vector<Command> { { Command::ShowPlaceholder { ShellPlaceholderState::retrying } },
                { Command::ScheduleRetry { next, after } } }));
        EXPECT_EQ(reducer.reduce(retryTimer(next)), (std::vector<Command> { { Command::Load { next, timeout } } }));
        inFlight = next;
    }
    (void)reducer.reduce(didFinish(inFlight));
    EXPECT_EQ(reducer.attempt(), 0);
}

TEST(ShellLoadReducer, OnlyPassingErrorsAreRetried)
{
    for (const std::int64_t code : { -1001, -1003, -1004, -1005, -1006, -1009, -1011, -1017 })
        EXPECT_EQ(lastOf({ prepare, release, didFail(1, code) }),
            "[showPlaceholder(retrying), scheduleRetry(2, after: 1.0)]");
    for (const std::int64_t code : { std::int64_t { 0 }, std::int64_t { -1000 }, std::int64_t { -1002 }, tlsFailure })
        EXPECT_EQ(lastOf({ prepare, release, didFail(1, code) }), "[showPlaceholder(unreachable)]");
    EXPECT_EQ(lastOf({ prepare, release, { Event::DidFail { 1, "ShellLoadCoordinator", timedOut } } }),
        "[showPlaceholder(unreachable)]");
    EXPECT_EQ(lastOf({ prepare, release, { Event::DidFail { 1, "WebKitErrorDomain", cancelled } } }),
        "[showPlaceholder(unreachable)]");
}

TEST(ShellLoadReducer, APageThatShowedIsKeptWhateverAReloadOrItsOwnNavigationComesTo)
{
    for (const auto& start : { recover, userRetry, foreign }) {
        for (const std::int64_t code : { timedOut, cancelled, tlsFailure }) {
            EXPECT_EQ(lastOf(usable({ start, didFail(2, code) })), "[]");
            EXPECT_EQ(phaseAfter(usable({ start, didFail(2, code) })), "usable");
        }
    }
    EXPECT_EQ(phaseAfter({ prepare, release, didCommit(1), recover, didFail(2, timedOut) }), "committed");
    // A foreign navigation that replaces another keeps what showed before the first of them.
    EXPECT_EQ(phaseAfter(usable({ foreign, foreign, didFail(3, timedOut) })), "usable");
    EXPECT_EQ(phaseAfter({ prepare, release, didFail(1, cancelled) }), "blank");
    // Once the new page has begun to render, the old one is gone.
    EXPECT_EQ(lastOf(usable({ foreign, didCommit(2), didFail(2, tlsFailure) })), "[showPlaceholder(unreachable)]");
}

TEST(ShellLoadReducer, TryAgainReloadsAPageAndLoadsWhereThereIsNone)
{
    EXPECT_EQ(lastOf({ userRetry }), "[]");
    EXPECT_EQ(lastOf({ prepare, release, userRetry }), "[]");
    EXPECT_EQ(lastOf(usable({ userRetry })), "[cancelRetry, reloadFromOrigin(2)]");
    EXPECT_EQ(lastOf({ prepare, release, didFail(1, timedOut), userRetry }),
        "[cancelRetry, showPlaceholder(loading), load(3, 20.0)]");
    EXPECT_EQ(lastOf({ prepare, release, didFail(1, timedOut), userRetry, retryTimer(2) }), "[]");
}

TEST(ShellLoadReducer, RecoverReloadsOnlyAPageThatShows)
{
    EXPECT_EQ(lastOf({ recover }), "[]");
    EXPECT_EQ(lastOf({ prepare, release, recover }), "[]");
    EXPECT_EQ(lastOf({ prepare, release, didCommit(1), recover }), "[cancelRetry, reloadFromOrigin(2)]");
    EXPECT_EQ(lastOf(usable({ recover })), "[cancelRetry, reloadFromOrigin(2)]");
}

TEST(ShellLoadReducer, ADeadContentProcessReloadsAtOnceUnlessItDiesAgainWithinTenSeconds)
{
    EXPECT_EQ(lastOf(usable({ terminated(100) })), "[cancelRetry, showPlaceholder(loading), load(2, 20.0)]");
    EXPECT_EQ(lastOf(usable({ terminated(100), terminated(109.9) })),
        "[cancelRetry, showPlaceholder(loading), showPlaceholder(retrying), scheduleRetry(3, after: 1.0)]");
    EXPECT_EQ(
        lastOf(usable({ terminated(100), terminated(110) })), "[cancelRetry, showPlaceholder(loading), load(3, 20.0)]");
    EXPECT_EQ(lastOf({ prepare, terminated(100) }), "[cancelRetry, showPlaceholder(loading)]");
}

TEST(ShellLoadReducer, AForeignNavigationIsAdoptedEvenBeforeTheFirstLoad)
{
    EXPECT_EQ(lastOf({ foreign }), "[cancelRetry, adopt(1)]");
    EXPECT_EQ(lastOf({ prepare, release, didFail(1, timedOut), foreign }), "[cancelRetry, adopt(3)]");
}

}
