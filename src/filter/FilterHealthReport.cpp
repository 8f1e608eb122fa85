#include "filter/FilterHealthReport.h"

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>

namespace brevanta {

namespace {

// `age` seconds before `now`, in nanoseconds; 0 when that is before the clock began.
std::uint64_t before(std::uint64_t now, double age)
{
    const double nanoseconds = std::round(age * 1e9);
    constexpr double limit = 18'446'744'073'709'551'616.0; // The first that the conversion does not hold.
    if (nanoseconds >= limit)
        return 0;
    return now - std::min(now, static_cast<std::uint64_t>(nanoseconds));
}

}

Json FilterHealthReportSequence::next(const FilterHealth& health, double now, std::uint64_t rawNanoseconds)
{
    const auto age = health.statusAge(now);
    m_lastSentAtNanos = std::max(m_lastSentAtNanos + 1, rawNanoseconds);
    return {
        { "schema", 1 },
        { "state", reportName(age ? health.status(now) : FilterStatus::cantCheck) },
        { "observed_at_ns", before(rawNanoseconds, age.value_or(0)) },
        { "sent_at_ns", m_lastSentAtNanos },
    };
}

std::optional<std::string> FilterHealthReportSequence::answered(const std::optional<std::string>& result)
{
    if (!result || result == m_lastLoggedResult)
        return std::nullopt;
    if (*result == "accepted") {
        m_lastLoggedResult.reset();
        return std::nullopt;
    }
    m_lastLoggedResult = result;
    return "[DeviceSetup] daemon answered the filter report: " + *result;
}

}
