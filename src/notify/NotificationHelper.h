#pragma once

#include "base/LifeToken.h"
#include "notify/SystemNotificationCenterClient.h"

#include <string>

namespace brevanta {

class SystemLog;

// The one path by which the client posts notifications. Main thread only.
class NotificationHelper {
public:
    NotificationHelper(SystemNotificationCenterClient& center, SystemLog& log);

    // Delivers at once, or as soon as the user's permission is known; a notification on screen with the same identifier
    // is replaced. The identifier chooses the sound too. What cannot be posted is logged and dropped; that
    // notifications are not allowed is logged once, until they are.
    void post(const std::string& title, const std::string& body, const std::string& identifier,
        NotificationUserInfo userInfo = {}, PostLimits limits = {});

private:
    void postEnded(const std::string& identifier, const std::expected<void, PostError>& result);

    SystemNotificationCenterClient& m_center;
    SystemLog& m_log;
    bool m_denialIsLogged { false };
    LifeToken m_life;
};

}
