#pragma once

#include "base/LifeToken.h"
#include "daemon/StatusConsumer.h"
#include "install/RemovalScript.h"

#include <optional>

namespace brevanta {

class AppAlertPresenter;
class Clock;
class RemovalShellController;
class ServiceInstallation;
class ServiceManager;
class SystemLog;
struct AlertResponse;

// Offers to finish a removal that the service has begun and does not end, and has an administrator finish it. A removal
// for which that was declined is not offered again; one that failed is, a minute later. Main thread only.
class RemovalCompletion final : public StatusConsumer {
public:
    struct Dependencies {
        const RemovalShellController& removal; // Is told of each poll first.
        ServiceInstallation& installation;
        const ServiceManager& services;
        const Clock& clock;
        AppAlertPresenter& alerts;
        SystemLog& log;
    };

    explicit RemovalCompletion(Dependencies dependencies);

    void consume(const std::shared_ptr<const BlockingStatus>&) override { update(); }
    void serviceFailed(const DaemonFailure&) override { update(); }

private:
    void update();
    [[nodiscard]] std::optional<RemovalHandover> overdue() const;
    void answered(const AlertResponse& response);

    Dependencies m_dependencies;
    bool m_isOffered { false };
    std::optional<RemovalHandover> m_declined;
    double m_notBefore { 0 }; // Continuous seconds.
    LifeToken m_life;
};

}
