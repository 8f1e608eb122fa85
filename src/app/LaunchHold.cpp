#include "app/LaunchHold.h"

#include "base/Text.h"

namespace brevanta {

std::vector<LaunchHold::Command> LaunchHold::reduce(const Event& event)
{
    if (std::holds_alternative<Armed>(event)) {
        if (m_phase != Phase::idle)
            return {};
        m_phase = Phase::waiting;
        return { ScheduleDeadline { deadline } };
    }
    if (const auto* settling = std::get_if<ActivationSettled>(&event))
        return settled(settling->outcome);
    if (std::holds_alternative<GraceElapsed>(event)) {
        if (m_phase != Phase::inGrace)
            return {};
        return release("released (filter activation settled + " + formatFixed(replaceGrace, 1) + "s replace grace)");
    }
    if (m_phase != Phase::waiting && m_phase != Phase::inGrace)
        return {};
    return release("released (deadline)");
}

std::vector<LaunchHold::Command> LaunchHold::settled(const LaunchActivationOutcome& outcome)
{
    if (m_phase != Phase::waiting)
        return {};
    if (!outcome.replaced)
        return release("released (filter activation settled)");
    m_phase = Phase::inGrace;
    return { ScheduleGrace { replaceGrace } };
}

std::vector<LaunchHold::Command> LaunchHold::release(std::string reason)
{
    m_phase = Phase::released;
    return { Release { std::move(reason) } };
}

}
