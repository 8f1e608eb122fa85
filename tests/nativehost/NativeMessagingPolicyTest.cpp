#include "nativehost/NativeMessagingPolicy.h"

#include <gtest/gtest.h>

namespace brevanta::NativeMessagingPolicy {

TEST(NativeMessagingPolicy, TheLauncherIsExactlyThisText)
{
    EXPECT_EQ(launcherText({ .serviceMarker = "/Users/o'neil/marker.plist",
                  .host = "/Applications/It's.app/$HOST",
                  .markerFolder = "/Users/o'neil",
                  .mode = Mode::dev,
                  .sleepSeconds = 17 }),
        R"sh(#!/bin/sh
# Brevanta native messaging launcher (#8951, dev). Written by the Brevanta app at
# every launch; the browsers' native-messaging manifests point here. While the blocking service
# is installed it runs the app's own host; once it is removed it tells the Brevanta extension so,
# and the extension stops blocking. Kept on purpose after a removal.
PLIST='/Users/o'\''neil/marker.plist'
HOST='/Applications/It'\''s.app/$HOST'
if [ ! -r '/Users/o'\''neil' ] || [ -e "$PLIST" ] || [ -L "$PLIST" ]; then
  if [ -e "$PLIST" ] && [ -x "$HOST" ]; then exec "$HOST" "$@"; fi
  exec /bin/sleep 17
fi
printf '\331\000\000\000'
printf '%s' '{"autoTrackDomains":[],"blockReason":null,"blockedDomains":[],"daemonUnavailable":true,"endpoints":[],"meteredProxyPort":null,"shouldBlock":false,"stoppedDomains":[],"webConfigAvailable":false,"webMeteringOwner":null}'
exec /bin/sleep 17
)sh");
}

TEST(NativeMessagingPolicy, EachByteOfTheLengthHasThreeDigitsLowestByteFirst)
{
    const std::pair<std::uint32_t, std::string> cases[] {
        { 0, R"(\000\000\000\000)" },
        { 7, R"(\007\000\000\000)" },
        { 0x01020304, R"(\004\003\002\001)" },
        { 0xFFFFFFFF, R"(\377\377\377\377)" },
    };
    for (const auto& [length, escapes] : cases)
        EXPECT_EQ(lengthPrefix(length), escapes);
}

TEST(NativeMessagingPolicy, TheManifestLeadsTheOneExtensionToTheLauncher)
{
    EXPECT_EQ(manifestText("/a \"b\\c\"/native-host"),
        R"json({"name":"com.brevanta.native_messaging","description":"Brevanta block list provider",)json"
        R"json("path":"/a \"b\\c\"/native-host","type":"stdio",)json"
        R"json("allowed_origins":["chrome-extension://kdlmpaecbhnogfijaklmnbcdpeofghij/"]})json"
        "\n");
}

}
