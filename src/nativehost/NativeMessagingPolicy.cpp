#include "nativehost/NativeMessagingPolicy.h"

#include "base/JsonWriter.h"
#include "install/InstallScript.h"

#include <bit>
#include <utility>

namespace brevanta::NativeMessagingPolicy {

namespace {

constexpr std::string_view hostName = "com.brevanta.native_messaging";
constexpr std::string_view extensionOrigin = "chrome-extension://kdlmpaecbhnogfijaklmnbcdpeofghij/";

// When a launcher that sleeps ends, the extension may ask anew and finds out what has changed, such as a service that
// was installed since. A minute is not long to wait for that, and one shell a minute is no load.
constexpr int sleepSeconds = 60;

std::string quoted(const std::filesystem::path& path) { return shellQuoted(path.string()); }

void appendMember(std::string& json, std::string_view key, std::string_view value)
{
    json::appendString(json, key);
    json += ':';
    json::appendString(json, value);
    json += ',';
}

}

Launcher launcherFor(const std::filesystem::path& root, const std::filesystem::path& bundle, Mode mode)
{
    auto marker = InstallPaths { .bundledProgram = {}, .bundledPropertyList = {}, .root = root }.propertyList();
    auto folder = marker.parent_path();
    return {
        .serviceMarker = std::move(marker),
        // In the bundle it is replaced with the application, and needs no administrator.
        .host = bundle / "Contents" / "MacOS" / "brevanta-native-host",
        .markerFolder = std::move(folder),
        .mode = mode,
        .sleepSeconds = sleepSeconds,
    };
}

std::filesystem::path launcherFile(const std::filesystem::path& root)
{
    return root / "Library/Application Support/Brevanta/native-host";
}

std::string launcherText(const Launcher& launcher)
{
    static_assert(!fallbackReply.contains('\''), "the reply stands in single quotes");
    const auto sleep = "exec /bin/sleep " + std::to_string(launcher.sleepSeconds);

    std::string text = "#!/bin/sh\n# Brevanta native messaging launcher (#8951, ";
    text += launcher.mode == Mode::dev ? "dev" : "prod";
    text += "). Written by the Brevanta app at\n"
            "# every launch; the browsers' native-messaging manifests point here. While the blocking service\n"
            "# is installed it runs the app's own host; once it is removed it tells the Brevanta extension so,\n"
            "# and the extension stops blocking. Kept on purpose after a removal.\n";
    text += "PLIST=" + quoted(launcher.serviceMarker) + "\n";
    text += "HOST=" + quoted(launcher.host) + "\n";
    text += "if [ ! -r " + quoted(launcher.markerFolder) + R"( ] || [ -e "$PLIST" ] || [ -L "$PLIST" ]; then)" + "\n";
    text += R"(  if [ -e "$PLIST" ] && [ -x "$HOST" ]; then exec "$HOST" "$@"; fi)"
            "\n";
    text += "  " + sleep + "\n";
    text += "fi\n";
    text += "printf '" + lengthPrefix(static_cast<std::uint32_t>(fallbackReply.size())) + "'\n";
    text += "printf '%s' '" + std::string(fallbackReply) + "'\n";
    // The browser has the time to read the reply before its host is gone.
    text += sleep + "\n";
    return text;
}

std::string lengthPrefix(std::uint32_t length)
{
    std::string escapes;
    for (const auto byte : std::bit_cast<std::array<std::uint8_t, 4>>(length)) {
        // Always three digits, since one that follows would count as a part of the escape.
        escapes += '\\';
        for (const unsigned shift : { 6U, 3U, 0U })
            escapes += static_cast<char>('0' + ((byte >> shift) & 7U));
    }
    return escapes;
}

std::filesystem::path browserFolder(const Browser& browser, const std::filesystem::path& home)
{
    return home / "Library/Application Support" / browser.folder;
}

std::filesystem::path manifestFile(const Browser& browser, const std::filesystem::path& home)
{
    return browserFolder(browser, home) / "NativeMessagingHosts" / (std::string(hostName) + ".json");
}

std::string manifestText(const std::filesystem::path& launcher)
{
    std::string json = "{";
    appendMember(json, "name", hostName);
    appendMember(json, "description", "Brevanta block list provider");
    appendMember(json, "path", launcher.string());
    appendMember(json, "type", "stdio");
    json += R"("allowed_origins":[)";
    json::appendString(json, extensionOrigin);
    json += "]}\n";
    return json;
}

}
