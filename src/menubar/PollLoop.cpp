#include "menubar/PollLoop.h"

#include "daemon/DaemonClient.h"
#include "platform/Clock.h"
#include "platform/MainLoop.h"

#include <nlohmann/json.hpp>

#include <cassert>

namespace brevanta {

PollLoop::PollLoop(MainLoop& mainLoop, Clock& clock, DaemonClient& daemonClient, PollObserver& observer)
    : m_mainLoop(mainLoop)
    , m_clock(clock)
    , m_daemonClient(daemonClient)
    , m_observer(observer)
{
}

PollLoop::~PollLoop() = default;

void PollLoop::start()
{
    tick();
    m_timer = m_mainLoop.startTimer(interval, TimerRepeat::forever, [this] { tick(); });
}

void PollLoop::tick()
{
    assert(m_mainLoop.isMainThread());
    poll(m_clock.continuousSeconds());
    m_observer.ticked();
}

void PollLoop::poll(double now)
{
    if (m_inFlightSince) {
        if (now - *m_inFlightSince > overdueAfter)
            m_observer.pollOverdue();
        return;
    }
    m_inFlightSince = now;
    m_observer.pollBegan();
    m_daemonClient.getStatus(m_observer.filterHealthReport(), m_life.guard([this, now](const PollResult& result) {
        m_inFlightSince.reset();
        m_observer.pollEnded(now, result);
    }));
}

}
