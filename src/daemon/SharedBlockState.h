#pragma once

#include "daemon/BlockingStatus.h"

#include <expected>
#include <string>
#include <string_view>

namespace brevanta {

// The part of a status that the content filter, which runs in a process of its own, needs: the record in the file that
// the client shares with it. Lists are views into memory that `listStorage` keeps alive. Immutable; any thread.
struct SharedBlockState {
    bool shouldBlock { false };
    BlockingStatus::List blockedDomains;
    BlockingStatus::List blockedIPs;
    BlockingStatus::List autoTrackDomains;
    BlockingStatus::List meteredIPPrefixes;
    BlockingStatus::List meteredDomains;
    std::optional<std::string> apiBaseUrl;
    std::optional<std::string> authToken;
    std::optional<std::string> blockReason;
    std::optional<std::string> leaseBootSessionUUID;
    std::optional<std::uint64_t> leaseUntilUptimeNs; // Nanoseconds of system uptime.

    std::shared_ptr<const void> listStorage; // No part of the record.
};

[[nodiscard]] SharedBlockState sharedBlockState(const BlockingStatus& status);

// The file's name in a build for this environment, as the filter knows it: "dev" has a file of its own.
[[nodiscard]] std::string_view sharedBlockStateFileName(std::string_view environment);

// Appends the record as one compact JSON object whose keys are the fields' names; what is absent is left out.
void appendSharedBlockState(std::string& out, const SharedBlockState& state);

}
