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

    // A poll whose exchange began at `startedAt`, in continuous seconds, has ended; or it has gone on for so long that
    // it counts as failed, which is said at each tick until it does end.
    virtual void pollEnded(double startedAt, const PollResult& result) = 0;
};

// Asks the service for its status at once and then every two seconds. Only one request is under way at a time: a tick
// that finds one is skipped. Main thread only.
class PollLoop {
public:
    static constexpr double interval = 2.0;

    // Seconds that an exchange may take, its wait for its turn and a sleep of the machine left out. A service that is
    // silent is given up after 5 seconds, so only one that keeps trickling takes longer than this.
    static constexpr double overdueAfter = 10.0;

    PollLoop(MainLoop& mainLoop, Clock& clock, DaemonClient& daemonClient, PollObserver& observer);
    ~PollLoop();

    void start();

private:
    struct Exchange {
        double startedAt; // In continuous seconds.
        double startedAtUptime;
    };

    void tick();
    void poll();

    MainLoop& m_mainLoop;
    Clock& m_clock;
    DaemonClient& m_daemonClient;
    PollObserver& m_observer;
    bool m_isInFlight { false };
    std::optional<Exchange> m_exchange; // Of the poll that is in flight, once its turn has come.
    std::unique_ptr<Timer> m_timer;
    LifeToken m_life;
};

}
