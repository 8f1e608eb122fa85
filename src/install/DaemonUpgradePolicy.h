#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace brevanta {

// Decides whether the blocking service on this computer is to be replaced by the one in the application.
namespace DaemonUpgradePolicy {

struct Current {
    std::string installed;
    bool operator==(const Current&) const = default;
};
struct Upgrade {
    std::optional<std::string> installed; // Nothing: a service from before versions were reported.
    std::string bundled;
    bool operator==(const Upgrade&) const = default;
};
struct NewerInstalled {
    std::string installed;
    std::string bundled;
    bool operator==(const NewerInstalled&) const = default;
};
// They cannot be compared.
struct Unknown {
    std::string installed; // Empty when none was reported.
    std::string bundled;
    bool operator==(const Unknown&) const = default;
};

using Decision = std::variant<Current, Upgrade, NewerInstalled, Unknown>;

// Versions are digits separated by dots, white space around them aside, and missing parts count as 0; a text with
// anything else, or with a part above the largest 64-bit signed integer, is no version.
[[nodiscard]] Decision decide(const std::optional<std::string>& installed, std::string_view bundled);

// For the log, with its tag.
[[nodiscard]] std::string describe(const Decision& decision);

// The menu's line for a service that runs.
[[nodiscard]] std::string menuTitle(const Decision& decision);

// What the offer to update says.
[[nodiscard]] std::string promptText(const Upgrade& upgrade);

}

}
