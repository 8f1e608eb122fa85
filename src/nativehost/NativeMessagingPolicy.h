#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

namespace brevanta {

// What leads the browsers of Chromium's family to the host that the browser extension talks to: a launcher, which they
// start, and in each one's folder a manifest that names the launcher. Pure; all paths are absolute, without NUL. The
// facts of the protocol are those of developer.chrome.com, "Native messaging".
namespace NativeMessagingPolicy {

enum class Mode { dev, prod };

struct Launcher {
    std::filesystem::path serviceMarker; // There, if only as a dangling link, while the blocking service is installed.
    std::filesystem::path host; // The program that answers while it is.
    std::filesystem::path markerFolder; // Unless this can be read, a marker that is not there proves nothing.
    Mode mode { Mode::prod };
    int sleepSeconds { 0 }; // How long the launcher stays when it has no host to become.
};

struct Browser {
    std::string_view name;
    std::string_view folder; // Its own, below Library/Application Support of the home folder.
};

inline constexpr std::array<Browser, 5> browsers { {
    { .name = "Google Chrome", .folder = "Google/Chrome" },
    { .name = "Chromium", .folder = "Chromium" },
    { .name = "Brave", .folder = "BraveSoftware/Brave-Browser" },
    { .name = "Microsoft Edge", .folder = "Microsoft Edge" },
    { .name = "Arc", .folder = "Arc/User Data" },
} };

// One JSON object: the blocking service is unavailable, and nothing is to be blocked.
inline constexpr std::string_view fallbackReply {
    R"({"autoTrackDomains":[],"blockReason":null,"blockedDomains":[],"daemonUnavailable":true,"endpoints":[],)"
    R"("meteredProxyPort":null,"shouldBlock":false,"stoppedDomains":[],"webConfigAvailable":false,)"
    R"("webMeteringOwner":null})"
};

// The launcher of an application whose bundle is at `bundle`, where `root` stands for "/".
[[nodiscard]] Launcher launcherFor(const std::filesystem::path& root, const std::filesystem::path& bundle, Mode mode);
[[nodiscard]] std::filesystem::path launcherFile(const std::filesystem::path& root);

// A script for sh(1). With a marker that is there it becomes the host, with the arguments that the browser gave; where
// there is none, it writes the fallback reply as one message. It sleeps when it cannot do either, and after the reply.
[[nodiscard]] std::string launcherText(const Launcher& launcher);

// The length of a message as it goes ahead of it, 32 bits in this machine's order of bytes, in octal escapes for
// printf(1).
[[nodiscard]] std::string lengthPrefix(std::uint32_t length);

[[nodiscard]] std::filesystem::path browserFolder(const Browser& browser, const std::filesystem::path& home);
[[nodiscard]] std::filesystem::path manifestFile(const Browser& browser, const std::filesystem::path& home);

// One JSON object on one line. The path must be UTF-8 for browsers to read it.
[[nodiscard]] std::string manifestText(const std::filesystem::path& launcher);

}

}
