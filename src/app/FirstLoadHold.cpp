#include "app/FirstLoadHold.h"

#include "platform/MainLoop.h"

#include <utility>

namespace brevanta {

FirstLoadHold::FirstLoadHold(MainLoop& mainLoop, std::function<void(const std::string& reason)> release)
    : m_mainLoop(mainLoop)
    , m_release(std::move(release))
{
}

FirstLoadHold::~FirstLoadHold() = default;

void FirstLoadHold::arm() { feed(LaunchHold::Armed {}); }

void FirstLoadHold::activationSettled(const LaunchActivationOutcome& outcome)
{
    feed(LaunchHold::ActivationSettled { outcome });
}

void FirstLoadHold::feed(const LaunchHold::Event& event)
{
    for (const auto& command : m_hold.reduce(event)) {
        if (const auto* const deadline = std::get_if<LaunchHold::ScheduleDeadline>(&command)) {
            m_deadline = timer(deadline->after, LaunchHold::DeadlineReached {});
        } else if (const auto* const grace = std::get_if<LaunchHold::ScheduleGrace>(&command)) {
            m_grace = timer(grace->after, LaunchHold::GraceElapsed {});
        } else if (const auto* const release = std::get_if<LaunchHold::Release>(&command)) {
            m_deadline.reset();
            m_grace.reset();
            m_release(release->reason);
        }
    }
}

std::unique_ptr<Timer> FirstLoadHold::timer(double after, const LaunchHold::Event& event)
{
    return m_mainLoop.startTimer(after, TimerRepeat::once, [this, event] { feed(event); });
}

}
