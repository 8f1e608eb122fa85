#include "menubar/TokenWatchdog.h"

#include <gtest/gtest.h>

namespace brevanta {

namespace {

// Runs polls two seconds apart against a shell that always or never starts a reload; notes when what was done.
struct Polling {
    TokenWatchdog watchdog;
    double now { 0 };
    std::vector<double> reloads;
    std::vector<std::string> lines;
    int signals { 0 };

    void poll(bool invalid, bool shellStarts = true)
    {
        for (const auto& command : watchdog.reduce(TokenWatchdog::Polled { invalid, now })) {
            if (std::holds_alternative<TokenWatchdog::SignalPage>(command))
                ++signals;
            if (!std::holds_alternative<TokenWatchdog::RecoverShell>(command))
                continue;
            if (shellStarts)
                reloads.push_back(now);
            const auto answer
                = watchdog.reduce(shellStarts ? TokenWatchdog::Event(TokenWatchdog::RecoverStarted { now })
                                              : TokenWatchdog::Event(TokenWatchdog::RecoverDeferred {}));
            ASSERT_EQ(answer.size(), 1u);
            lines.push_back(std::get<TokenWatchdog::WriteStandardError>(answer[0]).line);
        }
        now += 2;
    }

    void pollFor(double seconds, bool invalid, bool shellStarts = true)
    {
        for (const double end = now + seconds; now < end;)
            poll(invalid, shellStarts);
    }
};

}

TEST(TokenWatchdog, ReloadsAtTheFifthRejectionAndThenLessAndLessOftenAtMostFiveTimes)
{
    Polling run;
    run.pollFor(3600, true);
    // Each wait counts from the reload before: 30, 60, 120 and 240 seconds.
    EXPECT_EQ(run.reloads, (std::vector<double> { 8, 38, 98, 218, 458 }));
    EXPECT_EQ(run.signals, 1);
    ASSERT_EQ(run.lines.size(), 5u);
    EXPECT_EQ(run.lines[0], "auth_token_invalid persisted 5 polls → reloading WebView (attempt 1/5)");
    EXPECT_EQ(run.lines[1], "auth_token_invalid persisted 20 polls → reloading WebView (attempt 2/5)");
}

TEST(TokenWatchdog, AGoodPollStartsEverythingAnew)
{
    Polling run;
    run.pollFor(100, true);
    run.poll(false);
    EXPECT_EQ(run.watchdog, TokenWatchdog {});
    const double again = run.now;
    run.pollFor(40, true);
    EXPECT_EQ(run.reloads, (std::vector<double> { 8, 38, 98, again + 8, again + 38 }));
    EXPECT_EQ(run.lines.back(), "auth_token_invalid persisted 20 polls → reloading WebView (attempt 2/5)");
}

TEST(TokenWatchdog, ABusyShellIsAskedAgainAtEveryPoll)
{
    Polling run;
    run.pollFor(14, true, false);
    EXPECT_EQ(run.lines,
        (std::vector<std::string> { "auth_token_invalid persisted 5 polls → reload deferred: shell load in progress",
            "auth_token_invalid persisted 6 polls → reload deferred: shell load in progress",
            "auth_token_invalid persisted 7 polls → reload deferred: shell load in progress" }));
    run.poll(true);
    EXPECT_EQ(run.reloads, std::vector<double> { 14 });
    EXPECT_EQ(run.lines.back(), "auth_token_invalid persisted 8 polls → reloading WebView (attempt 1/5)");
}

TEST(TokenWatchdog, AWallClockSetBackOnlyDelaysTheNextReload)
{
    Polling run;
    run.pollFor(20, true);
    run.now -= 3600;
    run.pollFor(3600, true);
    EXPECT_EQ(run.reloads, std::vector<double> { 8 });
    run.pollFor(60, true);
    EXPECT_EQ(run.reloads, (std::vector<double> { 8, 38 }));
}

namespace {

// What a sequence of polls has led to, as an outsider counts it.
struct Explored {
    TokenWatchdog watchdog;
    double now { 0 };
    int streak { 0 };
    int reloads { 0 };
    double lastReload { -1e9 };
};

void explore(const Explored& from, int depth, std::size_t& visited)
{
    struct Step {
        bool invalid;
        double gap;
    };
    if (!depth)
        return;
    for (const auto& [invalid, gap] : { Step { false, 2 }, Step { true, 2 }, Step { true, 31 } }) {
        Explored to = from;
        ++visited;
        to.now += gap;
        const auto commands = to.watchdog.reduce(TokenWatchdog::Polled { invalid, to.now });
        to.streak = invalid ? from.streak + 1 : 0;
        if (!invalid) {
            to.reloads = 0;
            to.lastReload = -1e9;
            ASSERT_EQ(to.watchdog, TokenWatchdog {});
        }
        const bool signalled = !commands.empty() && std::holds_alternative<TokenWatchdog::SignalPage>(commands[0]);
        ASSERT_EQ(signalled, invalid && from.streak == 0);
        if (!commands.empty() && std::holds_alternative<TokenWatchdog::RecoverShell>(commands.back())) {
            ASSERT_GE(to.streak, 5);
            ASSERT_LT(to.reloads, 5);
            ASSERT_GE(to.now - to.lastReload, 30);
            (void)to.watchdog.reduce(TokenWatchdog::RecoverStarted { to.now });
            ++to.reloads;
            to.lastReload = to.now;
        }
        explore(to, depth - 1, visited);
    }
}

}

TEST(TokenWatchdog, EverySequenceOfTwelvePollsKeepsTheLimits)
{
    std::size_t visited = 0;
    explore({}, 12, visited);
    EXPECT_EQ(visited, 797'160u); // 3 + 3^2 + ... + 3^12: none was left out.
}

}
