#pragma once

#include "base/LifeToken.h"
#include "daemon/BlockingStatus.h"
#include "daemon/StatusConsumer.h"
#include "notify/DeliveryGeneration.h"
#include "notify/NoticeCopy.h"
#include "platform/Workspace.h"
#include "track/StopToastArbiter.h"

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace brevanta {

class Clock;
class MainLoop;
class Timer;

// The client's side of app tracking: tells the user of auto-track sessions that start and stop, each only the user
// whose they are, and knows what the newest status says of applications and which of them run. Main thread only.
class AppTracker final : public StatusConsumer {
public:
    struct Notice {
        std::string identifier; // "auto-track-start-" or "auto-track-stop-" and the session's.
        std::string title;
        std::string body;
        std::int64_t generation { 0 }; // Under which the session was listed.
    };

    struct Dependencies {
        MainLoop& mainLoop;
        const Clock& clock;
        Workspace& workspace;
        DeliveryGeneration generation;
        CurrentNoticeCopy copy;
        std::function<void(const Notice&)> post;
    };

    // What a status says of applications; all empty before the first one.
    struct AppLists {
        BlockingStatus::List blockedApps; // Bundle identifiers.
        BlockingStatus::List meteredDomains;
        BlockingStatus::List autoTrackApps; // Bundle identifiers.
        std::shared_ptr<const BlockingStatus> status; // What the lists are views into.
    };

    // Takes the workspace's application handler for as long as it lives.
    explicit AppTracker(Dependencies dependencies);
    ~AppTracker() override;
    AppTracker(const AppTracker&) = delete;
    AppTracker& operator=(const AppTracker&) = delete;

    void pollBegan() override;

    // Of the first status that lists sessions no start is told, since they may have been open for long, nor of the
    // first one after a sign-out or sign-in, whose sessions' stops are not told either: they may be the user's of
    // before. A status that lists none at all leaves open what was. A session that a refusal or a resumed task of a
    // status closes has that notice alone. The newest status's switches count; without them everything is told.
    void consume(const std::shared_ptr<const BlockingStatus>& status) override;
    void serviceFailed(const DaemonFailure&) override { }

    // Of the newest status, also while the service fails.
    [[nodiscard]] AppLists lists() const;

    // The name of the session's application; nothing when no such session is or was listed lately.
    [[nodiscard]] std::optional<std::string> applicationOf(std::string_view sessionId) const;

    // The applications of `autoTrackApps` that run, in the order of that list.
    [[nodiscard]] std::vector<std::string> runningAutoTrackApps() const;

private:
    using Sessions = StopToastArbiter::Sessions;

    void forgetSessions();
    void sessionsListed(Sessions open, std::vector<std::string> closed);
    void tellStarts(const Sessions& started) const;
    void tellStops(const Sessions& stopped) const;
    void tell(const AutoTrackSessionInfo& session, std::string_view titleKey, std::string_view bodyKey,
        const char* identifierPrefix) const;
    void awaitNextStop();
    void stopFellDue(double due);
    [[nodiscard]] std::string nameOf(const std::string& bundleIdentifier) const;
    void applicationChanged(ApplicationChange change, const RunningApplication& application);

    Dependencies m_dependencies;
    StopToastArbiter m_stopArbiter;
    std::shared_ptr<const BlockingStatus> m_status;
    std::int64_t m_generationOfPoll;
    std::int64_t m_generationOfStatus; // Of `m_status`, and of the sessions below.
    bool m_userChanged { false }; // Since sessions were last listed.
    std::optional<Sessions> m_sessions; // Those last listed, by their identifiers; nothing while none were.
    std::deque<AutoTrackSessionInfo> m_ended; // Those last ended, for their names.
    std::set<RunningApplication> m_running;
    std::unique_ptr<Timer> m_timer; // For the next stop that is held.
    LifeToken m_life;
};

// What stands behind the last point of the identifier, or the identifier where that is nothing: an application's name
// for want of a better one.
[[nodiscard]] std::string_view lastComponent(std::string_view bundleIdentifier);

}
