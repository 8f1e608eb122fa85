#include "nativehost/NativeMessagingRegistration.h"

#include "base/Executor.h"
#include "base/Text.h"
#include "platform/SystemLog.h"

#include <expected>
#include <utility>

namespace brevanta {

namespace {

using namespace NativeMessagingPolicy;

std::expected<void, FileStoreError> put(
    FileStore& files, const std::filesystem::path& path, const std::string& contents, FilePermissions permissions)
{
    if (placementOf(files, path, contents, permissions) == FilePlacement::inPlace)
        return {};
    if (const auto made = files.createFolder(path.parent_path()); !made)
        return made;
    if (const auto written = files.replace(path, contents, permissions); !written)
        return std::unexpected(written.error());
    return {};
}

std::string launcherTextFor(const NativeMessagingFacts& facts)
{
    return launcherText(launcherFor(facts.root, facts.bundle, facts.mode));
}

// The names of the browsers that have a manifest now.
std::vector<std::string> putManifests(FileStore& files, SystemLog& log, const NativeMessagingFacts& facts)
{
    const auto manifest = manifestText(launcherFile(facts.root));
    std::vector<std::string> names;
    for (const auto& browser : browsers) {
        // A browser that has never run gets no folder from us; once it has, it gets its manifest at the next launch.
        if (!files.isFolder(browserFolder(browser, facts.home)))
            continue;
        const auto file = manifestFile(browser, facts.home);
        if (const auto result = put(files, file, manifest, FilePermissions::readableByAll))
            names.emplace_back(browser.name);
        else
            log.log("[NativeMessaging] cannot write " + file.string() + ": " + result.error().message);
    }
    return names;
}

void carryOut(FileStore& files, SystemLog& log, const NativeMessagingFacts& facts)
{
    const auto file = launcherFile(facts.root);
    const auto text = launcherTextFor(facts);
    if (const auto launcher = put(files, file, text, FilePermissions::executableByAll); !launcher) {
        log.log("[NativeMessaging] cannot write " + file.string() + ": " + launcher.error().message);
        log.log("[NativeMessaging] could not write the native-messaging launcher; no manifest written");
        return;
    }
    const auto names = putManifests(files, log, facts);
    log.log("[NativeMessaging] registered with " + (names.empty() ? "no browser" : commaSeparated(names))
        + " (blocking service "
        + (facts.service == NativeMessagingFacts::Service::installed ? "installed)" : "not installed)"));
    if (const auto confined = facts.confinedBrowsers ? facts.confinedBrowsers() : std::vector<std::string>();
        !confined.empty())
        log.log("[NativeMessaging] out of reach in a sandbox of their own: " + commaSeparated(confined));
}

}

void registerNativeMessagingHost(Executor& queue, FileStore& files, SystemLog& log, NativeMessagingFacts facts)
{
    if (facts.place == NativeMessagingFacts::Place::ineligible)
        return log.log("[NativeMessaging] refused registration from an ineligible app bundle");
    queue.post([&files, &log, facts = std::move(facts)] { carryOut(files, log, facts); });
}

NativeMessagingState inspectNativeMessaging(const FileStore& files, const NativeMessagingFacts& facts)
{
    NativeMessagingState state { .launcherFile = launcherFile(facts.root), .manifests = {} };
    state.launcher = placementOf(files, state.launcherFile, launcherTextFor(facts), FilePermissions::executableByAll);
    const auto manifest = manifestText(state.launcherFile);
    for (const auto& browser : browsers) {
        auto file = manifestFile(browser, facts.home);
        const auto placement = files.isFolder(browserFolder(browser, facts.home))
            ? std::optional(placementOf(files, file, manifest, FilePermissions::readableByAll))
            : std::nullopt;
        state.manifests.push_back({ .browser = browser.name, .file = std::move(file), .placement = placement });
    }
    return state;
}

}
