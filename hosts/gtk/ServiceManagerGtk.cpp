#include "gtk/ServiceManagerGtk.h"

#include "base/Executor.h"
#include "posix/ServiceProgram.h"

#include <utility>

namespace brevanta {

ServiceManagerGtk::ServiceManagerGtk(Executor& mainThread, std::filesystem::path root)
    : m_mainThread(mainThread)
    , m_root(std::move(root))
    , m_store(m_root)
{
}

void ServiceManagerGtk::observe(std::function<void(ServiceObservation)> onEnd)
{
    m_mainThread.post(m_life.guard([this, onEnd = std::move(onEnd)] { onEnd(observation()); }));
}

bool ServiceManagerGtk::isProgramInstalled() const { return isServiceProgramInstalled(m_root); }

ServiceObservation ServiceManagerGtk::observation() const
{
    const auto standIn = m_store.service().value_or(ServiceStandIn());
    return { .launch = launchCheck(standIn.isLoaded ? LaunchdAnswer::loaded : LaunchdAnswer::notLoaded, m_root),
        .backgroundItem = standIn.backgroundItem };
}

}
