#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace brevanta {

struct InstallPaths;

// What the scripts that install and remove the blocking service have in common: pieces of sh(1), as pure functions.
namespace ScriptFragments {

inline constexpr std::string_view serviceLabel { "com.brevanta.daemon" };

[[nodiscard]] std::string quoted(const std::filesystem::path& path);

[[nodiscard]] std::string toStandardError(std::string_view message);

// Succeeds, whether the service of this label was there or not.
[[nodiscard]] std::string bootOut(std::string_view label);

// Boots the blocking service out and waits, ten seconds at most, until launchd has forgotten it.
[[nodiscard]] std::string stopService();

// Behind stopService: succeeds if launchd has not forgotten it.
[[nodiscard]] std::string serviceHasNotStopped();

// Succeeds if the removal marker is there.
[[nodiscard]] std::string removalMarkerIsThere(const InstallPaths& paths);

// Runs the script under the removal lock, for which it waits two minutes at most; then it says that a removal is still
// under way, and ends with lockf's status 75.
[[nodiscard]] std::string underRemovalLock(const InstallPaths& paths, std::string_view script);

}

}
