#pragma once

#include "notify/DeliveryGeneration.h"
#include "notify/NoticeRecords.h"

#include <cstdint>
#include <optional>
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

    // The service has taken the token. Signs in, as above, unless it is that of the user who is signed in: the one that
    // the service took last, or the one that it holds. Any other may be another user's. Tokens stay in memory.
    bool tokenAccepted(const std::string& token, std::int64_t expectedLogoutSequence);

    // What the newest status says.
    void serviceHolds(const std::optional<std::string>& token) { m_heldToken = token; }

    [[nodiscard]] std::int64_t logoutSequence() const { return m_generation.logoutSequence(); }

private:
    UserDefaults& m_defaults;
    DeliveryGeneration m_generation;
    std::optional<std::string> m_acceptedToken;
    std::optional<std::string> m_heldToken;
};

}
