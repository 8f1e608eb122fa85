#include "setup/DeviceSetupNavigation.h"

#include "base/Text.h"

namespace brevanta {

namespace {

constexpr double throttleSeconds = 2.0;

}

bool DeviceSetupNavigation::isDeviceSetupLink(const Url& url)
{
    std::string_view path = url.path;
    if (path.size() >= 2 && path.ends_with('/'))
        path.remove_suffix(1);
    return lowerCased(url.scheme) == "brevanta" && lowerCased(url.host) == "open" && !url.user && !url.password
        && !url.port && path == "/device-setup";
}

bool DeviceSetupNavigation::Throttle::accepts(double uptime)
{
    if (m_lastAcceptedAt && *m_lastAcceptedAt <= uptime && uptime - *m_lastAcceptedAt < throttleSeconds)
        return false;
    m_lastAcceptedAt = uptime;
    return true;
}

}
