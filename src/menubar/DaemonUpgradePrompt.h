#pragma once

#include "base/LifeToken.h"
#include "filter/DaemonHealth.h"

#include <functional>
#include <optional>

namespace brevanta {

class AppAlertPresenter;
class SystemLog;

// Offers to update an older blocking service, once per process; an offer that was taken back before it was answered is
// made again. Main thread only.
class DaemonUpgradePrompt {
public:
    struct Dependencies {
        AppAlertPresenter& alerts;
        SystemLog& log;
        std::function<DaemonHealth::State()> serviceState;
        std::function<bool()> isOnboarding; // Whether the page leads the user through the set-up.
        std::function<void()> beginInstall;
    };

    explicit DaemonUpgradePrompt(Dependencies dependencies);

    // Shows or takes back the offer, by what is true now. Called at each tick and whenever something was learnt.
    void update();

private:
    using Upgrade = DaemonUpgradePolicy::Upgrade;

    [[nodiscard]] bool isOutdated(const DaemonHealth::State& state) const;
    void offer(const Upgrade& upgrade);
    void takeBack();
    void updateChosen();

    Dependencies m_dependencies;
    bool m_isShown { false }; // It was, in this process.
    std::optional<Upgrade> m_offer; // On screen, or about to be.
    LifeToken m_life;
};

}
