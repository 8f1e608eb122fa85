#pragma once

#include "base/LifeToken.h"
#include "gtk/standin/StandInStore.h"
#include "platform/ServiceManager.h"

#include <filesystem>

namespace brevanta {

class Executor;

// The stand-in of launchd and of the Login Items settings, in a file of the development root that commands change
// meanwhile (tools/system/README.md). A file that cannot be read says nothing.
class ServiceManagerGtk final : public ServiceManager {
public:
    // `root` is the development root.
    ServiceManagerGtk(Executor& mainThread, std::filesystem::path root);

    void checkLaunch(std::function<void(std::optional<LaunchCheck>)> onEnd) override;
    void readBackgroundItem(std::function<void(BackgroundItem)> onEnd) override;
    [[nodiscard]] bool isProgramInstalled() const override;

private:
    Executor& m_mainThread;
    std::filesystem::path m_root;
    StandInStore m_store;
    LifeToken m_life;
};

}
