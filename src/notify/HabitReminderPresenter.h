#pragma once

#include "notify/DeliveryGeneration.h"
#include "notify/NoticeRecords.h"

#include <cstdint>
#include <string>
#include <vector>

namespace brevanta {

class UserDefaults;

// Turns habit reminders into notifications: each at most once, also over restarts, and none for a user who has signed
// out. Main thread only.
class HabitReminderPresenter {
public:
    struct Notification {
        std::string identifier;
        std::string title;
        std::string body;
        std::int64_t generation { 0 }; // Under which it was made.

        bool operator==(const Notification&) const = default;
    };

    explicit HabitReminderPresenter(UserDefaults& defaults);

    // What is to be posted, in order. `generation` is the one of the moment at which the reminders were asked for;
    // those of an older one are marked as seen and never shown.
    [[nodiscard]] std::vector<Notification> deliver(
        const std::vector<PendingReminder>& reminders, std::int64_t generation);

    // What is known of the account; for all notices, not only for reminders. As in DeliveryGeneration.
    void signedOut(SignedOut flag) { m_generation.signedOut(flag); }
    bool signedIn(std::int64_t expectedLogoutSequence) { return m_generation.signedIn(expectedLogoutSequence); }
    [[nodiscard]] std::int64_t logoutSequence() const { return m_generation.logoutSequence(); }

private:
    UserDefaults& m_defaults;
    DeliveryGeneration m_generation;
};

}
