#include "mac/BundleFactsMac.h"

#include "mac/TextMac.h"
#include "posix/AppLocation.h"

#include <cstdlib>

namespace brevanta {

std::optional<std::string> environmentVariable(const char* _Nonnull name)
{
    const char* const value = std::getenv(name);
    return value ? std::optional<std::string>(value) : std::nullopt;
}

std::optional<std::string> textInMainBundle(NSString* _Nonnull key)
{
    const id value = [NSBundle.mainBundle objectForInfoDictionaryKey:key];
    return [value isKindOfClass:NSString.class] ? std::optional(utf8FromString(value)) : std::nullopt;
}

BuildConfiguration configurationOfMainBundle()
{
    BuildConfiguration configuration
        = buildConfiguration(environmentVariable, utf8FromString(NSBundle.mainBundle.executablePath));
    if (auto version = textInMainBundle(@"CFBundleShortVersionString"); version && !version->empty())
        configuration.version = *std::move(version);
    if (auto identifier = utf8FromString(NSBundle.mainBundle.bundleIdentifier); !identifier.empty())
        configuration.bundleIdentifier = std::move(identifier);
    configuration.crashEndpoint = textInMainBundle(@"BrevantaCrashEndpoint").value_or("");
    return configuration;
}

std::optional<std::filesystem::path> sharedContainer()
{
    @autoreleasepool {
        NSURL* const container = [NSFileManager.defaultManager
            containerURLForSecurityApplicationGroupIdentifier:@"group.com.brevanta.shared"];
        return container ? std::optional<std::filesystem::path>(utf8FromString(container.path)) : std::nullopt;
    }
}

AppLocationPolicy::Context locationOfMainBundle()
{
    return appLocation(utf8FromString(NSBundle.mainBundle.bundlePath), "/Applications",
        utf8FromString(NSHomeDirectory()) + "/Applications");
}

}
