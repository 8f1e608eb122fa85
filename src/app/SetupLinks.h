#pragma once

#include "setup/DeviceSetupNavigation.h"

namespace brevanta {

class Clock;
class SystemLog;
class WebViewWindow;
struct Url;

// The links with which the system calls the application, before there is a window and after. Main thread only.
class SetupLinks {
public:
    SetupLinks(Clock& clock, SystemLog& log);

    // A link that is not one of the application's is logged, and nothing else happens.
    void arrived(const Url& url);

    // Once. A link that came before it, and so started the application, is handed to the window now.
    void windowCreated(WebViewWindow& window);

private:
    void handOver();

    Clock& m_clock;
    SystemLog& m_log;
    WebViewWindow* m_window { nullptr };
    DeviceSetupNavigation::Throttle m_linkThrottle;
    bool m_launchLinkPending { false };
};

}
