#pragma once

#include "platform/ServiceManager.h"

#include <filesystem>
#include <optional>

namespace brevanta {

// Where the blocking service's program lies; `root` stands for "/".
[[nodiscard]] std::filesystem::path serviceProgram(const std::filesystem::path& root);

// Whether it is there as a regular file, or a link to one: one stat(2). What cannot be looked at is not there.
[[nodiscard]] bool isServiceProgramInstalled(const std::filesystem::path& root);

enum class LaunchdAnswer { loaded, notLoaded, unknown };

// launchd's answer together with the program file; nothing when launchd did not say.
[[nodiscard]] std::optional<LaunchCheck> launchCheck(LaunchdAnswer answer, const std::filesystem::path& root);

}
