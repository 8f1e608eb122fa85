#include "filter/OffNoticeTracker.h"

#include "platform/SystemLog.h"
#include "platform/UserDefaults.h"

namespace brevanta {

namespace {

std::string keyOf(ProtectiveComponent component)
{
    return "pf.lastConclusive." + std::string(componentName(component));
}

bool isOurDoing(const DaemonHealth& service, bool upgradeHeld, double now)
{
    return upgradeHeld || service.installInFlight || service.isInGrace(now);
}

std::optional<ConclusiveState> conclusiveState(const DaemonHealth::State& state)
{
    if (std::holds_alternative<DaemonHealth::Running>(state))
        return ConclusiveState::on;
    if (std::holds_alternative<DaemonHealth::TurnedOffInSettings>(state))
        return ConclusiveState::off;
    return std::nullopt;
}

std::optional<ConclusiveState> conclusiveState(FilterStatus status)
{
    if (status == FilterStatus::on)
        return ConclusiveState::on;
    if (status == FilterStatus::off)
        return ConclusiveState::off;
    return std::nullopt;
}

}

std::string_view componentName(ProtectiveComponent component)
{
    return component == ProtectiveComponent::blockingService ? "blockingService" : "contentFilter";
}

std::string_view stateName(ConclusiveState state) { return state == ConclusiveState::on ? "on" : "off"; }

std::optional<ConclusiveState> lastConclusive(const UserDefaults& defaults, ProtectiveComponent component)
{
    const auto stored = defaults.get(keyOf(component));
    const auto* const text = stored ? std::get_if<std::string>(&*stored) : nullptr;
    for (const auto state : { ConclusiveState::on, ConclusiveState::off }) {
        if (text && *text == stateName(state))
            return state;
    }
    return std::nullopt;
}

ConclusiveReading conclusiveReading(const DaemonHealth& health, bool upgradeHeld, double now)
{
    return { .state = conclusiveState(health.state(now)), .selfCaused = isOurDoing(health, upgradeHeld, now) };
}

ConclusiveReading conclusiveReading(
    const FilterHealth& filter, const DaemonHealth& service, bool upgradeHeld, double now)
{
    // A filter that goes along with a service that was removed was not switched off behind our back.
    const bool serviceGone = std::holds_alternative<DaemonHealth::NotInstalled>(service.state(now));
    return {
        .state = conclusiveState(filter.status(now)),
        .selfCaused = serviceGone || isOurDoing(service, upgradeHeld, now),
    };
}

OffNoticeTracker::OffNoticeTracker(
    UserDefaults& defaults, SystemLog& log, std::function<void(ProtectiveComponent, std::int64_t)> post)
    : m_defaults(defaults)
    , m_log(log)
    , m_post(std::move(post))
{
}

void OffNoticeTracker::update(ProtectiveComponent component, const ConclusiveReading& reading)
{
    const auto before = lastConclusive(m_defaults, component);
    if (!reading.state || reading.state == before)
        return;
    m_defaults.set(keyOf(component), std::string(stateName(*reading.state)));
    const auto generation = ++m_generations[component];
    // What was never seen on may have been off all along.
    if (before != ConclusiveState::on || reading.selfCaused)
        return;
    m_log.log("[DeviceSetup] " + std::string(componentName(component)) + " switched off: posting the notice");
    m_post(component, generation);
}

std::int64_t OffNoticeTracker::generation(ProtectiveComponent component) const
{
    const auto found = m_generations.find(component);
    return found == m_generations.end() ? 0 : found->second;
}

}
