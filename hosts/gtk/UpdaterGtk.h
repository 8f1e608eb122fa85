#pragma once

#include "base/LifeToken.h"
#include "gtk/GObjectPtr.h"
#include "gtk/SignalConnections.h"
#include "gtk/standin/StandInStore.h"
#include "platform/Updater.h"

#include <filesystem>
#include <optional>
#include <string>

namespace brevanta {

class AlertPanel;
class SystemLog;
struct Alert;

// What stands for an updater on the bench: a file of the development root says which version is offered
// (tools/system/README.md). Nothing is fetched; the version that the user takes is no longer offered afterwards.
class UpdaterGtk final : public Updater {
public:
    struct Dependencies {
        AlertPanel& alerts;
        SystemLog& log;
        std::filesystem::path root;
        std::string version; // Of the application that runs.
        std::function<void()> relaunch; // Ends the application and has it started anew.
    };

    explicit UpdaterGtk(Dependencies dependencies);
    ~UpdaterGtk() override;
    UpdaterGtk(const UpdaterGtk&) = delete;
    UpdaterGtk& operator=(const UpdaterGtk&) = delete;

    void start(RelaunchHandler handler) override;
    [[nodiscard]] bool automaticChecks() const override;
    void setAutomaticChecks(bool on) override;
    void checkNow() override;

private:
    void watch();
    void fileChanged();
    void offer(const std::string& version);
    void askToRelaunch(const std::string& version);
    void relaunch(const std::string& version);
    void tell(const std::string& message, const std::string& text);
    [[nodiscard]] static std::string identifierOf(const std::string& version);

    Dependencies m_dependencies;
    StandInStore m_store;
    RelaunchHandler m_handler;
    std::optional<std::string> m_told; // The version that was offered to the user last, while the file offers it.
    GObjectPtr<GFileMonitor> m_monitor;
    SignalConnections m_connections;
    LifeToken m_life;
};

}
