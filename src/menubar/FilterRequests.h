#pragma once

#include "base/LifeToken.h"
#include "filter/FilterRequestEnd.h"

#include <functional>
#include <vector>

namespace brevanta {

class AppAlertPresenter;
class FilterManager;
class FilterSettingsGuide;
class SystemLog;

// What the user asks for in the menu or on the page: decides what follows when a request for the content filter has
// ended or waits, and tells the user. Main thread only.
class FilterRequests {
public:
    struct Dependencies {
        FilterManager& manager;
        FilterSettingsGuide& guide;
        AppAlertPresenter& alerts;
        SystemLog& log;
        std::function<void()> changed; // A request has ended, or waits for the user.
    };

    explicit FilterRequests(Dependencies dependencies);

    // Has the filter activated and then switched on. `completion` is called once: when that has ended, or has come to
    // wait for the user's approval.
    void activate(std::function<void()> completion);

    void remove();

private:
    void activationTold(const FilterRequestEnd& end);
    void configure();
    void activationEnded(const FilterRequestEnd& end);
    void notifyCallers();
    void tellOf(const FilterRequestEnd& end, const char* failureIdentifier, const char* failureMessage);

    Dependencies m_dependencies;
    bool m_isActivating { false };
    std::vector<std::function<void()>> m_callers; // Those that have not been called.
    LifeToken m_life;
};

}
