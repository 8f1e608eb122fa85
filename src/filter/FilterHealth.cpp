#include "filter/FilterHealth.h"

#include "filter/ExtensionRecords.h"

#include <algorithm>

namespace brevanta {

namespace {

template <typename Observation> double timeOf(const Observation& observation)
{
    return std::visit([](const auto& what) { return what.at; }, observation);
}

bool isWithin(double lifetime, double at, double now) { return now - at <= lifetime; }

// Whether what is known of the extension, failures too, is newer than `at`.
bool isOutdated(const FilterHealth& health, double at)
{
    if (!health.properties)
        return false;
    const double newest = timeOf(*health.properties);
    return at < std::max(newest, health.propertiesFailedAt.value_or(newest));
}

FilterStatus statusWithoutRecords(const FilterHealth& health, double now)
{
    const auto isFresh = [now](double at) { return isWithin(FilterHealth::propertiesLifetime, at, now); };
    const auto* const failure
        = health.properties ? std::get_if<FilterHealth::PropertiesFailed>(&*health.properties) : nullptr;
    if ((failure && isFresh(failure->at)) || (health.propertiesFailedAt && isFresh(*health.propertiesFailedAt)))
        return FilterStatus::cantCheck;
    return FilterStatus::checking;
}

FilterStatus statusOfActive(const FilterHealth& health, double now)
{
    if (!health.config || !isWithin(FilterHealth::configLifetime, timeOf(*health.config), now))
        return FilterStatus::checking;
    const auto* const reading = std::get_if<FilterHealth::Enabled>(&*health.config);
    if (!reading)
        return FilterStatus::cantCheck;
    return reading->enabled ? FilterStatus::on : FilterStatus::off;
}

}

std::string_view reportName(FilterStatus status)
{
    switch (status) {
    case FilterStatus::checking:
        return "checking";
    case FilterStatus::cantCheck:
        return "cantCheck";
    case FilterStatus::awaitingApproval:
        return "awaitingApproval";
    case FilterStatus::off:
        return "off";
    case FilterStatus::on:
        break;
    }
    return "on";
}

void FilterHealth::recordProperties(std::vector<ExtensionRecord> records, double at)
{
    if (isOutdated(*this, at))
        return;
    properties = Records { .records = std::move(records), .at = at };
    propertiesFailedAt.reset();
}

void FilterHealth::recordPropertiesFailure(double at, double now)
{
    if (isOutdated(*this, at))
        return;
    if (freshRecords(*this, now)) {
        propertiesFailedAt = at;
        return;
    }
    properties = PropertiesFailed { .at = at };
    propertiesFailedAt.reset();
}

FilterHealth::ExtensionState FilterHealth::extensionState(double now) const
{
    if (requestAwaitingApproval)
        return ExtensionState::awaitingApproval;
    const auto* const fresh = freshRecords(*this, now);
    if (!fresh)
        return ExtensionState::unknown;
    if (std::ranges::any_of(fresh->records, isActive))
        return ExtensionState::active;
    const auto isAwaiting = [](const auto& record) { return record.isAwaitingUserApproval && !record.isUninstalling; };
    return std::ranges::any_of(fresh->records, isAwaiting) ? ExtensionState::awaitingApproval : ExtensionState::absent;
}

FilterStatus FilterHealth::status(double now) const
{
    switch (extensionState(now)) {
    case ExtensionState::awaitingApproval:
        return FilterStatus::awaitingApproval;
    case ExtensionState::absent:
        return FilterStatus::off;
    case ExtensionState::unknown:
        return statusWithoutRecords(*this, now);
    case ExtensionState::active:
        break;
    }
    return statusOfActive(*this, now);
}

std::optional<double> FilterHealth::statusAge(double now) const
{
    if (requestAwaitingApproval)
        return 0;
    const auto state = extensionState(now);
    const auto* const records = lastRecords(*this);
    if (state == ExtensionState::unknown || !records)
        return std::nullopt;
    if (state != ExtensionState::active)
        return std::max(0.0, now - records->at);
    const auto* const reading = config ? std::get_if<Enabled>(&*config) : nullptr;
    if (!reading || !isWithin(configLifetime, reading->at, now))
        return std::nullopt;
    return std::max(0.0, now - std::min(reading->at, records->at));
}

}
