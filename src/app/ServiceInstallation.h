#pragma once

#include "app/InstallHold.h"
#include "install/InstallFlight.h"
#include "platform/ApplicationLifecycle.h"

#include <expected>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace brevanta {

class Administrator;
class AppAlertPresenter;
class FileStore;
class SystemLog;

// Where the service's parts are in the application's bundle, and below the root; or why they are not, in English, for
// the user. `bundle` is empty when it cannot be located.
[[nodiscard]] std::expected<InstallPaths, std::string> bundledInstallPaths(
    const std::filesystem::path& bundle, const std::filesystem::path& root, const FileStore& files);

// The install of the blocking service, and its removal by an administrator, put together: their one flight, the alert
// when it fails, and what waits for its end. Main thread only.
class ServiceInstallation {
public:
    struct Dependencies {
        Administrator& administrator;
        SystemLog& log;
        FileStore& files;
        AppAlertPresenter& alerts;
        ApplicationLifecycle& lifecycle;
        std::filesystem::path bundle;
        std::filesystem::path root;
        std::function<void()> changed; // The install has begun or ended.
        std::function<void(const std::string& report)> failed; // Besides the alert; one line in English.
        std::function<void()> showQuitHeld; // Tells the user that the quit is about to come.
    };

    explicit ServiceInstallation(Dependencies dependencies);
    ServiceInstallation(const ServiceInstallation&) = delete;
    ServiceInstallation& operator=(const ServiceInstallation&) = delete;

    [[nodiscard]] InstallFlight& flight() { return m_flight; }

    // Begins an install, or joins the one under way; `onEnd` is called once when it has ended.
    void install(std::function<void()> onEnd);

    // Has an administrator finish the removal, or joins the flight under way; `onEnd` is called once when it has ended.
    void finishRemoval(const RemovalHandover& handover, std::function<void(InstallOutcome)> onEnd);

    // After `later` the termination is answered when the install has ended.
    [[nodiscard]] TerminationDecision shouldTerminate();

    // After `later`, `relaunch` is called once when the install has ended; after `now` it is dropped.
    [[nodiscard]] RelaunchDecision shouldRelaunch(std::function<void()> relaunch);

private:
    enum class Answer { allowed, putOff };

    Answer feed(const InstallHold::Event& event);
    void carryOut(const InstallHold::Command& command);
    void relaunch();
    [[nodiscard]] InstallHold::Install underWay() const;
    void showFailure(const InstallFailure& failure);

    Dependencies m_dependencies;
    InstallFlight m_flight;
    InstallHold m_hold;
    std::vector<std::function<void()>> m_relaunches; // Those that were put off.
};

}
