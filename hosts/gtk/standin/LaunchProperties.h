#pragma once

#include <expected>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace brevanta {

// What of a property list of a launch daemon matters here: launchd.plist(5).
struct LaunchProperties {
    std::string label;
    std::vector<std::string> programArguments; // The program itself is the first.

    bool operator==(const LaunchProperties&) const = default;
};

// Of an XML property list. The error is EINVAL for what is no such list, or lacks one of the two.
[[nodiscard]] std::expected<LaunchProperties, int> parseLaunchProperties(std::string_view xml);

// The same of a regular file of at most 1 MiB; the error is an errno value.
[[nodiscard]] std::expected<LaunchProperties, int> readLaunchProperties(const std::filesystem::path& file);

}
