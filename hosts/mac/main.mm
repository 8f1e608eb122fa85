// The composition root of the Mac client: builds the adapters and hands them to AppDelegate.
#include "app/AppDelegate.h"
#include "base/SerialQueue.h"
#include "mac/AlertPanelMac.h"
#include "mac/ApplicationLifecycleMac.h"
#include "mac/BundleFactsMac.h"
#include "mac/ClockMac.h"
#include "mac/MainLoopMac.h"
#include "mac/MainMenuMac.h"
#include "mac/MainWindowMac.h"
#include "mac/NotificationCenterMac.h"
#include "mac/StatusItemMac.h"
#include "mac/SystemLogMac.h"
#include "mac/UserDefaultsMac.h"
#include "mac/WorkspaceMac.h"
#include "posix/LocalSocketPosix.h"
#include "posix/LoginRecordsPosix.h"
#include "posix/ProgramArguments.h"
#include "posix/ThreadSignals.h"

#include <cstdlib>
#include <iostream>
#include <span>
#include <string_view>

using namespace brevanta;

namespace {

// The user-accounting line of the session at the Mac's own screen: utmpx(5).
bool isConsoleLine(std::string_view line) { return line == "console"; }

// True when the command line asked a question only. Arguments that are unknown here are left alone: the system passes
// some of its own to applications.
bool answersOnTheCommandLine(std::span<const char* const> arguments, const BuildConfiguration& configuration)
{
    switch (parseProgramArguments(arguments).value_or(ProgramAction::run)) {
    case ProgramAction::run:
        return false;
    case ProgramAction::showHelp:
        std::cout << programUsage();
        return true;
    case ProgramAction::showVersion:
        std::cout << "Brevanta " << configuration.version << '\n';
        return true;
    }
    return false;
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
    SerialQueue daemonQueue(blockAllSignals);
    ApplicationLifecycleMac lifecycle(mainLoop);
    installMainMenu(NSApplication.sharedApplication);
    MainWindowMac mainWindow;
    StatusItemMac statusItem;
    AlertPanelMac alerts(mainLoop);
    WorkspaceMac workspace(mainLoop);
    NotificationCenterMac notifications(mainLoop);
    AppDelegate delegate(
        {
            .mainLoop = mainLoop,
            .daemonQueue = daemonQueue,
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
        if (answersOnTheCommandLine(allArguments.subspan(allArguments.empty() ? 0 : 1), configuration))
            return EXIT_SUCCESS;
        ignoreBrokenPipeSignal();
        runApplication(configuration);
    }
    return EXIT_SUCCESS;
}
