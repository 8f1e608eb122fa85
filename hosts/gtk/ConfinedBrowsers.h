#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace brevanta {

// The browsers of Chromium's family that have been used from a Snap or a Flatpak by the user with this home folder,
// such as "Chromium (Snap)". Their sandboxes see neither the launcher nor the other browsers' manifests. By the folders
// that snap(8) and flatpak(1) keep an application's data in. Any thread; a folder that cannot be looked at counts as
// missing.
[[nodiscard]] std::vector<std::string> confinedBrowsers(const std::filesystem::path& home);

}
