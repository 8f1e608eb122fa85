#pragma once

#include <string>
#include <string_view>

namespace brevanta {

// A release of macOS, as NSProcessInfo.operatingSystemVersion gives it.
struct SystemVersion {
    int major { 0 };
    int minor { 0 };
    int patch { 0 };

    bool operator==(const SystemVersion&) const = default;
};

[[nodiscard]] std::string versionText(const SystemVersion& version); // "15.0.0"

// Where the user allows the content filter: URLs for the workspace to open, and the way there in words.
struct FilterApprovalPanes {
    std::string first;
    std::string fallback; // For when the first does not open.
    std::string manualPath; // For when neither does: a sentence for the user.

    bool operator==(const FilterApprovalPanes&) const = default;
};

// macOS 15 moved the approval to Login Items & Extensions: "Change Login Items & Extensions settings on Mac" of Apple's
// macOS User Guide. A pure function.
[[nodiscard]] FilterApprovalPanes filterApprovalPanes(const SystemVersion& version);

// Where the user lets the blocking service run in the background; the way there in words is a sentence for the user.
inline constexpr std::string_view loginItemsPane = "x-apple.systempreferences:com.apple.LoginItems-Settings.extension";
[[nodiscard]] std::string loginItemsManualPath(const SystemVersion& version);

}
