#include "app/SetupLinks.h"

#include "base/Text.h"
#include "platform/Clock.h"
#include "platform/SystemLog.h"
#include "web/WebViewWindow.h"

namespace brevanta {

SetupLinks::SetupLinks(Clock& clock, SystemLog& log)
    : m_clock(clock)
    , m_log(log)
{
}

void SetupLinks::arrived(const Url& url)
{
    if (!DeviceSetupNavigation::isDeviceSetupLink(url))
        return m_log.log("[URLScheme] ignoring an unknown link (scheme=" + clipped(url.scheme, maxLoggedBytes)
            + ", host=" + clipped(url.host, maxLoggedBytes) + ")");
    if (!m_linkThrottle.accepts(m_clock.uptimeSeconds()))
        return m_log.log("[URLScheme] open/device-setup throttled");
    if (!m_window) {
        m_launchLinkPending = true;
        return;
    }
    m_log.log("[URLScheme] open/device-setup: bringing the window to the front");
    handOver();
}

void SetupLinks::windowCreated(WebViewWindow& window)
{
    m_window = &window;
    if (!m_launchLinkPending)
        return;
    m_log.log("[URLScheme] open/device-setup launched the app: bringing the window to the front");
    m_launchLinkPending = false;
    handOver();
}

void SetupLinks::handOver()
{
    m_window->bringToFront();
    m_window->deviceSetupLinkArrived();
}

}
