#include "app/AppDelegate.h"
#include "app/BuildConfiguration.h"
#include "base/SerialQueue.h"
#include "gtk/AdministratorGtk.h"
#include "gtk/AlertPanelGtk.h"
#include "gtk/ApplicationLifecycleGtk.h"
#include "gtk/BundleFactsGtk.h"
#include "gtk/ClockGtk.h"
#include "gtk/ConfinedBrowsers.h"
#include "gtk/CrashReporterGtk.h"
#include "gtk/DesktopSession.h"
#include "gtk/DiagnosisGtk.h"
#include "gtk/FilterSystemGtk.h"
#include "gtk/LoginItemGtk.h"
#include "gtk/MainLoopGtk.h"
#include "gtk/MainWindowGtk.h"
#include "gtk/NotificationCenterGtk.h"
#include "gtk/OpenPanelGtk.h"
#include "gtk/PlaceholderGtk.h"
#include "gtk/ServiceManagerGtk.h"
#include "gtk/SoundPlayerGtk.h"
#include "gtk/StatusItemGtk.h"
#include "gtk/UpdaterGtk.h"
#include "gtk/UrlGtk.h"
#include "gtk/UserDefaultsGtk.h"
#include "gtk/WebViewGtk.h"
#include "gtk/WindowMenuGtk.h"
#include "gtk/WorkspaceGtk.h"
#include "posix/FileStorePosix.h"
#include "posix/LocalSocketPosix.h"
#include "posix/LoginRecordsPosix.h"
#include "posix/ProgramArguments.h"
#include "posix/ProgramRunnerPosix.h"
#include "posix/StandardErrorLog.h"
#include "posix/SyslogLog.h"
#include "posix/ThreadSignals.h"

#include <cstdlib>
#include <iostream>
#include <unistd.h>

using namespace brevanta;

namespace {

constexpr int badArguments = 2;

// `contents` is the bundle's folder of that name.
WebEngineOptions webEngineOptions(const BuildConfiguration& configuration, const std::filesystem::path& contents)
{
    const auto library = homeFolder(configuration) / "Library";
    WebEngineOptions options { .data = library / "WebKit" / configuration.bundleIdentifier,
        .cache = library / "Caches" / configuration.bundleIdentifier,
        .extensions = contents / "PlugIns/WebProcess",
        .certificate = std::nullopt };
    if (const auto appUrl = parseUrl(configuration.appUrl); appUrl && configuration.extraCertificate)
        options.certificate = { .file = *configuration.extraCertificate, .host = appUrl->host };
    return options;
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

// The bench sends no reports; the development root takes down that it would.
std::optional<std::filesystem::path> crashRecord(const BuildConfiguration& configuration)
{
    return configuration.flavour == Flavour::dev ? std::optional(configuration.root / "crash-reporter.json")
                                                 : std::nullopt;
}

DesktopIdentity desktopIdentity(const BuildConfiguration& configuration, const std::filesystem::path& resources)
{
    return { .name = "Brevanta",
        .iconUri = Glib::filename_to_uri((resources / "brevanta.svg").string()).raw(),
        .desktopEntry = configuration.bundleIdentifier };
}

// On a Mac it is always there. Without it nobody could tell whether the service's property list is.
void makeLaunchDaemonsFolder(const BuildConfiguration& configuration)
{
    std::error_code ignored;
    if (configuration.root != "/")
        std::filesystem::create_directories(configuration.root / "Library/LaunchDaemons", ignored);
}

std::string newUuid()
{
    const GLibPtr<char> uuid(g_uuid_string_random());
    return uuid.get();
}

// How the application has run, and what is to follow.
struct Run {
    enum class Next { end, relaunch };

    int exitStatus { EXIT_FAILURE };
    Next next { Next::end };
};

// Everything below is destroyed from the last to the first: the delegate goes before the queues that its work runs
// on, and those before the loop that their work answers to.
Run runApplication(
    const BuildConfiguration& configuration, const DesktopSession& session, const std::vector<std::string>& links)
{
    const auto contents = bundleContents();
    const auto resources = contents / "Resources";
    const auto log = newLog(configuration.flavour);
    makeLaunchDaemonsFolder(configuration);
    ClockGtk clock;
    MainLoopGtk mainLoop;
    ApplicationLifecycleGtk lifecycle(session.application);
    UserDefaultsGtk defaults(preferencesFile(configuration), *log, mainLoop);
    WebViewGtk webView(mainLoop, *log, webEngineOptions(configuration, contents));
    PlaceholderGtk placeholder(resources);
    WindowMenuGtk windowMenu;
    MainWindowGtk mainWindow(*session.application.operator->(), resources,
        { .page = webView.widget(), .placeholder = placeholder.widget(), .menu = windowMenu }, defaults, *log);
    StatusItemGtk statusItem(session.bus->gobj(), resources, mainLoop, windowMenu);
    AlertPanelGtk alerts(mainWindow.window(), mainLoop, resources);
    OpenPanelGtk openPanel(mainWindow.window(), mainLoop);
    WorkspaceGtk workspace(mainLoop, configuration.root);
    const auto identity = desktopIdentity(configuration, resources);
    SerialQueue soundQueue(queueThread("com.brevanta.sound"));
    SoundPlayerGtk soundPlayer(soundQueue, identity.name, *log);
    NotificationCenterGtk notifications(session.bus->gobj(), identity,
        { .folders = { homeFolder(configuration) / "Library/Sounds", resources },
            .play = [&soundPlayer](const DesktopSound& sound) { soundPlayer.play(sound); } });
    LoginRecordsPosix loginRecords(isConsoleLine);
    LocalSocketPosix localSockets;
    ServiceManagerGtk services(mainLoop, configuration.root);
    FilterSystemGtk filterSystem(mainLoop, configuration.root, contents);
    AdministratorGtk administrator(mainWindow.window(), mainLoop, configuration.root, contents / "StandIns");
    auto next = Run::Next::end;
    UpdaterGtk updater({ .alerts = alerts,
        .log = *log,
        .root = configuration.root,
        .version = configuration.version,
        .relaunch = [&next, &lifecycle] {
            next = Run::Next::relaunch;
            lifecycle.terminate();
        } });
    FileStorePosix files;
    const auto home = homeFolder(configuration);
    LoginItemGtk loginItem(mainLoop, autostartFolder(configuration),
        { .name = identity.name, .identifier = configuration.bundleIdentifier, .executable = executablePath() });
    SerialQueue programQueue(queueThread("com.brevanta.programs"));
    ProgramRunnerPosix programs(mainLoop, programQueue);
    CrashReporterGtk crashReporter(files, crashRecord(configuration));
    SerialQueue sharedStateQueue(queueThread("com.brevanta.mac.sharedstate-write"));
    SerialQueue pageScriptQueue(queueThread("com.brevanta.page-script"));
    SerialQueue nativeMessagingQueue(queueThread("com.brevanta.native-messaging"));
    SerialQueue daemonQueue(queueThread("com.brevanta.daemon-client"));
    AppDelegate delegate({ .mainLoop = mainLoop,
                             .daemonQueue = daemonQueue,
                             .sharedStateQueue = sharedStateQueue,
                             .pageScriptQueue = pageScriptQueue,
                             .nativeMessagingQueue = nativeMessagingQueue,
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
                             .loginRecords = loginRecords,
                             .webView = webView,
                             .placeholder = placeholder,
                             .openPanel = openPanel,
                             .services = services,
                             .filterSystem = filterSystem,
                             .files = files,
                             .sharedContainer = [home] { return sharedContainer(home); },
                             .systemVersion = systemVersion(configuration),
                             .newUuid = newUuid,
                             .deviceName = g_get_host_name(),
                             .parseUrl = parseUrl,
                             .resources = resources,
                             .home = home,
                             .systemLanguages = systemLanguages(),
                             .bundle = contents.parent_path(),
                             .administrator = administrator,
                             .crashReporter = crashReporter,
                             .crashEnvironment = environmentVariable("SENTRY_ENVIRONMENT").value_or(""),
                             .updater = updater,
                             .updaterFeed = textInBundle("SUFeedURL"),
                             .updaterKey = textInBundle("SUPublicEDKey"),
                             .loginItem = loginItem,
                             .programs = programs,
                             .location = [&configuration] { return location(configuration); },
                             .confinedBrowsers = [] { return confinedBrowsers(g_get_home_dir()); } },
        configuration);
    const int exitStatus = lifecycle.run(delegate, links);
    return { .exitStatus = exitStatus, .next = next };
}

// Takes this process's place: execv(3). What the process was started with has been done with.
int startAnew(char* name)
{
    char* const arguments[] = { name, nullptr };
    ::execv(executablePath().c_str(), arguments);
    std::cerr << "Brevanta: cannot be started anew\n";
    return EXIT_FAILURE;
}

Run start(const BuildConfiguration& configuration, const std::vector<std::string>& links)
{
    ignoreBrokenPipeSignal();
    const auto session = joinDesktopSession(configuration.bundleIdentifier);
    if (!session) {
        std::cerr << "Brevanta: " << session.error().message << '\n';
        return {};
    }
    if (session->role == InstanceRole::further)
        return { .exitStatus = runOrHandOver(*session->application.operator->(), links), .next = Run::Next::end };
    return runApplication(configuration, *session, links);
}

}

int main(int argc, char** argv)
{
    const auto request
        = parseProgramArguments(std::span<const char* const>(argv, static_cast<std::size_t>(argc)).subspan(1));
    if (!request) {
        std::cerr << "Brevanta: unknown argument \"" << request.error().argument << "\" (see --help)\n";
        return badArguments;
    }
    const auto configuration = configurationOfBundle();
    switch (request->action) {
    case ProgramAction::showHelp:
        std::cout << programUsage();
        return EXIT_SUCCESS;
    case ProgramAction::showVersion:
        std::cout << "Brevanta " << configuration.version << '\n';
        return EXIT_SUCCESS;
    case ProgramAction::diagnose:
        return runDiagnosis(configuration, request->format);
    case ProgramAction::run:
        break;
    }
    // All that the run has made is gone, and with it the name on the session bus.
    const auto run = start(configuration, request->links);
    return run.next == Run::Next::relaunch ? startAnew(argv[0]) : run.exitStatus;
}
