#pragma once

#include "app/AppLocationPolicy.h"
#include "daemon/DaemonFailure.h"
#include "filter/ComponentLine.h"
#include "filter/DaemonHealth.h"
#include "filter/FilterHealth.h"
#include "filter/OffNoticeTracker.h"
#include "nativehost/NativeMessagingRegistration.h"
#include "notify/NotificationSounds.h"
#include "platform/LoginItem.h"
#include "platform/NotificationCenter.h"
#include "platform/PathFacts.h"
#include "platform/ServiceManager.h"

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace brevanta {

// What a diagnosis goes by: how everything was when it was looked at, once.
struct DiagnosisFacts {
    // What the service said of itself.
    struct Answer {
        std::optional<std::string> version;
        bool isSignedIn { false }; // It holds a credential that its back end takes.
        bool operator==(const Answer&) const = default;
    };
    struct NoSocket { // There is nothing at the socket's path.
        bool operator==(const NoSocket&) const = default;
    };
    struct NotASocket { // Something else is there.
        bool operator==(const NotASocket&) const = default;
    };
    struct NotPermitted { // The socket is there, or may be, and this user may not open it.
        bool operator==(const NotPermitted&) const = default;
    };
    struct NoAnswerInTime { // It took the connection.
        bool operator==(const NoAnswerInTime&) const = default;
    };
    using Contact = std::variant<Answer, NoSocket, NotASocket, NotPermitted, NoAnswerInTime, DaemonFailure>;

    // The file that the filter reads.
    struct SharedState {
        enum class Condition {
            there, // As far as can be told, it says what the service says.
            missing,
            noFile, // Something else is in its place.
            unreadable,
            outOfDate, // It says something else than the service.
        };

        std::filesystem::path file;
        Condition condition { Condition::missing };
        FolderFacts folder; // The one that it is in.
    };

    // The file in which the client's small settings are.
    struct Preferences {
        enum class Condition { there, none, unreadable, damaged };

        std::filesystem::path file;
        Condition condition { Condition::none };
        FolderFacts folder;
    };

    // The removal of the blocking service.
    struct Removal {
        enum class Stage {
            none,
            pending, // Asked for; it may be taken back.
            finishing, // The service says that it goes.
            overdue, // It has said so for longer than it wanted to; the client offers to finish the removal.
            atWork, // Its files are being taken away.
            cutShort, // They were, and nobody goes on with it.
        };

        Stage stage { Stage::none };
        std::filesystem::path marker; // What tells of the last two.
        // The service's program and property list are there: the system starts it anew, and it finishes its removal.
        bool canGoOn { false };
    };

    struct Updates {
        std::optional<std::string> feed; // The text that the information dictionary has; nothing when it has none.
        bool isUsable { false }; // Feed and key are.
    };

    struct System {
        std::string text; // "macOS 15.0.0"
        bool isSupported { true };
    };

    std::string version; // The application's.
    std::string bundledServiceVersion;
    std::filesystem::path home; // Stands as "~" in what is said.
    AppLocationPolicy::Context location;
    System system;
    std::string minimumSystem; // The oldest that the application runs on: "13.3".
    std::optional<bool> isAdministrator; // Whether the user has an administrator's password; nothing: not known.
    std::optional<bool> clientRuns; // Nothing: not known.
    std::string log; // Where the client's log is, and how to read it.
    Preferences preferences;
    Removal removal;
    std::string socketPath;
    Contact contact { NoAnswerInTime {} };
    DaemonHealth::State service { DaemonHealth::Checking {} };
    BackgroundItem backgroundItem { BackgroundItem::unknown };
    FilterStatus filter { FilterStatus::checking };
    ComponentLine filterLine;
    std::optional<ExtensionRecord> activeFilter; // The extension that the system runs.
    std::optional<ExtensionRecord> bundledFilter;
    bool filterIsUninstalling { false }; // The system keeps a copy that goes with the next restart.
    std::optional<SharedState> sharedState; // Nothing where the system has no folder for it.
    NativeMessagingState nativeMessaging;
    std::vector<std::string> confinedBrowsers;
    std::vector<SoundState> sounds;
    std::filesystem::path soundFolder;
    std::map<std::filesystem::path, FolderFacts> folders; // Those of launcher, manifests and sounds.
    std::optional<NotificationAuthorization> notifications; // Nothing when the system did not say.
    Updates updates;
    bool reportsCrashes { false };
    std::optional<LoginItemStatus> loginItem; // Nothing when the system did not say.
    std::optional<ConclusiveState> lastService; // What the client last saw for certain; nothing before it ever did.
    std::optional<ConclusiveState> lastFilter;
};

}
