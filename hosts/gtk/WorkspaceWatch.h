#pragma once

#include "base/LifeToken.h"
#include "gtk/GObjectPtr.h"
#include "gtk/SignalConnections.h"
#include "gtk/standin/StandInStore.h"

#include <functional>

namespace brevanta {

class Executor;

// Watches the stand-in of the applications that run, in a file of the development root that commands change meanwhile
// (tools/system/README.md). A file that cannot be read says nothing: what was known before goes on. Main thread only.
class WorkspaceWatch {
public:
    // The handler is told of each change from now on, in order, and never from inside a call of this class.
    WorkspaceWatch(
        Executor& mainThread, const StandInStore& store, std::function<void(const WorkspaceChange&)> handler);
    ~WorkspaceWatch();
    WorkspaceWatch(const WorkspaceWatch&) = delete;
    WorkspaceWatch& operator=(const WorkspaceWatch&) = delete;

private:
    void fileChanged();

    Executor& m_mainThread;
    const StandInStore& m_store;
    std::function<void(const WorkspaceChange&)> m_handler;
    WorkspaceStandIn m_known;
    GObjectPtr<GFileMonitor> m_monitor;
    SignalConnections m_connections;
    LifeToken m_life;
};

}
