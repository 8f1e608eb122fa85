#pragma once

#include "base/LifeToken.h"
#include "daemon/DaemonClient.h"
#include "daemon/StatusConsumer.h"
#include "install/RemovalShell.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace brevanta {

class ServiceInstaller;
class ServiceManager;
class SystemLog;

// Follows the removal of the blocking service through its status replies, and asks for it. Main thread only.
class RemovalShellController final : public StatusConsumer {
public:
    RemovalShellController(
        DaemonClient& daemonClient, const ServiceInstaller& installer, const ServiceManager& services, SystemLog& log);

    void consume(const std::shared_ptr<const BlockingStatus>& status) override;
    void serviceFailed(const DaemonFailure& failure) override;

    // Both send one request; how it went shows in the state. `account` is 1 to 32 decimal digits, and the action is at
    // least 0 and below 2^53; anything else is logged and not sent. Nor is a removal asked for during an install.
    void requestRemoval(const std::string& account);
    void cancelRemoval(std::int64_t actionId, const std::string& account);

    // The service was installed by this client: what was heard of an earlier one no longer counts.
    void serviceInstalled();

    [[nodiscard]] const RemovalShell& shell() const { return m_shell; }

    // Called after every change, for as long as this object lives.
    void addObserver(std::function<void()> observer) { m_observers.push_back(std::move(observer)); }

private:
    void send(const RemovalRequest& request, const std::string& account);
    void changed(RemovalShell::Change change);
    void logStep();

    DaemonClient& m_daemonClient;
    const ServiceInstaller& m_installer;
    const ServiceManager& m_services;
    SystemLog& m_log;
    RemovalShell m_shell;
    std::string m_loggedStep { "none" };
    std::vector<std::function<void()>> m_observers;
    LifeToken m_life;
};

}
