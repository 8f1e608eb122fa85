#pragma once

#include "base/LifeToken.h"
#include "filter/LaunchFilterActivationPolicy.h"

#include <functional>
#include <optional>

namespace brevanta {

class ComponentMonitor;
class NotificationCenter;
class SystemLog;
struct LaunchActivationOutcome;

// Reads the content filter's state with each tick, and decides at launch whether the system is asked to replace an
// older extension. Main thread only.
class ContentFilterPass {
public:
    struct Dependencies {
        ComponentMonitor& monitor;
        NotificationCenter& notifications;
        SystemLog& log;
        std::function<void()> onRead; // Something was read: the lines may have changed.
        std::function<void(const LaunchActivationOutcome&)> onSettled; // Once: there is nothing to wait for any more.
    };

    explicit ContentFilterPass(Dependencies dependencies);
    ~ContentFilterPass();
    ContentFilterPass(const ContentFilterPass&) = delete;
    ContentFilterPass& operator=(const ContentFilterPass&) = delete;

    // Begins a pass; its answers come later.
    void run();

private:
    void answersArrived();
    void withdrawApprovalNotice();
    void applyLaunchPolicy();
    void activate();
    void settle(const LaunchActivationOutcome& outcome);

    Dependencies m_dependencies;
    bool m_activateAttempted { false };
    bool m_isSettled { false };
    bool m_noticeMayBeShown { true }; // One of an earlier run may still be on screen.
    std::optional<LaunchFilterActivationPolicy::Decision> m_lastDecision;
    LifeToken m_life;
};

}
