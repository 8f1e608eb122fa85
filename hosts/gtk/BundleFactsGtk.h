#pragma once

#include "app/AppLocationPolicy.h"
#include "app/BuildConfiguration.h"
#include "filter/SystemSettings.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace brevanta {

// Where everything of the bench is, and what the bundle and the system say of themselves. Nothing here needs a display.

// Of the running program.
[[nodiscard]] std::filesystem::path executablePath();

// The Contents folder of the bundle that the program runs from.
[[nodiscard]] std::filesystem::path bundleContents();

[[nodiscard]] std::optional<std::string> environmentVariable(const char* name);

// The configuration of this build, with the dev flavour's overrides from the environment.
[[nodiscard]] BuildConfiguration configurationOfBundle();

// The text under this key of the bundle's information dictionary; nothing where there is none, or another kind of
// value. Reads the file.
[[nodiscard]] std::optional<std::string> textInBundle(std::string_view key);

// The user's own folder, or what stands for it below the development root.
[[nodiscard]] std::filesystem::path homeFolder(const BuildConfiguration& configuration);

// Where the Mac keeps a user's preferences.
[[nodiscard]] std::filesystem::path preferencesFile(const BuildConfiguration& configuration);

// The folder of what starts at login.
[[nodiscard]] std::filesystem::path autostartFolder(const BuildConfiguration& configuration);

[[nodiscard]] AppLocationPolicy::Context location(const BuildConfiguration& configuration);

// As the Mac's own file states it; a root without one is as new as can be.
[[nodiscard]] SystemVersion systemVersion(const BuildConfiguration& configuration);

// The group's container, at the place that a Mac has it.
[[nodiscard]] std::filesystem::path sharedContainer(const std::filesystem::path& home);

// As the user's locale settings give them, the preferred one first.
[[nodiscard]] std::vector<std::string> systemLanguages();

}
