#include "mac/SystemFactsMac.h"

#include "mac/TextMac.h"

#import <AppKit/AppKit.h>

#include <unistd.h>

namespace brevanta {

SystemVersion systemVersion()
{
    const NSOperatingSystemVersion version = NSProcessInfo.processInfo.operatingSystemVersion;
    return { .major = static_cast<int>(version.majorVersion),
        .minor = static_cast<int>(version.minorVersion),
        .patch = static_cast<int>(version.patchVersion) };
}

std::optional<bool> isRunningElsewhere(const std::string& bundleIdentifier)
{
    std::optional<bool> runs;
    for (NSRunningApplication* const application in NSWorkspace.sharedWorkspace.runningApplications) {
        const bool isOther = application.processIdentifier != ::getpid();
        const bool matches = isOther && utf8FromString(application.bundleIdentifier) == bundleIdentifier;
        runs = runs.value_or(false) || matches;
    }
    return runs;
}

bool isDomainOfDefaults(std::string_view bytes)
{
    NSData* const data = [NSData dataWithBytes:bytes.data() length:bytes.size()];
    const id list = [NSPropertyListSerialization propertyListWithData:data
                                                              options:NSPropertyListImmutable
                                                               format:nil
                                                                error:nil];
    return [list isKindOfClass:NSDictionary.class];
}

}
