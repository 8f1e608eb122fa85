#pragma once

#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace brevanta {

// Decides what is done while the service keeps rejecting the user's token: the page is asked once for a fresh one, and
// after five rejected polls in a row it is reloaded, at most five times in a row and less and less often. A pure value.
class TokenWatchdog {
public:
    // A poll was answered. `now` is wall-clock time in seconds.
    struct Polled {
        bool tokenInvalid { false };
        double now { 0 };
    };
    // The answer to RecoverShell.
    struct RecoverStarted {
        double now { 0 };
    };
    struct RecoverDeferred { };
    using Event = std::variant<Polled, RecoverStarted, RecoverDeferred>;

    // Ask the page for a fresh token; `line` goes to standard error.
    struct SignalPage {
        std::string line;
        bool operator==(const SignalPage&) const = default;
    };
    // Ask the web shell to reload and answer with RecoverStarted or RecoverDeferred.
    struct RecoverShell {
        bool operator==(const RecoverShell&) const = default;
    };
    struct WriteStandardError {
        std::string line;
        bool operator==(const WriteStandardError&) const = default;
    };
    using Command = std::variant<SignalPage, RecoverShell, WriteStandardError>;

    [[nodiscard]] std::vector<Command> reduce(const Event& event);

    bool operator==(const TokenWatchdog&) const = default;

private:
    std::vector<Command> polled(const Polled& poll);
    std::vector<Command> recoverStarted(double now);
    [[nodiscard]] bool reloadIsDue(double now) const;

    bool m_invalidLast { false };
    int m_streak { 0 }; // Rejected polls in a row.
    bool m_reloadInProgress { false };
    std::optional<double> m_latchDeadline; // When a reload counts as ended even if nothing said so.
    std::optional<double> m_nextAttempt;
    double m_backoff { firstBackoff };
    int m_attempts { 0 };

    static constexpr double firstBackoff = 30;
};

}
