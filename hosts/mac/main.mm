// The composition root of the Mac client: builds the adapters and hands them to AppDelegate.
#include "app/AppDelegate.h"
#include "base/SerialQueue.h"
#include "mac/AdministratorMac.h"
#include "mac/AlertPanelMac.h"
#include "mac/ApplicationLifecycleMac.h"
#include "mac/BundleFactsMac.h"
#include "mac/ClockMac.h"
#include "mac/CrashReporterMac.h"
#include "mac/DiagnosisMac.h"
#include "mac/FilterSystemMac.h"
#include "mac/LoginItemMac.h"
#include "mac/MainLoopMac.h"
#include "mac/MainMenuMac.h"
#include "mac/MainWindowMac.h"
#include "mac/NotificationCenterMac.h"
#include "mac/OpenPanelMac.h"
#include "mac/PlaceholderMac.h"
#include "mac/ServiceManagerMac.h"
#include "mac/StatusItemMac.h"
#include "mac/SystemFactsMac.h"
#include "mac/SystemLogMac.h"
#include "mac/TextMac.h"
#include "mac/UpdaterMac.h"
#include "mac/UrlMac.h"
#include "mac/UserDefaultsMac.h"
#include "mac/WebViewMac.h"
#include "mac/WorkspaceMac.h"
#include "posix/FileStorePosix.h"
#include "posix/LocalSocketPosix.h"
#include "posix/LoginRecordsPosix.h"
#include "posix/ProgramArguments.h"
#include "posix/ProgramRunnerPosix.h"
#include "posix/ThreadSignals.h"

#include <cstdlib>
#include <iostream>
#include <span>
#include <string_view>

using namespace brevanta;

namespace {

// The user-accounting line of the session at the Mac's own screen: utmpx(5).
bool isConsoleLine(std::string_view line) { return line == "console"; }

// The exit status when the command line asked a question only. Arguments that are unknown here are left alone: the
// system passes some of its own to applications.
std::optional<int> answerOnTheCommandLine(
    std::span<const char* const> arguments, const BuildConfiguration& configuration)
{
    const auto request = parseProgramArguments(arguments).value_or(ProgramRequest {});
    switch (request.action) {
    case ProgramAction::run:
        break;
    case ProgramAction::showHelp:
        std::cout << programUsage();
        return EXIT_SUCCESS;
    case ProgramAction::showVersion:
        std::cout << "Brevanta " << configuration.version << '\n';
        return EXIT_SUCCESS;
    case ProgramAction::diagnose:
        return runDiagnosis(configuration, request.format);
    }
    return std::nullopt;
}

std::string newUuid() { return utf8FromString([NSUUID UUID].UUIDString.lowercaseString); }

// As it stands in the system's settings; a Mac without one has a name in the network at least.
std::string deviceName()
{
    NSString* const name = [NSHost currentHost].localizedName;
    return utf8FromString(name ? name : NSProcessInfo.processInfo.hostName);
}

// In the order of the system's settings.
std::vector<std::string> systemLanguages()
{
    std::vector<std::string> languages;
    for (NSString* const language in NSLocale.preferredLanguages)
        languages.push_back(utf8FromString(language));
    return languages;
}

void runApplication(const BuildConfiguration& configuration)
{
    SystemLogMac log(configuration.bundleIdentifier,
        configuration.flavour == Flavour::dev ? LogDestination::systemLogAndStandardError : LogDestination::systemLog);
    ClockMac clock;
    UserDefaultsMac defaults;
    LocalSocketPosix localSockets;
    LoginRecordsPosix loginRecords(isConsoleLine);
    MainLoopMac mainLoop;
    SerialQueue sharedStateQueue(queueThread("com.brevanta.mac.sharedstate-write"));
    SerialQueue pageScriptQueue(queueThread("com.brevanta.page-script"));
    SerialQueue nativeMessagingQueue(queueThread("com.brevanta.native-messaging"));
    SerialQueue daemonQueue(queueThread("com.brevanta.daemon-client"));
    SerialQueue installerQueue(queueThread("com.brevanta.daemon-installer"));
    SerialQueue programQueue(queueThread("com.brevanta.programs"));
    ApplicationLifecycleMac lifecycle(mainLoop);
    MainMenuMac mainMenu(NSApplication.sharedApplication);
    WebViewMac webView(mainLoop);
    PlaceholderMac placeholder;
    MainWindowMac mainWindow(webView, placeholder);
    StatusItemMac statusItem(mainMenu);
    AlertPanelMac alerts(mainLoop);
    OpenPanelMac openPanel(mainLoop, mainWindow);
    WorkspaceMac workspace(mainLoop);
    NotificationCenterMac notifications(mainLoop);
    ServiceManagerMac services(mainLoop, configuration.root);
    FilterSystemMac filterSystem(mainLoop);
    AdministratorMac administrator(mainLoop, installerQueue);
    UpdaterMac updater;
    FileStorePosix files;
    LoginItemMac loginItem(mainLoop);
    ProgramRunnerPosix programs(mainLoop, programQueue);
    CrashReporterMac crashReporter;
    AppDelegate delegate(
        {
            .mainLoop = mainLoop,
            .daemonQueue = daemonQueue,
            .sharedStateQueue = sharedStateQueue,
            .pageScriptQueue = pageScriptQueue,
            .nativeMessagingQueue = nativeMessagingQueue,
            .localSockets = localSockets,
            .clock = clock,
            .log = log,
            .defaults = defaults,
            .lifecycle = lifecycle,
            .mainWindow = mainWindow,
            .statusItem = statusItem,
            .alerts = alerts,
            .workspace = workspace,
            .notifications = notifications,
            .loginRecords = loginRecords,
            .webView = webView,
            .placeholder = placeholder,
            .openPanel = openPanel,
            .services = services,
            .filterSystem = filterSystem,
            .files = files,
            .sharedContainer = sharedContainer,
            .systemVersion = systemVersion(),
            .newUuid = newUuid,
            .deviceName = deviceName(),
            .parseUrl = [](const std::string& text) { return urlFrom(absoluteUrlFromText(stringFromUtf8(text))); },
            .resources = utf8FromString(NSBundle.mainBundle.resourcePath),
            .home = utf8FromString(NSHomeDirectory()),
            .systemLanguages = systemLanguages(),
            .bundle = utf8FromString(NSBundle.mainBundle.bundlePath),
            .administrator = administrator,
            .crashReporter = crashReporter,
            .crashEnvironment = environmentVariable("SENTRY_ENVIRONMENT").value_or(""),
            .updater = updater,
            .updaterFeed = textInMainBundle(@"SUFeedURL"),
            .updaterKey = textInMainBundle(@"SUPublicEDKey"),
            .loginItem = loginItem,
            .programs = programs,
            .location = locationOfMainBundle,
        },
        configuration);
    lifecycle.run(delegate);
}

}

int main(int argumentCount, const char* arguments[])
{
    @autoreleasepool {
        const BuildConfiguration configuration = configurationOfMainBundle();
        const std::span allArguments(arguments, static_cast<std::size_t>(argumentCount));
        if (const auto answer
            = answerOnTheCommandLine(allArguments.subspan(allArguments.empty() ? 0 : 1), configuration))
            return *answer;
        ignoreBrokenPipeSignal();
        runApplication(configuration);
    }
    return EXIT_SUCCESS;
}
