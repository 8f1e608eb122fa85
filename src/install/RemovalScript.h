#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace brevanta {

struct InstallPaths;

// Which removal it is that an administrator finishes, in the service's own words.
struct RemovalHandover {
    std::optional<std::string> account; // 1 to 32 decimal digits.
    std::optional<std::int64_t> actionId;
    std::string launch; // Any text.

    bool operator==(const RemovalHandover&) const = default;
};

// The shell text that finishes a removal of the blocking service when an administrator runs it, with the same programs
// and under the same lock as the install script. It leaves the removal marker and the hand-over, stops the service, and
// removes what an install has placed; the native-messaging launcher stays. A service that does not stop stays whole,
// and the marker is taken back. A pure function; the paths may hold any character but NUL.
[[nodiscard]] std::string removalScript(const InstallPaths& paths, const RemovalHandover& handover);

// The prompt of the password's question.
inline constexpr std::string_view removalPrompt {
    "Brevanta needs your password to finish removing its blocking service."
};

}
