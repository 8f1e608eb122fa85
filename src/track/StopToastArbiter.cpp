#include "track/StopToastArbiter.h"

#include <algorithm>
#include <iterator>
#include <set>

namespace brevanta {

namespace {

bool hasRunOut(const AutoTrackSessionInfo& session, double wallNow)
{
    return session.budgetEndEpoch && *session.budgetEndEpoch <= wallNow;
}

}

// What is due goes first: a status that comes late, as after the machine has slept, is none of the time before.
StopToastArbiter::Sessions StopToastArbiter::statusArrived(std::span<const AutoTrackSessionInfo> stopped,
    std::span<const AutoTrackSessionInfo> open, double now, double wallNow)
{
    auto told = timePassed(now);
    std::set<std::string_view> tracked;
    for (const auto& session : open)
        tracked.insert(session.bundleId);
    std::erase_if(m_held, [&](const Held& held) { return tracked.contains(held.session.bundleId); });
    for (const auto& session : stopped) {
        if (tracked.contains(session.bundleId))
            continue;
        if (hasRunOut(session, wallNow))
            told.push_back(session);
        else
            m_held.push_back({ .session = session, .due = now + holdSeconds });
    }
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
