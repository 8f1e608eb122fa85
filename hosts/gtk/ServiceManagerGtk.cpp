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

void ServiceManagerGtk::checkLaunch(std::function<void(std::optional<LaunchCheck>)> onEnd)
{
    m_mainThread.post(m_life.guard([this, onEnd = std::move(onEnd)] {
        const auto standIn = m_store.service();
        const auto answer = standIn && standIn->isLoaded ? LaunchdAnswer::loaded : LaunchdAnswer::notLoaded;
        onEnd(launchCheck(standIn ? answer : LaunchdAnswer::unknown, m_root));
    }));
}

void ServiceManagerGtk::readBackgroundItem(std::function<void(BackgroundItem)> onEnd)
{
    m_mainThread.post(m_life.guard([this, onEnd = std::move(onEnd)] {
        const auto standIn = m_store.service();
        auto item = standIn ? standIn->backgroundItem : BackgroundItem::unknown;
        if (item == BackgroundItem::unknown && standIn && standIn->isLoaded)
            item = BackgroundItem::allowed; // launchd loads nothing that the user has switched off.
        onEnd(item);
    }));
}

bool ServiceManagerGtk::isProgramInstalled() const { return isServiceProgramInstalled(m_root); }

}
