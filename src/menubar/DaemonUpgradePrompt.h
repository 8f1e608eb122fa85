#pragma once

#include "base/LifeToken.h"
#include "install/DaemonUpgradePolicy.h"

#include <functional>
#include <optional>

namespace brevanta {

class AppAlertPresenter;
class SystemLog;

// Offers to update an older blocking service, once per process. Main thread only.
class DaemonUpgradePrompt {
public:
    struct Dependencies {
        AppAlertPresenter& alerts;
        SystemLog& log;
        std::function<std::optional<DaemonUpgradePolicy::Decision>()> decide; // Nothing: not decidable yet.
        std::function<bool()> isOnboarding; // Whether the page leads the user through the set-up.
        std::function<void()> beginInstall;
    };

    explicit DaemonUpgradePrompt(Dependencies dependencies);

    // Shows or takes back the offer, by what is true now. Called at each tick and whenever something was learnt.
    void update();

private:
    void updateChosen();

    Dependencies m_dependencies;
    bool m_isShown { false }; // It was, in this process.
    bool m_isOnScreen { false };
    LifeToken m_life;
};

}
