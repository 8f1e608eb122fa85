#include "menubar/PollLoop.h"

#include "daemon/DaemonClient.h"
#include "platform/Clock.h"
#include "platform/MainLoop.h"

#include <nlohmann/json.hpp>

#include <cassert>
#include <utility>

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
    poll();
    m_observer.ticked();
}

void PollLoop::poll()
{
    if (m_isInFlight) {
        if (m_exchange && m_clock.uptimeSeconds() - m_exchange->startedAtUptime > overdueAfter)
            m_observer.pollEnded(
                m_exchange->startedAt, std::unexpected(JsonParseError { "it has not ended after ten seconds" }));
        return;
    }
    m_isInFlight = true;
    m_observer.pollBegan();
    m_daemonClient.getStatus(m_observer.filterHealthReport(), m_life.guard([this](const PollResult& result) {
        m_isInFlight = false;
        const auto exchange = std::exchange(m_exchange, std::nullopt);
        m_observer.pollEnded(exchange->startedAt, result);
    }),
        m_life.guard([this] {
            m_exchange
                = Exchange { .startedAt = m_clock.continuousSeconds(), .startedAtUptime = m_clock.uptimeSeconds() };
        }));
}

}
