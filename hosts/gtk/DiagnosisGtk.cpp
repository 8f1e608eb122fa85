#include "gtk/DiagnosisGtk.h"

#include "base/SerialQueue.h"
#include "diagnosis/DiagnosisRun.h"
#include "diagnosis/DiagnosisText.h"
#include "gtk/BundleFactsGtk.h"
#include "gtk/ClockGtk.h"
#include "gtk/ConfinedBrowsers.h"
#include "gtk/FilterSystemGtk.h"
#include "gtk/GObjectPtr.h"
#include "gtk/LoginItemGtk.h"
#include "gtk/MainLoopGtk.h"
#include "gtk/RunningClient.h"
#include "gtk/ServiceManagerGtk.h"
#include "gtk/UrlGtk.h"
#include "gtk/UserDefaultsGtk.h"
#include "posix/FileStorePosix.h"
#include "posix/LocalSocketPosix.h"
#include "posix/PathFactsPosix.h"
#include "posix/StandardErrorLog.h"
#include "posix/ThreadSignals.h"

#include <cstdlib>
#include <glibmm/main.h>
#include <iostream>
#include <nlohmann/json.hpp>

namespace brevanta {

namespace {

std::string systemName(const SystemVersion& version)
{
    const GLibPtr<char> name(g_get_os_info(G_OS_INFO_KEY_PRETTY_NAME));
    return std::string(name ? name.get() : "Linux") + ", in place of macOS " + versionText(version);
}

std::string howToReadTheLog(Flavour flavour)
{
    return flavour == Flavour::dev ? "standard error of the client, which scripts/run keeps in build/run/client.log"
                                   : "the system's; journalctl -t Brevanta";
}

bool isJsonObject(std::string_view bytes) { return nlohmann::json::parse(bytes, nullptr, false).is_object(); }

}

int runDiagnosis(const BuildConfiguration& configuration, DiagnosisFormat format)
{
    ignoreBrokenPipeSignal();
    const auto contents = bundleContents();
    const auto home = homeFolder(configuration);
    StandardErrorLog log;
    ClockGtk clock;
    MainLoopGtk mainLoop;
    UserDefaultsGtk defaults(preferencesFile(configuration), log, mainLoop, UserDefaultsGtk::FileUse::keptAsItIs);
    const auto system = systemVersion(configuration);
    LocalSocketPosix localSockets;
    ServiceManagerGtk services(mainLoop, configuration.root);
    FilterSystemGtk filterSystem(mainLoop, configuration.root, contents);
    FileStorePosix files;
    LoginItemGtk loginItem(mainLoop, autostartFolder(configuration),
        { .name = "Brevanta", .identifier = configuration.bundleIdentifier, .executable = executablePath() });
    SerialQueue daemonQueue(queueThread("com.brevanta.daemon-client"));
    const auto loop = Glib::MainLoop::create();
    int exitStatus = EXIT_FAILURE;
    DiagnosisRun run({ .mainLoop = mainLoop,
                         .daemonQueue = daemonQueue,
                         .localSockets = localSockets,
                         .clock = clock,
                         .defaults = defaults,
                         .services = services,
                         .filterSystem = filterSystem,
                         .files = files,
                         .loginItem = loginItem,
                         .sharedContainer = [home] { return sharedContainer(home); },
                         // Desktops ask nobody, so there is nothing that a user could have denied.
                         .getNotificationAuthorization =
                             [&mainLoop](auto onEnd) {
                                 mainLoop.post(
                                     [onEnd = std::move(onEnd)] { onEnd(NotificationAuthorization::authorized); });
                             },
                         .parseUrl = parseUrl,
                         .location = [&configuration] { return location(configuration); },
                         .resources = contents / "Resources",
                         .home = home,
                         .bundle = contents.parent_path(),
                         .updaterFeed = textInBundle("SUFeedURL"),
                         .updaterKey = textInBundle("SUPublicEDKey"),
                         .pathFacts = pathFacts,
                         .folderFacts = folderFacts,
                         .preferencesFile = preferencesFile(configuration),
                         .isPreferences = isJsonObject,
                         .findClient = [&mainLoop, name = configuration.bundleIdentifier](
                                           auto onEnd) { findRunningClient(name, mainLoop, std::move(onEnd)); },
                         .systemName = systemName(system),
                         .systemVersion = versionText(system),
                         .minimumSystem = textInBundle("LSMinimumSystemVersion").value_or(""),
                         // Any password does, but where the root is the machine's own there is nobody to give one.
                         .isAdministrator = configuration.root != "/",
                         .log = howToReadTheLog(configuration.flavour),
                         .confinedBrowsers = [] { return confinedBrowsers(g_get_home_dir()); } },
        configuration, [&](const DiagnosisFacts& facts, const std::vector<std::string>& secrets) {
            const auto diagnosis = diagnose(facts);
            std::cout << diagnosisOutput(diagnosis, { .home = facts.home, .secrets = secrets }, format) << std::flush;
            exitStatus = std::cout && !diagnosis.needsUser() ? EXIT_SUCCESS : EXIT_FAILURE;
            loop->quit();
        });
    run.start();
    loop->run();
    return exitStatus;
}

}
