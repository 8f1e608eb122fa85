#include "filter/SystemSettings.h"

namespace brevanta {

namespace {

constexpr int firstWithExtensionsSettings = 15;
constexpr int firstWithSystemSettings = 13; // Before it the panes were those of System Preferences.

constexpr const char* networkExtensionsPane = "x-apple.systempreferences:com.apple.ExtensionsPreferences"
                                              "?extensionPointIdentifier="
                                              "com.apple.system_extension.network_extension.extension-point";

const char* securityPane(const SystemVersion& version)
{
    return version.major >= firstWithSystemSettings
        ? "x-apple.systempreferences:com.apple.settings.PrivacySecurity.extension"
        : "x-apple.systempreferences:com.apple.preference.security";
}

}

std::string versionText(const SystemVersion& version)
{
    return std::to_string(version.major) + '.' + std::to_string(version.minor) + '.' + std::to_string(version.patch);
}

FilterApprovalPanes filterApprovalPanes(const SystemVersion& version)
{
    if (version.major >= firstWithExtensionsSettings) {
        return {
            .first = networkExtensionsPane,
            .fallback = securityPane(version),
            .manualPath = "Open System Settings yourself: General, then Login Items & Extensions, then Network "
                          "Extensions, and turn on Brevanta Filter.",
        };
    }
    return {
        .first = securityPane(version),
        .fallback = networkExtensionsPane,
        .manualPath = "Open System Settings yourself: Privacy & Security, then click Allow next to the blocked system "
                      "software from Brevanta.",
    };
}

std::string loginItemsManualPath(const SystemVersion& version)
{
    const std::string pane = version.major >= firstWithExtensionsSettings ? "Login Items & Extensions" : "Login Items";
    return "Open System Settings yourself: General, then " + pane + ", and allow Brevanta to run in the background.";
}

}
