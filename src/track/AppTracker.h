#pragma once

#include "base/LifeToken.h"
#include "daemon/BlockingStatus.h"
#include "daemon/StatusConsumer.h"
#include "notify/NoticeCopy.h"
#include "platform/Workspace.h"
#include "track/StopToastArbiter.h"

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

// The client's side of app tracking: tells the user of auto-track sessions that start and stop, and knows what the
// newest status says of applications and which of them run. Main thread only.
class AppTracker final : public StatusConsumer {
public:
    using PostNotice
        = std::function<void(const std::string& title, const std::string& body, const std::string& identifier)>;

    struct Dependencies {
        MainLoop& mainLoop;
        const Clock& clock;
        Workspace& workspace;
        CurrentNoticeCopy copy;
        PostNotice post; // Identifiers are "auto-track-start-" or "auto-track-stop-" and the session's.
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

    // Of the first status that lists sessions nothing is told, since they may have been open for long; one that lists
    // none at all leaves open what was. The newest status's switches count; without them everything is told.
    void consume(const std::shared_ptr<const BlockingStatus>& status) override;
    void serviceFailed(const DaemonFailure&) override { }

    // Of the newest status, also while the service fails.
    [[nodiscard]] AppLists lists() const;

    // The applications of `autoTrackApps` that run, in the order of that list.
    [[nodiscard]] std::vector<std::string> runningAutoTrackApps() const;

private:
    using Sessions = StopToastArbiter::Sessions;

    void sessionsListed(Sessions open);
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
    std::optional<Sessions> m_sessions; // Those last listed, by their identifiers; nothing while none were.
    std::set<RunningApplication> m_running;
    std::unique_ptr<Timer> m_timer; // For the next stop that is held.
    LifeToken m_life;
};

// What stands behind the last point of the identifier, or the identifier where that is nothing: an application's name
// for want of a better one.
[[nodiscard]] std::string_view lastComponent(std::string_view bundleIdentifier);

}
