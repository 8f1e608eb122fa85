#include "filter/ExtensionRecords.h"

#include "install/Version.h"

namespace brevanta {

namespace {

std::partial_ordering compare(const std::optional<std::string>& left, const std::optional<std::string>& right)
{
    const auto leftVersion = left ? Version::parse(*left) : std::nullopt;
    const auto rightVersion = right ? Version::parse(*right) : std::nullopt;
    if (!leftVersion || !rightVersion)
        return std::partial_ordering::unordered;
    return *leftVersion <=> *rightVersion;
}

}

std::partial_ordering compareVersions(const ExtensionRecord& left, const ExtensionRecord& right)
{
    const auto order = compare(left.shortVersion, right.shortVersion);
    return std::is_eq(order) ? compare(left.buildVersion, right.buildVersion) : order;
}

bool isActive(const ExtensionRecord& record)
{
    return record.isEnabled && !record.isAwaitingUserApproval && !record.isUninstalling;
}

const FilterHealth::Records* lastRecords(const FilterHealth& health)
{
    return health.properties ? std::get_if<FilterHealth::Records>(&*health.properties) : nullptr;
}

const FilterHealth::Records* freshRecords(const FilterHealth& health, double now)
{
    const auto* const records = lastRecords(health);
    return records && now - records->at <= FilterHealth::propertiesLifetime ? records : nullptr;
}

}
