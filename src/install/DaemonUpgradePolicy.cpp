#include "install/DaemonUpgradePolicy.h"

#include "install/Version.h"

namespace brevanta::DaemonUpgradePolicy {

namespace {

constexpr const char* runningTitle = "✓ Blocking Service";

struct Description {
    std::string operator()(const Current& current) const { return "daemon " + current.installed + " is current"; }
    std::string operator()(const Upgrade& upgrade) const
    {
        return "daemon " + upgrade.installed.value_or("pre-6151 (no version)") + " is older than the bundled "
            + upgrade.bundled + ": offering the admin-prompt reinstall";
    }
    std::string operator()(const NewerInstalled& newer) const
    {
        return "daemon " + newer.installed + " is newer than the bundled " + newer.bundled + ": leaving it alone";
    }
    std::string operator()(const Unknown& unknown) const
    {
        return "cannot compare daemon '" + unknown.installed + "' with bundled '" + unknown.bundled
            + "': leaving it alone";
    }
};

struct MenuTitle {
    std::string operator()(const Current& current) const { return runningTitle + (" " + current.installed); }
    std::string operator()(const Upgrade& upgrade) const
    {
        return "⚠ Update Blocking Service to " + upgrade.bundled + "…";
    }
    std::string operator()(const NewerInstalled& newer) const { return runningTitle + (" " + newer.installed); }
    std::string operator()(const Unknown&) const { return runningTitle; }
};

}

Decision decide(const std::optional<std::string>& installed, std::string_view bundled)
{
    const auto bundledVersion = Version::parse(bundled);
    const auto installedVersion = installed ? Version::parse(*installed) : std::nullopt;
    if (!bundledVersion || (installed && !installedVersion))
        return Unknown { .installed = installed.value_or(""), .bundled = std::string(bundled) };

    // What is a version is shown to the user, and in one line.
    const std::string bundledText(withoutSurroundingSpace(bundled));
    if (!installed)
        return Upgrade { .installed = std::nullopt, .bundled = bundledText };
    const std::string installedText(withoutSurroundingSpace(*installed));
    if (*installedVersion < *bundledVersion)
        return Upgrade { .installed = installedText, .bundled = bundledText };
    if (*bundledVersion < *installedVersion)
        return NewerInstalled { .installed = installedText, .bundled = bundledText };
    return Current { .installed = installedText };
}

std::string describe(const Decision& decision) { return "[DaemonUpgrade] " + std::visit(Description {}, decision); }

std::string menuTitle(const Decision& decision) { return std::visit(MenuTitle {}, decision); }

std::string promptText(const Upgrade& upgrade)
{
    return "Brevanta " + upgrade.bundled + " is installed, but the blocking service on this Mac is "
        + (upgrade.installed ? "still version " + *upgrade.installed : "an older version")
        + ". Updating it takes a few seconds and asks for your administrator password.";
}

}
