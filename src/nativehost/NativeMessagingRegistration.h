#pragma once

#include "nativehost/NativeMessagingPolicy.h"
#include "platform/FileStore.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace brevanta {

class Executor;
class SystemLog;

// What a registration goes by. All paths are absolute.
struct NativeMessagingFacts {
    enum class Place { eligible, ineligible }; // Of the bundle: whether paths that lead into it will go on to be right.
    enum class Service { installed, absent }; // The blocking service, for the log; the launcher looks for itself.

    Place place { Place::ineligible };
    Service service { Service::absent };
    NativeMessagingPolicy::Mode mode { NativeMessagingPolicy::Mode::prod };
    std::filesystem::path root { "/" };
    std::filesystem::path home; // The user's folder.
    std::filesystem::path bundle; // The application's.
    // The names of browsers that no manifest helps, since they run in a sandbox that has no way to the launcher. Called
    // on the queue; may be null.
    std::function<std::vector<std::string>()> confinedBrowsers {};
};

// Puts the launcher into its place, and the manifest into the folder of each browser that has been used. Files that are
// right already are kept: they may be another user's. What fails is logged, and without a launcher there are no
// manifests; from an ineligible place nothing is written. Any thread; returns at once, the queue does the work. Files
// and log must outlive that.
void registerNativeMessagingHost(Executor& queue, FileStore& files, SystemLog& log, NativeMessagingFacts facts);

struct NativeMessagingState {
    struct Manifest {
        std::string_view browser; // Its name.
        std::filesystem::path file;
        std::optional<FilePlacement> placement; // Nothing where this browser has not been used, and needs none.

        bool operator==(const Manifest&) const = default;
    };

    std::filesystem::path launcherFile;
    FilePlacement launcher { FilePlacement::missing };
    std::vector<Manifest> manifests;

    bool operator==(const NativeMessagingState&) const = default;
};

// How a registration with these facts would find everything; nothing is written. Any thread; reads six small files.
[[nodiscard]] NativeMessagingState inspectNativeMessaging(const FileStore& files, const NativeMessagingFacts& facts);

}
