#pragma once

#include "base/LifeToken.h"
#include "gtk/standin/StandInStore.h"
#include "platform/ServiceManager.h"

#include <filesystem>

namespace brevanta {

class Executor;

// The stand-in of launchd and of the Login Items settings, in a file of the development root that commands change
// meanwhile (tools/system/README.md). A file that cannot be read says nothing: the service then counts as not loaded.
class ServiceManagerGtk final : public ServiceManager {
public:
    // `root` is the development root.
    ServiceManagerGtk(Executor& mainThread, std::filesystem::path root);

    void observe(std::function<void(ServiceObservation)> onEnd) override;
    [[nodiscard]] bool isProgramInstalled() const override;

private:
    [[nodiscard]] ServiceObservation observation() const;

    Executor& m_mainThread;
    std::filesystem::path m_root;
    StandInStore m_store;
    LifeToken m_life;
};

}
