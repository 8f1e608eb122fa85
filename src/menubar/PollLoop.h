#pragma once

#include "base/Json.h"
#include "base/LifeToken.h"
#include "daemon/DaemonFailure.h"

#include <expected>
#include <memory>
#include <optional>

namespace brevanta {

class Clock;
class DaemonClient;
class MainLoop;
class Timer;
struct BlockingStatus;

using PollResult = std::expected<std::shared_ptr<const BlockingStatus>, DaemonFailure>;

// Main thread only.
class PollObserver {
public:
    virtual ~PollObserver() = default;

    // A poll is about to begin.
    virtual void pollBegan() = 0;

    // What the next request carries.
    [[nodiscard]] virtual std::optional<Json> filterHealthReport() = 0;

    // The poll of this tick has been begun, or skipped because one is under way.
    virtual void ticked() = 0;

    // A poll that began at `startedAt`, in continuous seconds, has ended.
    virtual void pollEnded(double startedAt, const PollResult& result) = 0;

    // A poll has gone on for so long that what is shown can no longer be trusted. Said at each tick until it ends.
    virtual void pollOverdue() = 0;
};

// Asks the service for its status at once and then every two seconds. Only one request is under way at a time: a tick
// that finds one is skipped. Main thread only.
class PollLoop {
public:
    static constexpr double interval = 2.0;

    // A service that is silent is given up after 5 seconds, so only one that keeps trickling takes longer than this.
    static constexpr double overdueAfter = 10.0;

    PollLoop(MainLoop& mainLoop, Clock& clock, DaemonClient& daemonClient, PollObserver& observer);
    ~PollLoop();

    void start();

private:
    void tick();
    void poll(double now);

    MainLoop& m_mainLoop;
    Clock& m_clock;
    DaemonClient& m_daemonClient;
    PollObserver& m_observer;
    std::optional<double> m_inFlightSince;
    std::unique_ptr<Timer> m_timer;
    LifeToken m_life;
};

}
