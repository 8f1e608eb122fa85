#include "app/WindowAtLaunch.h"

#include "base/Text.h"

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

}
