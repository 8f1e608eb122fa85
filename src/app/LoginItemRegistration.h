#pragma once

#include "base/LifeToken.h"
#include "platform/LoginItem.h"

#include <memory>
#include <optional>

namespace brevanta {

class MainLoop;
class SystemLog;
class Timer;

// Seconds from the failed attempt with this number, the first being 1, to the next one; nothing after the last.
[[nodiscard]] std::optional<double> secondsToNextLoginItemAttempt(int failedAttempt);

// Has the system start the application at each login, unless it does or the user has switched that off. What fails is
// tried again a few times: right after an update the system may not know the application yet. Main thread only.
class LoginItemRegistration {
public:
    LoginItemRegistration(LoginItem& item, MainLoop& mainLoop, SystemLog& log);
    ~LoginItemRegistration();
    LoginItemRegistration(const LoginItemRegistration&) = delete;
    LoginItemRegistration& operator=(const LoginItemRegistration&) = delete;

    // Once.
    void begin();

private:
    void statusArrived(LoginItemStatus status);
    void attempt();
    void ended(const std::expected<void, LoginItemError>& result);

    LoginItem& m_item;
    MainLoop& m_mainLoop;
    SystemLog& m_log;
    int m_attempts { 0 };
    std::unique_ptr<Timer> m_retry;
    LifeToken m_life;
};

}
