#pragma once

#include "app/AppLocationPolicy.h"
#include "base/LifeToken.h"

#include <memory>

namespace brevanta {

class AlertPanel;
class ApplicationLifecycle;
class MainLoop;
class SystemLog;
class Timer;
class Workspace;
struct AlertResponse;

enum class LaunchPermission { granted, refused };

// Keeps the client from running from a place where it cannot work. Main thread only.
class AppLocationGate {
public:
    struct Dependencies {
        MainLoop& mainLoop;
        SystemLog& log;
        ApplicationLifecycle& lifecycle;
        AlertPanel& alerts;
        Workspace& workspace;
    };

    explicit AppLocationGate(Dependencies dependencies);
    ~AppLocationGate();
    AppLocationGate(const AppLocationGate&) = delete;
    AppLocationGate& operator=(const AppLocationGate&) = delete;

    // Whether the launch may go on. After `refused` an alert says what to do, and its end is the application's.
    [[nodiscard]] LaunchPermission check(const AppLocationPolicy::Context& context);

private:
    void alertEnded(const AlertResponse& response, const std::filesystem::path& applications);
    void terminate();

    Dependencies m_dependencies;
    std::unique_ptr<Timer> m_limit;
    LifeToken m_life;
};

}
