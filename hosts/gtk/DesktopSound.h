#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace brevanta {

// The desktop's own sound for something that arrived; freedesktop's Sound Naming Specification.
constexpr auto themeSoundOfNotifications = "message-new-instant";

// A sound as the desktop's services take it.
struct DesktopSound {
    std::filesystem::path file; // Absolute; empty for the desktop's own sound.

    bool operator==(const DesktopSound&) const = default;
};

// The sound of the name, from the first folder that has it; without a name, or when none has it, the desktop's own. A
// file of the same name that ends in ".wav" is taken first: desktops' sound libraries read WAVE, but not the Mac's
// AIFF.
[[nodiscard]] DesktopSound desktopSound(
    const std::optional<std::string>& name, const std::vector<std::filesystem::path>& folders);

}
