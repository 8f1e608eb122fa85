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
#include "platform/ServiceManager.h"

#include <expected>
#include <filesystem>
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
    struct NoAnswerInTime {
        bool operator==(const NoAnswerInTime&) const = default;
    };
    using Contact = std::variant<Answer, NoSocket, NoAnswerInTime, DaemonFailure>;

    // The file that the filter reads.
    struct SharedState {
        enum class Condition { there, missing, notWritable };

        std::filesystem::path file;
        Condition condition { Condition::missing };
    };

    struct Updates {
        std::optional<std::string> feed; // The text that the information dictionary has; nothing when it has none.
        bool isUsable { false }; // Feed and key are.
    };

    std::string version; // The application's.
    std::string bundledServiceVersion;
    std::filesystem::path home; // Stands as "~" in what is said.
    AppLocationPolicy::Context location;
    std::string socketPath;
    Contact contact { NoAnswerInTime {} };
    DaemonHealth::State service { DaemonHealth::Checking {} };
    BackgroundItem backgroundItem { BackgroundItem::unknown };
    FilterStatus filter { FilterStatus::checking };
    ComponentLine filterLine;
    std::optional<std::string> filterVersion; // Of the extension that the system runs.
    std::optional<SharedState> sharedState; // Nothing where the system has no folder for it.
    NativeMessagingState nativeMessaging;
    std::vector<std::string> confinedBrowsers;
    std::vector<SoundState> sounds;
    std::optional<NotificationAuthorization> notifications; // Nothing when the system did not say.
    Updates updates;
    bool reportsCrashes { false };
    std::optional<LoginItemStatus> loginItem; // Nothing when the system did not say.
    std::optional<ConclusiveState> lastService; // What the client last saw for certain; nothing before it ever did.
    std::optional<ConclusiveState> lastFilter;
};

}
