#pragma once

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
};

}
