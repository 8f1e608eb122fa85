#pragma once

#include <string>

namespace brevanta {

class NotificationCenter;
class SystemLog;

// The one path by which the client posts notifications. Main thread only.
class NotificationHelper {
public:
    NotificationHelper(NotificationCenter& center, SystemLog& log);

    // Delivers at once; a notification on screen with the same identifier is replaced. A failure is logged, and the
    // notification dropped.
    void post(const std::string& title, const std::string& body, const std::string& identifier);

private:
    NotificationCenter& m_center;
    SystemLog& m_log;
};

}
