#pragma once

#include "daemon/RemovalSnapshot.h"
#include "notify/NoticeRecords.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace brevanta {

// What the menu and the window say about the current block.
struct DisplayState {
    std::optional<std::string> blockReason;
    std::optional<std::string> activeTaskTitle;
    std::optional<double> activeTaskEarnRate;

    bool operator==(const DisplayState&) const = default;
};

// One open auto-track session of an application.
struct AutoTrackSessionInfo {
    std::string bundleId;
    std::string sessionId;
    std::optional<double> budgetEndEpoch; // Seconds since 1970 at which the session's budget runs out.

    bool operator==(const AutoTrackSessionInfo&) const = default;
};

// The client's picture of the blocking service: one whole status reply. Immutable; may be read on any thread.
struct BlockingStatus {
    // Lists may hold hundreds of thousands of entries, so they are views into memory that the status keeps alive.
    using List = std::span<const std::string_view>;

    bool blocking { false };
    double energy { 0 }; // The coin balance.
    List blockedDomains;
    List blockedIPs;
    List blockedApps; // Bundle identifiers.
    List autoTrackDomains;
    List autoTrackApps; // Bundle identifiers.
    List meteredIPPrefixes;
    List meteredDomains;
    std::optional<std::string> authToken;
    std::optional<std::string> apiBaseUrl;
    DisplayState display;
    std::optional<bool> notifyMacosLowLp;
    std::optional<bool> notifyMacosNoLp;
    std::optional<bool> notifyMacosHighLp;
    std::optional<bool> notifyMacosAutoTrackStart;
    std::optional<bool> notifyMacosAutoTrackStop;
    std::optional<bool> notifyMacosAppBlocked;
    std::optional<double> lowLpThreshold;
    std::optional<double> highLpThreshold;
    std::optional<bool> hasDeviceToken; // Whether the service holds a credential.
    std::optional<double> accountDeletedAt;
    std::optional<std::string> daemonBootId; // Names one run of the service.
    std::optional<std::string> filterHealthResult; // The service's answer to the filter health report.
    std::optional<bool> authTokenInvalid;
    std::optional<std::vector<AutoTrackSessionInfo>> autoTrackSessions;
    std::vector<PendingReminder> pendingReminders;
    std::optional<std::string> daemonVersion;
    std::vector<PendingAppRejection> pendingAppRejections;
    std::vector<PendingTaskResume> pendingTaskResumes;
    std::vector<PendingLocalAlert> pendingLocalAlerts;
    RemovalStatusField removal;
    std::optional<std::string> leaseBootSessionUUID;
    std::optional<std::uint64_t> leaseUntilUptimeNs; // Nanoseconds of system uptime.

    std::shared_ptr<const void> listStorage; // Keeps what the lists point at; no part of the record.
};

}
