#pragma once

#include <filesystem>
#include <optional>
#include <string_view>

namespace brevanta {

// Decides whether the client lies where its content filter can be activated from: directly in the Mac's main
// Applications folder. Pure functions.
namespace AppLocationPolicy {

// Absolute paths without symbolic links.
struct Context {
    std::filesystem::path resolvedBundleURL; // The running application's bundle; empty when it cannot be located.
    std::filesystem::path resolvedSystemApplicationsURL;
    std::optional<bool> volumeIsReadOnly; // The bundle's volume; nothing when it cannot be read.
    std::optional<std::filesystem::path> resolvedUserApplicationsURL; // Nothing when the user has no such folder.

    bool operator==(const Context&) const = default;
};

enum class IneligibleReason {
    translocated, // The system runs the application from a random place, since it was never moved by the user.
    readOnlyVolume, // A disk image, most likely.
    userApplications,
    nestedBundle, // In a folder of the Applications folder.
    elsewhere,
};

// Nothing when the place is right. Paths are compared by their components, after "." and ".." and a slash at the end
// are taken out; an empty folder holds nothing.
[[nodiscard]] std::optional<IneligibleReason> classify(const Context& context);

// What the user is told to do about it, in English.
[[nodiscard]] std::string_view message(IneligibleReason reason);

// The reason's own name, for the log.
[[nodiscard]] std::string_view name(IneligibleReason reason);

}

}
