#pragma once

#include "base/JsonReader.h"

#include <cstdint>
#include <optional>
#include <string>

namespace brevanta {

// How far the removal of the blocking service has come, as the service reports it.
struct RemovalSnapshot {
    enum class State { none, pending, committed, finishing };

    State state { State::none };
    std::optional<std::string> origin; // "in_app" or "app_missing".
    std::optional<double> expiresAt; // Seconds since 1970.
    std::optional<std::int64_t> actionId; // At least 0 and below 2^53.
    std::optional<std::string> queueError; // One of the known words; an unknown one reads "unavailable".
    bool requesting { false };
    std::optional<std::string> account; // 1 to 32 decimal digits.
    std::string launch; // Names one run of the service: 1 to 64 characters.
    std::uint64_t launchOrder { 0 }; // At least 1 and below 2^53, as `seq`.
    std::uint64_t seq { 0 };
    std::optional<double> finishingBy; // Seconds since 1970.
    bool blockingOff { false };

    bool operator==(const RemovalSnapshot&) const = default;

    // Nothing when the value is no object or breaks a rule of state, launch, launch order or seq; any other key that
    // breaks its rule is as if it were absent.
    [[nodiscard]] static std::optional<RemovalSnapshot> decode(json::Element element);
};

// The "removal" key of a reply. Whatever stands there, it never fails the reply around it.
struct RemovalStatusField {
    std::optional<RemovalSnapshot> snapshot;

    bool operator==(const RemovalStatusField&) const = default;

    [[nodiscard]] static RemovalStatusField decode(json::Object reply);
};

// Whether the text may name an account: 1 to 32 ASCII decimal digits.
[[nodiscard]] bool isRemovalAccount(std::string_view text);

}
