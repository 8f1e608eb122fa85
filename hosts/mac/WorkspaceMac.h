#pragma once

#include "mac/CompletionTable.h"
#include "platform/Workspace.h"

namespace brevanta {

// The user's desktop (documentation page NSWorkspace).
class WorkspaceMac final : public Workspace {
public:
    explicit WorkspaceMac(MainLoop& mainLoop);

    void openUrl(const std::string& url, std::function<void(OpenOutcome)> onEnd) override;

    // A package, such as an application, is opened as a file by the system and so counts as no folder.
    void openFolder(const std::string& path, std::function<void(OpenOutcome)> onEnd) override;

    [[nodiscard]] std::optional<ApplicationFacts> applicationAt(const std::string& path) const override;

    // A file that is not there, a relative path, and more than 4,096 pixels have no icon.
    [[nodiscard]] std::vector<std::uint8_t> iconPng(const std::string& path, int pixels) const override;

private:
    CompletionTable<OpenOutcome> m_completions;
};

}
