#pragma once

#include <algorithm>
#include <array>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace brevanta {

// The components that write to the log.
inline constexpr std::array<std::string_view, 24> logTags { "[AppLocation]", "[CrashReporting]", "[DaemonInstall]",
    "[DaemonUpgrade]", "[DeviceSetup]", "[FileInput]", "[FilterManager]", "[KestreluneMac]", "[Launch]", "[LoginItem]",
    "[MainWindow]", "[MediaCapture]", "[MenuBar]", "[NativeMessaging]", "[NotificationHelper]", "[NotificationSounds]",
    "[Removal]", "[ShellLoad]", "[URLScheme]", "[Updater]", "[UserDefaults]", "[WebInspector]", "[WebView]",
    "[WebViewBridge]" };

// The watchdog's lines, which go to standard error without a tag.
inline constexpr std::array<std::string_view, 2> watchdogLines { "auth_token_invalid", "daemon has no credential: " };

// What the web engine's own processes write to the same stream when a page is left in the middle of a load.
inline constexpr std::array<std::string_view, 2> engineLines { "ERROR: WebKit encountered an internal error.",
    "Source/WebKit/" };

[[nodiscard]] inline bool beginsWithItsTag(std::string_view line)
{
    return std::ranges::any_of(logTags, [&](std::string_view tag) {
        return line.starts_with(tag) && line.substr(tag.size()).starts_with(' ') && line.size() > tag.size() + 1;
    });
}

[[nodiscard]] inline bool isWatchdogLine(std::string_view line)
{
    return std::ranges::any_of(watchdogLines, [&](std::string_view beginning) { return line.starts_with(beginning); });
}

[[nodiscard]] inline bool isEngineLine(std::string_view line)
{
    return std::ranges::any_of(engineLines, [&](std::string_view beginning) { return line.starts_with(beginning); });
}

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
        const bool isOurs = !isEngineLine(line);
        if (holdsSecret || (isWhole && isOurs && !beginsWithItsTag(line) && !isWatchdogLine(line)))
            faulty.emplace_back(line);
        log.remove_prefix(isWhole ? end + 1 : log.size());
    }
    return faulty;
}

}
