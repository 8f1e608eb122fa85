#pragma once

#include "base/OrderedCalls.h"
#include "platform/MainLoop.h"
#include "web/NavigationTracker.h"

#include <functional>
#include <memory>

namespace brevanta {

// Tells a web view's delegate what NavigationTracker makes of the engine's events, and gives up a load of the client's
// of which nothing has come for its time. Main thread only.
class NavigationReporter {
public:
    struct Engine {
        std::function<void()> stop; // Whatever it loads.
        std::function<void()> load; // What the client has asked for. Never called for an engine that names navigations.
    };

    static constexpr double reloadTimeoutSeconds = 60;

    // Main loop and delegate live until `end`.
    NavigationReporter(MainLoop& mainLoop, WebNavigationDelegate& delegate, Engine engine);
    NavigationReporter(const NavigationReporter&) = delete;
    NavigationReporter& operator=(const NavigationReporter&) = delete;

    // Each event that the tracker is given leads to notices, which are to be told.
    [[nodiscard]] NavigationTracker& tracker() { return m_tracker; }
    [[nodiscard]] const NavigationTracker& tracker() const { return m_tracker; }
    void tell(const NavigationTracker::Notices& notices);

    // As NavigationTracker::requested. The load fails as timed out when nothing has come for so long before its end.
    [[nodiscard]] WebNavigation requested(
        double timeoutSeconds, const WebNavigation& name = nullptr, const std::optional<Url>& viewUrl = {});
    // Something has come, or can come again.
    void progressed();
    // Nothing can come until `progressed`: the page waits for the user.
    void pause() { m_timer.reset(); }

    // The calls to the delegate, held back while a method of the web view runs.
    [[nodiscard]] OrderedCalls& calls() { return m_calls; }

    // From now on nobody is told and nothing is given up.
    void end();

private:
    void tellDelegate(const NavigationNotice& notice);
    void timedOut();

    MainLoop& m_mainLoop;
    WebNavigationDelegate& m_delegate;
    Engine m_engine;
    NavigationTracker m_tracker;
    OrderedCalls m_calls;
    WebNavigation m_timed; // The load that the timer is for.
    double m_timeoutSeconds { 0 };
    std::unique_ptr<Timer> m_timer;
};

}
