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

private:
    void refuse(std::function<void(OpenOutcome)> onEnd);

    Executor& m_mainThread;
};

}
