#pragma once

#include "base/LifeToken.h"
#include "mac/CompletionTable.h"
#include "platform/Workspace.h"

#import <Foundation/Foundation.h>

NS_ASSUME_NONNULL_BEGIN

namespace brevanta {

// The user's desktop (documentation page NSWorkspace).
class WorkspaceMac final : public Workspace {
public:
    explicit WorkspaceMac(MainLoop& mainLoop);
    ~WorkspaceMac() override;
    WorkspaceMac(const WorkspaceMac&) = delete;
    WorkspaceMac& operator=(const WorkspaceMac&) = delete;

    void openUrl(const std::string& url, std::function<void(OpenOutcome)> onEnd) override;

    // A package, such as an application, is opened as a file by the system and so counts as no folder.
    void openFolder(const std::string& path, std::function<void(OpenOutcome)> onEnd) override;

    [[nodiscard]] std::optional<ApplicationFacts> applicationAt(const std::string& path) const override;

    // A file that is not there, a relative path, and more than 4,096 pixels have no icon.
    [[nodiscard]] std::vector<std::uint8_t> iconPng(const std::string& path, int pixels) const override;

    void setApplicationHandler(std::function<void(ApplicationChange, const RunningApplication&)> handler) override;

    // Those with an icon in the Dock: of others the system tells neither launch nor termination.
    [[nodiscard]] std::vector<RunningApplication> runningApplications() const override;

    // The localized name in the information dictionary of the application that the system would launch.
    [[nodiscard]] std::optional<std::string> displayNameOf(const std::string& bundleIdentifier) const override;

private:
    id observe(NSNotificationName name, std::function<void(const RunningApplication&)> tell);
    void stopObserving();

    MainLoop& m_mainLoop;
    CompletionTable<OpenOutcome> m_completions;
    id _Nullable m_launches { nil }; // What the notification center knows the observers by.
    id _Nullable m_terminations { nil };
    std::optional<LifeToken> m_registration; // Of the handler.
};

}

NS_ASSUME_NONNULL_END
