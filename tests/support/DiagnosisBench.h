#pragma once

#include "daemon/SharedBlockState.h"
#include "diagnosis/Diagnosis.h"
#include "diagnosis/DiagnosisRun.h"
#include "fakes/FakeFileStore.h"
#include "fakes/FakeLocalSockets.h"
#include "fakes/FakeLoginItem.h"
#include "fakes/ManualExecutor.h"
#include "support/ComponentBench.h"
#include "support/StatusReply.h"

namespace brevanta {

// A machine on which all is well, until a test changes something.
struct DiagnosisBench {
    explicit DiagnosisBench(std::string theSocketPath = "/var/run/service.sock")
        : socketPath(std::move(theSocketPath))
    {
        services.backgroundItems.result = BackgroundItem::allowed;
        services.programIsInstalled = true;
        filterSystem.properties.result = std::vector { activeExtension };
        filterSystem.preferences.result = filterSwitchedOn;
        filterSystem.bundled = activeExtension;
        loginItem.statuses.result = LoginItemStatus::enabled;
        files.replaceFromOutside("/preferences", "ours");
        reply({ { "daemon_version", "1.2.3" }, { "has_device_token", true } });
    }

    // The service answers so, and the client has written what the filter needs of that.
    void reply(const Json& additions)
    {
        const auto bytes = statusReply(additions).dump();
        sockets.pieces = { bytes + "\n" };
        std::string record;
        appendSharedBlockState(record, sharedBlockState(*decodeStatus(bytes).value()));
        files.replaceFromOutside(stateFile, record);
    }

    [[nodiscard]] PathFacts fakePathFacts(const std::filesystem::path& path) const
    {
        if (const auto found = paths.find(path); found != paths.end())
            return found->second;
        if (files.contents(path))
            return { .kind = PathKind::file, .mayRead = true, .mayWrite = true };
        return {};
    }

    void begin()
    {
        run.emplace(DiagnosisPorts { .mainLoop = mainLoop,
                        .daemonQueue = queue,
                        .localSockets = *connector,
                        .clock = clock,
                        .defaults = defaults,
                        .services = services,
                        .filterSystem = filterSystem,
                        .files = files,
                        .loginItem = loginItem,
                        .sharedContainer = [] { return std::filesystem::path("/shared"); },
                        .getNotificationAuthorization
                        = [this](auto onEnd) { notifications.getAuthorization(std::move(onEnd)); },
                        .parseUrl = [](const std::string&) { return std::optional<Url>(); },
                        .location =
                            [] {
                                return AppLocationPolicy::Context { .resolvedBundleURL = "/Applications/Brevanta.app",
                                    .resolvedSystemApplicationsURL = "/Applications" };
                            },
                        .resources = "/Resources",
                        .home = "/Users/ada",
                        .bundle = "/Applications/Brevanta.app",
                        .updaterFeed = {},
                        .updaterKey = {},
                        .pathFacts = lookAtPath,
                        .folderFacts =
                            [this](const auto& folder) {
                                const auto found = folders.find(folder);
                                return found != folders.end() ? found->second : FolderFacts {};
                            },
                        .preferencesFile = "/preferences",
                        .isPreferences = [](std::string_view bytes) { return bytes == "ours"; },
                        .findClient = [this](auto onEnd) { clients.ask(std::move(onEnd)); },
                        .systemName = "macOS 14.0",
                        .systemVersion = "14.0",
                        .minimumSystem = "13.3",
                        .isAdministrator = true,
                        .log = "in a drawer" },
            BuildConfiguration { .version = "1.2.3", .bundleIdentifier = {}, .root = "/", .socketPath = socketPath },
            [this](const DiagnosisFacts& found, const std::vector<std::string>& theSecrets) {
                ++ends;
                facts = found;
                secrets = theSecrets;
            });
        run->start();
    }
    void finish()
    {
        begin();
        queue.runAll();
        mainLoop.runPosted();
    }

    std::string socketPath;
    const std::filesystem::path stateFile { "/shared/block_state.json" };
    FakeClock clock;
    FakeMainLoop mainLoop { clock };
    ManualExecutor queue;
    FakeLocalSockets sockets;
    LocalSocketConnector* connector { &sockets };
    FakeUserDefaults defaults;
    FakeServiceManager services { mainLoop };
    FakeFilterSystem filterSystem { mainLoop };
    FakeFileStore files;
    FakeLoginItem loginItem { mainLoop };
    FakeNotificationCenter notifications { mainLoop };
    FakeAnswers<std::optional<bool>> clients { mainLoop };
    std::map<std::filesystem::path, PathFacts> paths; // Where they are other than the files tell.
    std::map<std::filesystem::path, FolderFacts> folders; // Where something is in the way.
    std::function<PathFacts(const std::filesystem::path&)> lookAtPath { [this](const auto& path) {
        return fakePathFacts(path);
    } };
    int ends { 0 };
    DiagnosisFacts facts;
    std::vector<std::string> secrets;
    std::optional<DiagnosisRun> run;
};

}
