#pragma once

#include <algorithm>
#include <array>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace brevanta {

// The components that write to the log.
inline constexpr std::array<std::string_view, 23> logTags { "[AppLocation]", "[CrashReporting]", "[DaemonInstall]",
    "[DaemonUpgrade]", "[DeviceSetup]", "[FileInput]", "[FilterManager]", "[KestreluneMac]", "[Launch]", "[LoginItem]",
    "[MainWindow]", "[MediaCapture]", "[MenuBar]", "[NativeMessaging]", "[NotificationHelper]", "[NotificationSounds]",
    "[Removal]", "[ShellLoad]", "[URLScheme]", "[Updater]", "[UserDefaults]", "[WebView]", "[WebViewBridge]" };

// The lines without a tag: the watchdog's, which go to standard error, and those that have a category instead.
inline constexpr std::array<std::string_view, 2> watchdogLines { "auth_token_invalid", "daemon has no credential: " };
inline constexpr std::array<std::string_view, 1> categoryLines { "Web Inspector " };

// What the web engine's own processes write to the same stream when a page is left in the middle of a load.
inline constexpr std::array<std::string_view, 2> engineLines { "ERROR: WebKit encountered an internal error.",
    "Source/WebKit/" };

[[nodiscard]] inline bool beginsWithItsTag(std::string_view line)
{
    return std::ranges::any_of(logTags, [&](std::string_view tag) {
        return line.starts_with(tag) && line.substr(tag.size()).starts_with(' ') && line.size() > tag.size() + 1;
    });
}

[[nodiscard]] inline bool beginsLikeOneOf(std::span<const std::string_view> beginnings, std::string_view line)
{
    return std::ranges::any_of(beginnings, [&](std::string_view beginning) { return line.starts_with(beginning); });
}

[[nodiscard]] inline bool isWatchdogLine(std::string_view line) { return beginsLikeOneOf(watchdogLines, line); }

// The lines of a log that may not stand there: those without a tag, and those that hold one of the secrets. A last line
// without its line feed is still being written, and is only searched for secrets.
[[nodiscard]] inline std::vector<std::string> faultyLines(
    std::string_view log, std::span<const std::string_view> secrets)
{
    std::vector<std::string> faulty;
    while (!log.empty()) {
        const auto end = log.find('\n');
        const auto line = log.substr(0, end);
        const bool isWhole = end != std::string_view::npos;
        const bool holdsSecret = std::ranges::any_of(
            secrets, [&](std::string_view secret) { return line.find(secret) != std::string_view::npos; });
        const bool isExpected = beginsWithItsTag(line) || isWatchdogLine(line) || beginsLikeOneOf(categoryLines, line)
            || beginsLikeOneOf(engineLines, line);
        if (holdsSecret || (isWhole && !isExpected))
            faulty.emplace_back(line);
        log.remove_prefix(isWhole ? end + 1 : log.size());
    }
    return faulty;
}

}
