#include "menubar/TokenWatchdog.h"

#include <algorithm>

namespace brevanta {

namespace {

constexpr int reloadThreshold = 5;
constexpr int mostAttempts = 5;
constexpr double latchSeconds = 30;
constexpr double backoffCap = 300;

std::string persisted(int streak) { return "auth_token_invalid persisted " + std::to_string(streak) + " polls → "; }

}

std::vector<TokenWatchdog::Command> TokenWatchdog::reduce(const Event& event)
{
    if (const auto* poll = std::get_if<Polled>(&event))
        return polled(*poll);
    if (const auto* started = std::get_if<RecoverStarted>(&event))
        return recoverStarted(started->now);
    return { WriteStandardError { persisted(m_streak) + "reload deferred: shell load in progress" } };
}

std::vector<TokenWatchdog::Command> TokenWatchdog::polled(const Polled& poll)
{
    if (!poll.tokenInvalid) {
        *this = {};
        return {};
    }

    std::vector<Command> commands;
    if (!m_invalidLast)
        commands.emplace_back(SignalPage { "auth_token_invalid: signalled SPA to re-forward daemon token" });
    ++m_streak;
    if (m_reloadInProgress && m_latchDeadline && poll.now >= *m_latchDeadline)
        m_reloadInProgress = false;
    if (reloadIsDue(poll.now))
        commands.emplace_back(RecoverShell {});
    m_invalidLast = true;
    return commands;
}

bool TokenWatchdog::reloadIsDue(double now) const
{
    return m_streak >= reloadThreshold && !m_reloadInProgress && m_attempts < mostAttempts
        && (!m_nextAttempt || now >= *m_nextAttempt);
}

std::vector<TokenWatchdog::Command> TokenWatchdog::recoverStarted(double now)
{
    m_reloadInProgress = true;
    m_latchDeadline = now + latchSeconds;
    ++m_attempts;
    m_nextAttempt = now + m_backoff;
    m_backoff = std::min(m_backoff * 2, backoffCap);
    return { WriteStandardError { persisted(m_streak) + "reloading WebView (attempt " + std::to_string(m_attempts) + "/"
        + std::to_string(mostAttempts) + ")" } };
}

}
