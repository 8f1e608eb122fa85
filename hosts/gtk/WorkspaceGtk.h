#pragma once

#include "gtk/WorkspaceWatch.h"
#include "gtk/standin/StandInStore.h"
#include "platform/Workspace.h"

#include <filesystem>
#include <optional>

namespace brevanta {

class Executor;

// The user's default applications by GIO. GIO knows nothing of applications that launch and terminate, so a file of the
// development root stands for them (WorkspaceWatch).
class WorkspaceGtk final : public Workspace {
public:
    // `root` is the development root.
    WorkspaceGtk(Executor& mainThread, std::filesystem::path root);

    void openUrl(const std::string& url, std::function<void(OpenOutcome)> onEnd) override;
    void openFolder(const std::string& path, std::function<void(OpenOutcome)> onEnd) override;

    // A bundle in the Mac's layout, with an XML property list in Contents/Info.plist.
    [[nodiscard]] std::optional<ApplicationFacts> applicationAt(const std::string& path) const override;

    // As `drawFileIcon`.
    [[nodiscard]] std::vector<std::uint8_t> iconPng(const std::string& path, int pixels) const override;

    void setApplicationHandler(std::function<void(ApplicationChange, const RunningApplication&)> handler) override;

    // None while the file cannot be read.
    [[nodiscard]] std::vector<RunningApplication> runningApplications() const override;

    // Of a bundle in the root's folder Applications, or else of the desktop entry of this name (desktop file IDs of the
    // Desktop Entry Specification).
    [[nodiscard]] std::optional<std::string> displayNameOf(const std::string& bundleIdentifier) const override;

private:
    void refuse(std::function<void(OpenOutcome)> onEnd);

    Executor& m_mainThread;
    std::filesystem::path m_root;
    StandInStore m_store;
    std::optional<WorkspaceWatch> m_watch;
};

}
