#include "track/AppTracker.h"

#include "notify/NoticeKeys.h"
#include "platform/Clock.h"
#include "platform/MainLoop.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace brevanta {

namespace {

constexpr std::size_t mostEnded = 100;

// By their identifiers, each once.
StopToastArbiter::Sessions ordered(StopToastArbiter::Sessions sessions)
{
    std::ranges::sort(sessions, {}, &AutoTrackSessionInfo::sessionId);
    const auto repeated = std::ranges::unique(sessions, {}, &AutoTrackSessionInfo::sessionId);
    sessions.erase(repeated.begin(), repeated.end());
    return sessions;
}

// Those whose end the status tells with a notice of its own.
std::vector<std::string> closedSessions(const BlockingStatus& status)
{
    std::vector<std::string> closed;
    const auto add = [&](const auto& records) {
        for (const auto& record : records) {
            if (record.closingSessionId)
                closed.push_back(*record.closingSessionId);
        }
    };
    if (status.notifyMacosAppBlocked.value_or(true))
        add(status.pendingAppRejections);
    add(status.pendingTaskResumes);
    return closed;
}

// The sessions that are no longer, or not yet, among the others; both in order.
StopToastArbiter::Sessions without(const StopToastArbiter::Sessions& sessions, const StopToastArbiter::Sessions& others)
{
    StopToastArbiter::Sessions rest;
    std::ranges::set_difference(sessions, others, std::back_inserter(rest), {}, &AutoTrackSessionInfo::sessionId,
        &AutoTrackSessionInfo::sessionId);
    return rest;
}

}

std::string_view lastComponent(std::string_view bundleIdentifier)
{
    const auto last = bundleIdentifier.substr(bundleIdentifier.rfind('.') + 1);
    return last.empty() ? bundleIdentifier : last;
}

// The handler first, so that nothing launches between it and the list.
AppTracker::AppTracker(Dependencies dependencies)
    : m_dependencies(std::move(dependencies))
    , m_generationOfPoll(m_dependencies.generation.current())
    , m_generationOfStatus(m_generationOfPoll)
{
    m_dependencies.workspace.setApplicationHandler(
        m_life.guard([this](ApplicationChange change, const RunningApplication& application) {
            applicationChanged(change, application);
        }));
    const auto running = m_dependencies.workspace.runningApplications();
    m_running.insert(running.begin(), running.end());
}

AppTracker::~AppTracker() { m_dependencies.workspace.setApplicationHandler({}); }

void AppTracker::pollBegan() { m_generationOfPoll = m_dependencies.generation.current(); }

void AppTracker::consume(const std::shared_ptr<const BlockingStatus>& status)
{
    const bool userChanged = std::exchange(m_generationOfStatus, m_generationOfPoll) != m_generationOfPoll;
    if (status == m_status && !userChanged)
        return;
    m_status = status;
    m_userChanged = m_userChanged || userChanged;
    const bool isForUser = m_dependencies.generation.allows(m_generationOfPoll);
    if (userChanged || !isForUser)
        forgetSessions();
    if (!isForUser)
        return;
    if (const auto open = status->autoTrackSessions ? ordered(*status->autoTrackSessions) : m_sessions)
        sessionsListed(*open, closedSessions(*status));
}

void AppTracker::forgetSessions()
{
    m_stopArbiter = {};
    m_timer.reset();
    m_sessions.reset();
    m_ended.clear();
}

void AppTracker::sessionsListed(Sessions open, std::vector<std::string> closed)
{
    const auto previous = std::exchange(m_sessions, std::move(open));
    const auto& before = previous ? *previous : *m_sessions;
    if (std::exchange(m_userChanged, false))
        std::ranges::transform(*m_sessions, std::back_inserter(closed), &AutoTrackSessionInfo::sessionId);
    const double now = m_dependencies.clock.continuousSeconds();
    auto started = without(*m_sessions, before);
    // One that was missing for a moment has been told of already, and one that is refused is none that goes on.
    std::erase_if(started, [&](const auto& session) {
        return m_stopArbiter.holds(session.sessionId, now)
            || std::ranges::find(closed, session.sessionId) != closed.end();
    });
    const auto ended = without(before, *m_sessions);
    m_ended.insert(m_ended.end(), ended.begin(), ended.end());
    while (m_ended.size() > mostEnded)
        m_ended.pop_front();
    const auto stopped = m_stopArbiter.statusArrived(
        { .stopped = ended, .open = *m_sessions, .closed = closed }, now, m_dependencies.clock.wallSeconds());
    awaitNextStop();
    tellStops(stopped);
    tellStarts(started);
}

void AppTracker::tellStarts(const Sessions& started) const
{
    if (!m_status->notifyMacosAutoTrackStart.value_or(true))
        return;
    for (const auto& session : started)
        tell(session, noticeKeys::autoTrackStartTitle, noticeKeys::autoTrackStartBody, "auto-track-start-");
}

void AppTracker::tellStops(const Sessions& stopped) const
{
    if (!m_status->notifyMacosAutoTrackStop.value_or(true))
        return;
    for (const auto& session : stopped)
        tell(session, noticeKeys::autoTrackStopTitle, noticeKeys::autoTrackStopBody, "auto-track-stop-");
}

void AppTracker::tell(const AutoTrackSessionInfo& session, std::string_view titleKey, std::string_view bodyKey,
    const char* identifierPrefix) const
{
    const auto& copy = m_dependencies.copy();
    const auto name = nameOf(session.bundleId);
    m_dependencies.post({ .identifier = identifierPrefix + session.sessionId,
        .title = copy.text(titleKey),
        .body = copy.text(bodyKey, { { .placeholder = "app", .value = name } }),
        .generation = m_generationOfStatus });
}

void AppTracker::awaitNextStop()
{
    m_timer.reset();
    if (const auto due = m_stopArbiter.nextDue())
        m_timer = m_dependencies.mainLoop.startTimer(*due - m_dependencies.clock.continuousSeconds(), TimerRepeat::once,
            [this, due = *due] { stopFellDue(due); });
}

// The timer counts as having kept its time: whatever it was set for is due now, however the clocks were rounded.
void AppTracker::stopFellDue(double due)
{
    const auto stopped = m_stopArbiter.timePassed(std::max(due, m_dependencies.clock.continuousSeconds()));
    awaitNextStop();
    tellStops(stopped);
}

AppTracker::AppLists AppTracker::lists() const
{
    if (!m_status)
        return {};
    return { .blockedApps = m_status->blockedApps,
        .meteredDomains = m_status->meteredDomains,
        .autoTrackApps = m_status->autoTrackApps,
        .status = m_status };
}

std::optional<std::string> AppTracker::applicationOf(std::string_view sessionId) const
{
    const auto nameIn = [&](const auto& sessions) -> std::optional<std::string> {
        const auto found = std::ranges::find(sessions, sessionId, &AutoTrackSessionInfo::sessionId);
        return found == sessions.end() ? std::nullopt : std::optional(nameOf(found->bundleId));
    };
    auto name = m_sessions ? nameIn(*m_sessions) : std::nullopt;
    return name ? name : nameIn(m_ended);
}

std::vector<std::string> AppTracker::runningAutoTrackApps() const
{
    std::set<std::string_view> running;
    for (const auto& application : m_running)
        running.insert(application.bundleIdentifier);
    std::vector<std::string> tracked;
    for (const auto identifier : lists().autoTrackApps) {
        if (running.contains(identifier))
            tracked.emplace_back(identifier);
    }
    return tracked;
}

std::string AppTracker::nameOf(const std::string& bundleIdentifier) const
{
    return m_dependencies.workspace.displayNameOf(bundleIdentifier)
        .value_or(std::string(lastComponent(bundleIdentifier)));
}

void AppTracker::applicationChanged(ApplicationChange change, const RunningApplication& application)
{
    if (change == ApplicationChange::launched)
        m_running.insert(application);
    else
        m_running.erase(application);
}

}
