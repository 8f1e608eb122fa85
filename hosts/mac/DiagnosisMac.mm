#include "mac/DiagnosisMac.h"

#include "base/SerialQueue.h"
#include "diagnosis/DiagnosisRun.h"
#include "diagnosis/DiagnosisText.h"
#include "mac/BundleFactsMac.h"
#include "mac/ClockMac.h"
#include "mac/FilterSystemMac.h"
#include "mac/LoginItemMac.h"
#include "mac/MainLoopMac.h"
#include "mac/NotificationCenterMac.h"
#include "mac/ServiceManagerMac.h"
#include "mac/SystemFactsMac.h"
#include "mac/TextMac.h"
#include "mac/UrlMac.h"
#include "mac/UserDefaultsMac.h"
#include "posix/FileStorePosix.h"
#include "posix/LocalSocketPosix.h"
#include "posix/PathFactsPosix.h"
#include "posix/ThreadSignals.h"
#include "posix/UserGroups.h"

#include <cstdlib>
#include <iostream>

namespace brevanta {

namespace {

// log(1); without an end of its own the system's log would be read for minutes.
std::string howToReadTheLog(const BuildConfiguration& configuration)
{
    return "the system's; log show --last 1h --predicate 'subsystem == \"" + configuration.bundleIdentifier + "\"'";
}

}

int runDiagnosis(const BuildConfiguration& configuration, DiagnosisFormat format)
{
    ignoreBrokenPipeSignal();
    ClockMac clock;
    MainLoopMac mainLoop;
    UserDefaultsMac defaults;
    LocalSocketPosix localSockets;
    ServiceManagerMac services(mainLoop, configuration.root);
    FilterSystemMac filterSystem(mainLoop);
    FileStorePosix files;
    LoginItemMac loginItem(mainLoop);
    NotificationCenterMac notifications(mainLoop);
    SerialQueue daemonQueue(queueThread("com.brevanta.daemon-client"));
    int exitStatus = EXIT_FAILURE;
    DiagnosisRun run(
        {
            .mainLoop = mainLoop,
            .daemonQueue = daemonQueue,
            .localSockets = localSockets,
            .clock = clock,
            .defaults = defaults,
            .services = services,
            .filterSystem = filterSystem,
            .files = files,
            .loginItem = loginItem,
            .sharedContainer = sharedContainer,
            .getNotificationAuthorization
            = [&notifications](auto onEnd) { notifications.getAuthorization(std::move(onEnd)); },
            .parseUrl = [](const std::string& text) { return urlFrom(absoluteUrlFromText(stringFromUtf8(text))); },
            .location = locationOfMainBundle,
            .resources = utf8FromString(NSBundle.mainBundle.resourcePath),
            .home = utf8FromString(NSHomeDirectory()),
            .bundle = utf8FromString(NSBundle.mainBundle.bundlePath),
            .updaterFeed = textInMainBundle(@"SUFeedURL"),
            .updaterKey = textInMainBundle(@"SUPublicEDKey"),
            .pathFacts = pathFacts,
            .folderFacts = folderFacts,
            .preferencesFile = std::filesystem::path(utf8FromString(NSHomeDirectory())) / "Library/Preferences"
                / (configuration.bundleIdentifier + ".plist"),
            .isPreferences = isDomainOfDefaults,
            .findClient =
                [&mainLoop, identifier = configuration.bundleIdentifier](auto onEnd) {
                    mainLoop.post([onEnd = std::move(onEnd), identifier] { onEnd(isRunningElsewhere(identifier)); });
                },
            .systemName = "macOS " + versionText(systemVersion()),
            .systemVersion = versionText(systemVersion()),
            .minimumSystem = textInMainBundle(@"LSMinimumSystemVersion").value_or(""),
            .isAdministrator = isInGroup("admin"),
            .log = howToReadTheLog(configuration),
        },
        configuration, [&exitStatus, format](const DiagnosisFacts& facts, const std::vector<std::string>& secrets) {
            const auto diagnosis = diagnose(facts);
            std::cout << diagnosisOutput(diagnosis, { .home = facts.home, .secrets = secrets }, format) << std::flush;
            exitStatus = std::cout && !diagnosis.needsUser() ? EXIT_SUCCESS : EXIT_FAILURE;
            CFRunLoopStop(CFRunLoopGetMain());
        });
    run.start();
    CFRunLoopRun();
    return exitStatus;
}

}
