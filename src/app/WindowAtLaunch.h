#pragma once

#include <optional>
#include <string>

namespace brevanta {

class Clock;
class LoginRecords;
class StatusItem;
class SystemLog;

enum class WindowAtLaunch { hidden, shown };

// Right after a login the application was most likely started as a login item, and stays out of the way. The argument
// is the seconds since the console user logged in; nothing when unknown. Not-a-number counts as unknown.
[[nodiscard]] WindowAtLaunch windowAtLaunch(std::optional<double> secondsSinceLogin);

// The log line of that decision.
[[nodiscard]] std::string describeWindowAtLaunch(std::optional<double> secondsSinceLogin);

// The same decision by what the system says, which is logged. Where nothing shows the status item the window is shown
// in any case: the application could not be found otherwise. Main thread only.
[[nodiscard]] WindowAtLaunch windowAtLaunch(
    LoginRecords& loginRecords, Clock& clock, const StatusItem& statusItem, SystemLog& log);

}
