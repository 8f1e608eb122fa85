#pragma once

#include "daemon/DaemonFailure.h"
#include "install/DaemonUpgradePolicy.h"
#include "platform/ServiceManager.h"

#include <optional>
#include <string>
#include <variant>

namespace brevanta {

// What was seen of the blocking service, with the times at which it was, and the verdict that follows. A value; all
// times are seconds of Clock::continuousSeconds.
struct DaemonHealth {
    enum class PollFailure {
        notListening, // Nothing accepted the connection.
        badReply, // Something did, but its answer was of no use.
    };

    // What a status request that failed so says of the service.
    [[nodiscard]] static PollFailure kindOf(const DaemonFailure& failure);

    struct Success {
        double requestStartedAt;
        std::optional<std::string> version;
        bool operator==(const Success&) const = default;
    };
    struct Failure {
        PollFailure kind;
        bool binaryInstalled; // Whether the service's program file was there.
        double requestStartedAt;
        bool operator==(const Failure&) const = default;
    };
    using LastEvent = std::variant<Success, Failure>;

    struct Running {
        std::optional<std::string> version;
        DaemonUpgradePolicy::Decision upgrade;
        bool operator==(const Running&) const = default;
    };
    struct Checking {
        bool operator==(const Checking&) const = default;
    };
    struct NotInstalled {
        bool operator==(const NotInstalled&) const = default;
    };
    struct NotRunning {
        bool operator==(const NotRunning&) const = default;
    };
    struct TurnedOffInSettings {
        bool operator==(const TurnedOffInSettings&) const = default;
    };
    struct Starting {
        bool operator==(const Starting&) const = default;
    };
    // It runs, but does not answer as it should.
    struct Unreachable {
        bool operator==(const Unreachable&) const = default;
    };
    using State = std::variant<Running, Checking, NotInstalled, NotRunning, TurnedOffInSettings, Starting, Unreachable>;

    static constexpr double successLifetime = 6; // Seconds for which a good reply is believed.
    static constexpr double gracePeriod = 20; // Seconds after our own install in which absence does not count.

    std::string bundledVersion; // Of the service inside of the application.
    std::optional<LaunchCheck> launchCheck;
    std::optional<LastEvent> lastEvent; // The newest poll's.
    std::optional<double> graceStartedAt; // When we installed or restarted the service ourselves.
    bool installInFlight { false };
    bool backgroundItemRequiresApproval { false }; // The user switched it off in the system's settings.
    double backgroundItemReadStartedAt { 0 };
    double latestSuccessRequestStartedAt { 0 };

    // Polls may end in another order than they began: an older one never displaces what a newer one said.
    void recordSuccess(const std::optional<std::string>& version, double requestStartedAt);
    void recordFailure(PollFailure kind, bool binaryInstalled, double requestStartedAt);

    // A reading of the background item that began at `readStartedAt`; an older one than the last, or than a good reply,
    // is ignored, and so is one that found nothing out.
    void recordBackgroundItem(BackgroundItem item, double readStartedAt);

    [[nodiscard]] bool isInGrace(double now) const;
    [[nodiscard]] State state(double now) const;

    bool operator==(const DaemonHealth&) const = default;
};

}
