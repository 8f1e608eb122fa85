#pragma once

#include "gtk/standin/FilterStandIn.h"
#include "gtk/standin/ServiceStandIn.h"
#include "gtk/standin/UpdaterStandIn.h"
#include "gtk/standin/WorkspaceStandIn.h"

#include <expected>
#include <filesystem>
#include <functional>

namespace brevanta {

// The stand-in system's files below a development root, each replaced as a whole. They are read anew at each call, and
// who changes one holds a lock beside it, so that no change of another process is lost. A missing file reads as the
// value that its type begins with.
class StandInStore {
public:
    template <typename State> using Read = std::expected<State, StandInError>;

    // Gets what the file holds, or why it cannot be read, and gives what it is to hold.
    template <typename State> using Change = std::function<Read<State>(const Read<State>&)>;

    explicit StandInStore(const std::filesystem::path& root);

    // The error says which file is wrong, and why.
    [[nodiscard]] Read<FilterStandIn> filter() const;
    [[nodiscard]] Read<ServiceStandIn> service() const;
    [[nodiscard]] Read<WorkspaceStandIn> workspace() const;
    [[nodiscard]] Read<UpdaterStandIn> updater() const;

    // Gives what the file holds now. On an error it is as it was. Waits up to a second for another's change to end.
    Read<FilterStandIn> changeFilter(const Change<FilterStandIn>& change) const;
    Read<ServiceStandIn> changeService(const Change<ServiceStandIn>& change) const;
    Read<WorkspaceStandIn> changeWorkspace(const Change<WorkspaceStandIn>& change) const;
    Read<UpdaterStandIn> changeUpdater(const Change<UpdaterStandIn>& change) const;

    [[nodiscard]] const std::filesystem::path& filterFile() const { return m_filterFile; }
    [[nodiscard]] const std::filesystem::path& workspaceFile() const { return m_workspaceFile; }
    [[nodiscard]] const std::filesystem::path& updaterFile() const { return m_updaterFile; }

private:
    std::filesystem::path m_filterFile;
    std::filesystem::path m_serviceFile;
    std::filesystem::path m_workspaceFile;
    std::filesystem::path m_updaterFile;
};

}
