#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace brevanta {

struct InstallPaths;

// What the scripts that install and remove the blocking service have in common: pieces of sh(1), as pure functions.
namespace ScriptFragments {

inline constexpr std::string_view serviceLabel { "com.brevanta.daemon" };

// What the scripts say on standard error before they give up: sentences for the user, each a line of its own.
inline constexpr std::string_view removalBegan {
    "Brevanta began removing its blocking service from this Mac while the password window was open, so nothing was "
    "reinstalled."
};
inline constexpr std::string_view removalIsUnderWay {
    "Brevanta is still removing its blocking service from this Mac. Try again in a minute."
};
inline constexpr std::string_view didNotStop { "The blocking service did not stop in time. Try again in a minute." };
[[nodiscard]] std::string startWasRefused();

inline constexpr int bootstrapAttempts = 20;
inline constexpr double secondsBetweenAttempts = 0.25;

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
