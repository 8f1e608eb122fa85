#pragma once

#include <compare>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace brevanta {

enum class OpenOutcome { opened, refused };

// What an application bundle says of itself in its information dictionary.
struct ApplicationFacts {
    std::string bundleIdentifier; // CFBundleIdentifier
    std::optional<std::string> displayName; // CFBundleDisplayName
    std::optional<std::string> name; // CFBundleName

    bool operator==(const ApplicationFacts&) const = default;
};

// A running application that the user sees as one; menu-bar helpers and other background programs count as none.
struct RunningApplication {
    std::string bundleIdentifier; // Not empty; several processes may share it.
    std::int32_t processId { 0 };

    auto operator<=>(const RunningApplication&) const = default;
};

enum class ApplicationChange { launched, terminated };

// The desktop around the application. Main thread only.
class Workspace {
public:
    virtual ~Workspace() = default;

    // Opens the URL with the application that the user has for it. `onEnd` is called exactly once on the main thread,
    // after this call has returned; an empty or malformed URL is refused.
    virtual void openUrl(const std::string& url, std::function<void(OpenOutcome)> onEnd) = 0;

    // Shows the folder at this absolute path in the file browser. As `openUrl`; a path that is no folder is refused.
    virtual void openFolder(const std::string& path, std::function<void(OpenOutcome)> onEnd) = 0;

    // The application bundle at this absolute path; nothing when there is none, or it has no identifier.
    [[nodiscard]] virtual std::optional<ApplicationFacts> applicationAt(const std::string& path) const = 0;

    // The icon of the file at this path as a PNG image (RFC 2083) of `pixels` by `pixels`, RGBA on a transparent
    // ground; empty when none can be drawn.
    [[nodiscard]] virtual std::vector<std::uint8_t> iconPng(const std::string& path, int pixels) const = 0;

    // Tells of each application that launches or terminates from now on, on the main thread, never from inside a call
    // of this class, and once `runningApplications` shows it. Takes the place of the handler before; an empty one ends
    // it.
    virtual void setApplicationHandler(
        std::function<void(ApplicationChange change, const RunningApplication& application)> handler)
        = 0;

    // In no order.
    [[nodiscard]] virtual std::vector<RunningApplication> runningApplications() const = 0;

    // The application's name in the user's language, not empty; nothing when no such application is known.
    [[nodiscard]] virtual std::optional<std::string> displayNameOf(const std::string& bundleIdentifier) const = 0;
};

}
