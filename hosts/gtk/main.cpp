#include "app/AppDelegate.h"
#include "app/BuildConfiguration.h"
#include "base/SerialQueue.h"
#include "gtk/AlertPanelGtk.h"
#include "gtk/ApplicationLifecycleGtk.h"
#include "gtk/ClockGtk.h"
#include "gtk/DesktopSession.h"
#include "gtk/MainLoopGtk.h"
#include "gtk/MainWindowGtk.h"
#include "gtk/NotificationCenterGtk.h"
#include "gtk/StatusItemGtk.h"
#include "gtk/UserDefaultsGtk.h"
#include "gtk/WorkspaceGtk.h"
#include "posix/LocalSocketPosix.h"
#include "posix/LoginRecordsPosix.h"
#include "posix/ProgramArguments.h"
#include "posix/StandardErrorLog.h"
#include "posix/SyslogLog.h"
#include "posix/ThreadSignals.h"

#include <cstdlib>
#include <iostream>

using namespace brevanta;

namespace {

constexpr int badArguments = 2;

std::optional<std::string> readEnvironment(const char* name)
{
    const char* const value = std::getenv(name);
    return value ? std::optional<std::string>(value) : std::nullopt;
}

std::filesystem::path executablePath()
{
    std::error_code error;
    return std::filesystem::read_symlink("/proc/self/exe", error); // proc(5)
}

// Where the Mac keeps a user's preferences, below the development root or in the user's own home.
std::filesystem::path preferencesFile(const BuildConfiguration& configuration)
{
    const auto home = configuration.root == "/" ? std::filesystem::path(g_get_home_dir())
                                                : configuration.root / "Users" / g_get_user_name();
    return home / "Library/Preferences" / (configuration.bundleIdentifier + ".json");
}

bool isConsoleLine(std::string_view line)
{
    return line == "console" || line.starts_with(':') || line.starts_with("seat") || line.starts_with("tty");
}

std::unique_ptr<SystemLog> newLog(Flavour flavour)
{
    if (flavour == Flavour::dev)
        return std::make_unique<StandardErrorLog>();
    return std::make_unique<SyslogLog>();
}

DesktopIdentity desktopIdentity(const BuildConfiguration& configuration, const std::filesystem::path& resources)
{
    return { .name = "Brevanta",
        .iconUri = Glib::filename_to_uri((resources / "brevanta.svg").string()).raw(),
        .desktopEntry = configuration.bundleIdentifier };
}

// Everything below is destroyed from the last to the first: the delegate goes before the queue that its work runs on,
// and the queue before the loop that its work answers to.
int runApplication(const BuildConfiguration& configuration, const DesktopSession& session)
{
    const auto resources = executablePath().parent_path().parent_path() / "Resources";
    const auto log = newLog(configuration.flavour);
    ClockGtk clock;
    MainLoopGtk mainLoop;
    ApplicationLifecycleGtk lifecycle(session.application);
    UserDefaultsGtk defaults(preferencesFile(configuration), *log);
    MainWindowGtk mainWindow(*session.application.operator->(), resources, *log);
    StatusItemGtk statusItem(session.bus->gobj(), resources, mainLoop);
    AlertPanelGtk alerts(mainWindow.window(), mainLoop);
    WorkspaceGtk workspace(mainLoop);
    NotificationCenterGtk notifications(session.bus->gobj(), desktopIdentity(configuration, resources));
    LoginRecordsPosix loginRecords(isConsoleLine);
    LocalSocketPosix localSockets;
    SerialQueue daemonQueue(blockAllSignals);
    AppDelegate delegate({ .mainLoop = mainLoop,
                             .daemonQueue = daemonQueue,
                             .localSockets = localSockets,
                             .clock = clock,
                             .log = *log,
                             .defaults = defaults,
                             .lifecycle = lifecycle,
                             .mainWindow = mainWindow,
                             .statusItem = statusItem,
                             .alerts = alerts,
                             .workspace = workspace,
                             .notifications = notifications,
                             .loginRecords = loginRecords },
        configuration);
    return lifecycle.run(delegate);
}

int start(const BuildConfiguration& configuration)
{
    ignoreBrokenPipeSignal();
    const auto session = joinDesktopSession(configuration.bundleIdentifier);
    if (!session) {
        std::cerr << "Brevanta: " << session.error().message << '\n';
        return EXIT_FAILURE;
    }
    if (session->role == InstanceRole::further)
        return session->application->run(); // Tells the first one, which opens its window, and ends.
    return runApplication(configuration, *session);
}

}

int main(int argc, char** argv)
{
    const auto action
        = parseProgramArguments(std::span<const char* const>(argv, static_cast<std::size_t>(argc)).subspan(1));
    if (!action) {
        std::cerr << "Brevanta: unknown argument \"" << action.error().argument << "\" (see --help)\n";
        return badArguments;
    }
    const auto configuration = buildConfiguration(readEnvironment, executablePath());
    switch (*action) {
    case ProgramAction::showHelp:
        std::cout << programUsage();
        return EXIT_SUCCESS;
    case ProgramAction::showVersion:
        std::cout << "Brevanta " << configuration.version << '\n';
        return EXIT_SUCCESS;
    case ProgramAction::run:
        break;
    }
    return start(configuration);
}
