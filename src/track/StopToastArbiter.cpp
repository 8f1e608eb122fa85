#include "track/StopToastArbiter.h"

#include <algorithm>
#include <iterator>

namespace brevanta {

namespace {

bool hasRunOut(const AutoTrackSessionInfo& session, double wallNow)
{
    return session.budgetEndEpoch && *session.budgetEndEpoch <= wallNow;
}

}

// What is due goes first: a status that comes late, as after the machine has slept, is none of the time before.
StopToastArbiter::Sessions StopToastArbiter::statusArrived(const Change& change, double now, double wallNow)
{
    auto told = timePassed(now);
    m_closed.insert(change.closed.begin(), change.closed.end());
    std::set<std::string_view> tracked;
    std::set<std::string> open;
    for (const auto& session : change.open) {
        tracked.insert(session.bundleId);
        open.insert(session.sessionId);
    }
    for (const auto& session : change.stopped) {
        const double due = now + (hasRunOut(session, wallNow) ? holdSecondsWithoutBudget : holdSeconds);
        m_held.insert(std::ranges::upper_bound(m_held, due, {}, &Held::due), { .session = session, .due = due });
    }
    std::erase_if(m_held, [&](const Held& held) {
        return tracked.contains(held.session.bundleId) || m_closed.contains(held.session.sessionId);
    });
    std::erase_if(m_closed, [&](const std::string& sessionId) { return !open.contains(sessionId); });
    return told;
}

StopToastArbiter::Sessions StopToastArbiter::timePassed(double now)
{
    Sessions told;
    const auto firstToHold = std::ranges::find_if(m_held, [now](const Held& held) { return held.due > now; });
    std::transform(m_held.begin(), firstToHold, std::back_inserter(told), [](Held& held) { return held.session; });
    m_held.erase(m_held.begin(), firstToHold);
    return told;
}

std::optional<double> StopToastArbiter::nextDue() const
{
    return m_held.empty() ? std::nullopt : std::optional(m_held.front().due);
}

bool StopToastArbiter::holds(std::string_view sessionId, double now) const
{
    return std::ranges::any_of(
        m_held, [&](const Held& held) { return held.session.sessionId == sessionId && held.due > now; });
}

}
