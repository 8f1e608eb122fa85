#include "app/WindowAtLaunch.h"

#include "base/Text.h"
#include "platform/Clock.h"
#include "platform/LoginRecords.h"
#include "platform/StatusItem.h"
#include "platform/SystemLog.h"

namespace brevanta {

namespace {

constexpr double loginItemSeconds = 90;

}

WindowAtLaunch windowAtLaunch(std::optional<double> secondsSinceLogin)
{
    const bool rightAfterLogin = secondsSinceLogin && *secondsSinceLogin >= 0 && *secondsSinceLogin < loginItemSeconds;
    return rightAfterLogin ? WindowAtLaunch::hidden : WindowAtLaunch::shown;
}

std::string describeWindowAtLaunch(std::optional<double> secondsSinceLogin)
{
    const bool shown = windowAtLaunch(secondsSinceLogin) == WindowAtLaunch::shown;
    return "[Launch] seconds since console login="
        + (secondsSinceLogin ? formatFixed(*secondsSinceLogin, 1) : std::string("unknown"))
        + " → showsWindow=" + (shown ? "true" : "false");
}

WindowAtLaunch windowAtLaunch(LoginRecords& loginRecords, Clock& clock, const StatusItem& statusItem, SystemLog& log)
{
    const auto login = loginRecords.consoleLoginTime();
    const auto sinceLogin = login ? std::optional(clock.wallSeconds() - *login) : std::nullopt;
    log.log(describeWindowAtLaunch(sinceLogin));
    if (windowAtLaunch(sinceLogin) == WindowAtLaunch::shown)
        return WindowAtLaunch::shown;
    if (statusItem.visibility() != StatusItemVisibility::noHost)
        return WindowAtLaunch::hidden;
    log.log("[Launch] no bar shows the status item: showing the window");
    return WindowAtLaunch::shown;
}

}
