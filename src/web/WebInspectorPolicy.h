#pragma once

#include <optional>

namespace brevanta {

// Whether the web inspector is on: a stored date switches it on until then, for seven days at most. Pure functions.
struct WebInspectorPolicy {
    struct Decision {
        std::optional<double> onUntil; // Seconds since 1970; absent when the inspector is off.
        bool deleteKey { false }; // What is stored is not valid, and is to be removed.

        bool operator==(const Decision&) const = default;
    };

    // What is stored under the inspector's key. `date` is in seconds since 1970.
    struct Stored {
        enum class Kind { nothing, date, somethingElse };

        Kind kind { Kind::nothing };
        double date { 0 };
    };

    static constexpr double longest = 604'800; // Seven days, in seconds: a switch left on for good would be forgotten.

    [[nodiscard]] static Decision decide(const Stored& stored, double now);
};

}
