#pragma once

#include "gtk/standin/StandInError.h"
#include "platform/Workspace.h"

#include <expected>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace brevanta {

// What stands for the applications that run on a Mac. As it is made, none does.
struct WorkspaceStandIn {
    std::vector<RunningApplication> running; // Each process once; its number is above 0.

    bool operator==(const WorkspaceStandIn&) const = default;
};

// An object of JSON; tools/system/README.md shows it.
[[nodiscard]] std::expected<WorkspaceStandIn, StandInError> decodeWorkspaceStandIn(std::string_view text);
[[nodiscard]] std::string encode(const WorkspaceStandIn& standIn);

// Without a number the application gets one that no other has. An error when the number is taken.
[[nodiscard]] std::expected<WorkspaceStandIn, StandInError> withLaunched(
    WorkspaceStandIn standIn, const std::string& bundleIdentifier, std::optional<int> processId);

// All processes of the application end. An error when there is none.
[[nodiscard]] std::expected<WorkspaceStandIn, StandInError> withQuit(
    WorkspaceStandIn standIn, const std::string& bundleIdentifier);

struct WorkspaceChange {
    ApplicationChange change;
    RunningApplication application;

    bool operator==(const WorkspaceChange&) const = default;
};

// What has to be told of between two looks: first what has terminated, then what has launched.
[[nodiscard]] std::vector<WorkspaceChange> changesBetween(
    const WorkspaceStandIn& before, const WorkspaceStandIn& after);

}
