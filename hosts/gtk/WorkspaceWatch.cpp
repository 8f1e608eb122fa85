#include "gtk/WorkspaceWatch.h"

#include "base/Executor.h"

#include <filesystem>
#include <utility>

namespace brevanta {

WorkspaceWatch::WorkspaceWatch(
    Executor& mainThread, const StandInStore& store, std::function<void(const WorkspaceChange&)> handler)
    : m_mainThread(mainThread)
    , m_store(store)
    , m_handler(std::move(handler))
{
    // GLib looks for a missing folder every few seconds only; one that is there tells of changes at once.
    std::error_code ignored;
    std::filesystem::create_directories(store.workspaceFile().parent_path(), ignored);
    const GObjectPtr<GFile> file(g_file_new_for_path(store.workspaceFile().c_str()));
    m_monitor.reset(g_file_monitor_file(file.get(), G_FILE_MONITOR_NONE, nullptr, nullptr));
    if (m_monitor) {
        const auto changed = +[](GFileMonitor*, GFile*, GFile*, GFileMonitorEvent, gpointer self) {
            static_cast<WorkspaceWatch*>(self)->fileChanged();
        };
        m_connections.connect(m_monitor.get(), "changed", G_CALLBACK(changed), this);
    }
    // Read behind the monitor, so that nothing changes between the two unseen.
    m_known = store.workspace().value_or(WorkspaceStandIn());
}

WorkspaceWatch::~WorkspaceWatch()
{
    if (m_monitor)
        g_file_monitor_cancel(m_monitor.get());
}

void WorkspaceWatch::fileChanged()
{
    const auto now = m_store.workspace();
    if (!now)
        return;
    for (auto& change : changesBetween(std::exchange(m_known, *now), *now))
        m_mainThread.post(m_life.guard([this, change = std::move(change)] {
            const auto handler = m_handler; // It may destroy this object.
            handler(change);
        }));
}

}
