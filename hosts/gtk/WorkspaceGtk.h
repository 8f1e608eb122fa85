#pragma once

#include "platform/Workspace.h"

namespace brevanta {

class Executor;

// The user's default applications by GIO.
class WorkspaceGtk final : public Workspace {
public:
    explicit WorkspaceGtk(Executor& mainThread)
        : m_mainThread(mainThread)
    {
    }

    void openUrl(const std::string& url, std::function<void(OpenOutcome)> onEnd) override;
    void openFolder(const std::string& path, std::function<void(OpenOutcome)> onEnd) override;

    // A bundle in the Mac's layout, with an XML property list in Contents/Info.plist.
    [[nodiscard]] std::optional<ApplicationFacts> applicationAt(const std::string& path) const override;

    // As `drawFileIcon`.
    [[nodiscard]] std::vector<std::uint8_t> iconPng(const std::string& path, int pixels) const override;

private:
    void refuse(std::function<void(OpenOutcome)> onEnd);

    Executor& m_mainThread;
};

}
