#pragma once

#include "base/Json.h"
#include "filter/FilterHealth.h"

#include <cstdint>
#include <optional>
#include <string>

namespace brevanta {

// The report on the content filter that goes to the service with each status request. Main thread only.
class FilterHealthReportSequence {
public:
    // The next report: an object of "schema", "state", "observed_at_ns" and "sent_at_ns". `now` is in continuous
    // seconds, `rawNanoseconds` is Clock::rawMonotonicNanoseconds. No two reports have the same "sent_at_ns".
    [[nodiscard]] Json next(const FilterHealth& health, double now, std::uint64_t rawNanoseconds);

    // Takes the service's answer; gives the line that the log is to get, if any.
    [[nodiscard]] std::optional<std::string> answered(const std::optional<std::string>& result);

private:
    std::uint64_t m_lastSentAtNanos { 0 };
    std::optional<std::string> m_lastLoggedResult;
};

}
