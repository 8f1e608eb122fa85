#pragma once

#include "platform/FilterSystem.h"

#include <optional>
#include <string_view>
#include <variant>
#include <vector>

namespace brevanta {

enum class FilterStatus { checking, cantCheck, awaitingApproval, off, on };

// The name that the status has in the report to the service.
[[nodiscard]] std::string_view reportName(FilterStatus status);

// What was seen of the content filter, with the times at which it was, and the verdict that follows. A value; all times
// are seconds of Clock::continuousSeconds.
struct FilterHealth {
    struct Records {
        std::vector<ExtensionRecord> records;
        double at;
        bool operator==(const Records&) const = default;
    };
    struct PropertiesFailed {
        double at;
        bool operator==(const PropertiesFailed&) const = default;
    };
    using PropertiesObservation = std::variant<Records, PropertiesFailed>;

    struct Enabled {
        bool enabled;
        double at;
        bool operator==(const Enabled&) const = default;
    };
    struct ConfigFailed {
        double at;
        bool operator==(const ConfigFailed&) const = default;
    };
    using ConfigObservation = std::variant<Enabled, ConfigFailed>;

    enum class ExtensionState { active, awaitingApproval, absent, unknown };

    static constexpr double propertiesLifetime = 300; // Seconds for which an answer, or its failure, is believed.
    static constexpr double configLifetime = 10;

    std::optional<PropertiesObservation> properties;
    std::optional<double> propertiesFailedAt; // A failure that came while fresh records were kept.
    std::optional<ConfigObservation> config;
    bool requestAwaitingApproval { false }; // Our own request waits for the user.

    // Answers may come in another order than they were asked for: an older one is dropped.
    void recordProperties(std::vector<ExtensionRecord> records, double at);
    void recordPropertiesFailure(double at, double now);

    [[nodiscard]] ExtensionState extensionState(double now) const;
    [[nodiscard]] FilterStatus status(double now) const;

    // How old, in seconds, the observations are from which the status follows; nothing when it follows from none.
    [[nodiscard]] std::optional<double> statusAge(double now) const;

    bool operator==(const FilterHealth&) const = default;
};

}
