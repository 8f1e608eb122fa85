#pragma once

#include "notify/NoticeRecords.h"
#include "platform/NotificationCenter.h"

#include <cstdint>
#include <string>
#include <vector>

namespace brevanta {

class UserDefaults;

// Turns local alerts into notifications: each at most once, also over restarts, and none for a user who has signed out.
// Main thread only.
class LocalAlertPresenter {
public:
    struct Notification {
        std::string identifier;
        std::string title;
        std::string body;
        std::int64_t generation { 0 }; // Under which it was made.
        double deadlineMono { 0 }; // In continuous seconds; later it is not to be shown any more.
        NotificationUserInfo userInfo; // "open": what a click opens, if the alert says so.

        bool operator==(const Notification&) const = default;
    };

    explicit LocalAlertPresenter(UserDefaults& defaults);

    // What is to be posted, in order. `generation` is the one of the moment at which the alerts were asked for; those
    // of an older one are marked as seen and never shown. `now` is in continuous seconds.
    [[nodiscard]] std::vector<Notification> deliver(
        const std::vector<PendingLocalAlert>& alerts, std::int64_t generation, double now);

private:
    UserDefaults& m_defaults;
};

}
