#pragma once

#include <optional>
#include <string>

namespace brevanta {

enum class WindowAtLaunch { hidden, shown };

// Right after a login the application was most likely started as a login item, and stays out of the way. The argument
// is the seconds since the console user logged in; nothing when unknown. Not-a-number counts as unknown.
[[nodiscard]] WindowAtLaunch windowAtLaunch(std::optional<double> secondsSinceLogin);

// The log line of that decision.
[[nodiscard]] std::string describeWindowAtLaunch(std::optional<double> secondsSinceLogin);

}
