#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace brevanta {

// Where the parts of the blocking service are on this machine. All paths are absolute; `root` stands for "/", and is
// "/" itself on a Mac.
struct InstallPaths {
    std::filesystem::path bundledProgram; // The service's program in the application's bundle.
    std::filesystem::path bundledPropertyList; // Its launch-daemon property list there: launchd.plist(5).
    std::filesystem::path root { "/" };

    // What the script makes below the root, and what the removal of the service goes by.
    [[nodiscard]] std::filesystem::path program() const; // Library/PrivilegedHelperTools/com.brevanta.daemon
    [[nodiscard]] std::filesystem::path propertyList() const; // Library/LaunchDaemons/com.brevanta.daemon.plist
    [[nodiscard]] std::filesystem::path supportFolder() const; // Library/Application Support/Kestrelune
    [[nodiscard]] std::filesystem::path removalLock() const; // …/Kestrelune.removal.lock
    [[nodiscard]] std::filesystem::path removalMarker() const; // …/Kestrelune.removing
    [[nodiscard]] std::filesystem::path lockf() const; // usr/bin/lockf
};

// The shell text that installs, updates or restarts the blocking service when an administrator runs it: sh(1), with
// launchctl(1), lockf(1), xattr(1) and chown(8). It does nothing while the service is being removed. A pure function of
// the paths, which may hold any character but NUL.
[[nodiscard]] std::string installScript(const InstallPaths& paths);

// The text as one word for a shell, in single quotes: sh(1), "Quoting". Any text without NUL.
[[nodiscard]] std::string shellQuoted(std::string_view text);

// An AppleScript that runs the shell text with administrator privileges, and asks for the password with the prompt:
// Technical Note TN2065. Line ends in either text arrive at the shell as they are.
[[nodiscard]] std::string administratorAppleScript(std::string_view shellText, std::string_view prompt);

// The prompt of the password's question.
inline constexpr std::string_view installPrompt {
    "Brevanta needs your password to install or update its blocking service."
};

}
