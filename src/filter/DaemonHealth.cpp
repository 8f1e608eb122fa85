#include "filter/DaemonHealth.h"

#include <algorithm>

namespace brevanta {

namespace {

double startOf(const DaemonHealth::LastEvent& event)
{
    return std::visit([](const auto& poll) { return poll.requestStartedAt; }, event);
}

DaemonHealth::State stopped(const DaemonHealth& health)
{
    if (health.backgroundItemRequiresApproval)
        return DaemonHealth::TurnedOffInSettings {};
    return DaemonHealth::NotRunning {};
}

DaemonHealth::State neverPolled(const DaemonHealth& health)
{
    switch (health.launchCheck.value_or(LaunchCheck::loaded)) {
    case LaunchCheck::notInstalled:
        return DaemonHealth::NotInstalled {};
    case LaunchCheck::notRunning:
        return stopped(health);
    case LaunchCheck::loaded:
        break;
    }
    return DaemonHealth::Checking {};
}

DaemonHealth::State failed(const DaemonHealth& health, const DaemonHealth::Failure& failure)
{
    if (failure.kind == DaemonHealth::PollFailure::badReply)
        return DaemonHealth::Unreachable {};
    return failure.binaryInstalled ? stopped(health) : DaemonHealth::NotInstalled {};
}

}

DaemonHealth::PollFailure DaemonHealth::kindOf(const DaemonFailure& failure)
{
    const auto* const error = std::get_if<DaemonError>(&failure);
    return error && error->kind == DaemonError::Kind::connectionFailed ? PollFailure::notListening
                                                                       : PollFailure::badReply;
}

void DaemonHealth::recordSuccess(const std::optional<std::string>& version, double requestStartedAt)
{
    if (!lastEvent || startOf(*lastEvent) <= requestStartedAt)
        lastEvent = Success { .requestStartedAt = requestStartedAt, .version = version };
    latestSuccessRequestStartedAt = std::max(latestSuccessRequestStartedAt, requestStartedAt);
    // The service answers, so the user lets it run.
    if (backgroundItemReadStartedAt <= requestStartedAt)
        backgroundItemRequiresApproval = false;
}

void DaemonHealth::recordFailure(PollFailure kind, bool binaryInstalled, double requestStartedAt)
{
    if (!lastEvent || startOf(*lastEvent) <= requestStartedAt)
        lastEvent = Failure { .kind = kind, .binaryInstalled = binaryInstalled, .requestStartedAt = requestStartedAt };
}

void DaemonHealth::recordBackgroundItem(BackgroundItem item, double readStartedAt)
{
    if (item == BackgroundItem::unknown
        || readStartedAt < std::max(backgroundItemReadStartedAt, latestSuccessRequestStartedAt))
        return;
    backgroundItemRequiresApproval = item == BackgroundItem::requiresApproval;
    backgroundItemReadStartedAt = readStartedAt;
}

bool DaemonHealth::isInGrace(double now) const { return graceStartedAt && now < *graceStartedAt + gracePeriod; }

DaemonHealth::State DaemonHealth::state(double now) const
{
    if (installInFlight)
        return Starting {};
    const auto* const success = lastEvent ? std::get_if<Success>(&*lastEvent) : nullptr;
    // A reply to a request that was made before the grace began is the old service's.
    if (isInGrace(now) && (!success || success->requestStartedAt < *graceStartedAt))
        return Starting {};
    if (!lastEvent)
        return neverPolled(*this);
    if (!success)
        return failed(*this, std::get<Failure>(*lastEvent));
    if (now - success->requestStartedAt <= successLifetime) {
        return Running {
            .version = success->version,
            .upgrade = DaemonUpgradePolicy::decide(success->version, bundledVersion),
        };
    }
    return Checking {};
}

}
