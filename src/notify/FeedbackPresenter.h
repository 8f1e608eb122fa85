#pragma once

#include "notify/DeliveryGeneration.h"
#include "notify/NoticeCopy.h"
#include "notify/NoticeRecords.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace brevanta {

class UserDefaults;

// Tells of applications that the blocking service refused or ended, and of tasks that it resumed: each at most once,
// also over restarts, and nothing for a user who has signed out. Main thread only.
class FeedbackPresenter {
public:
    struct Notification {
        std::string identifier;
        std::string title;
        std::string body;
        std::int64_t generation { 0 }; // Under which it was made.

        bool operator==(const Notification&) const = default;
    };

    struct Batch {
        const std::vector<PendingAppRejection>& rejections;
        const std::vector<PendingTaskResume>& resumes;
        std::optional<bool> notifyMacosAppBlocked; // False: rejections are marked as seen and not shown.
    };

    // The name of the application that an auto-track session is of; nothing when it is not known.
    using ApplicationOfSession = std::function<std::optional<std::string>(const std::string& sessionId)>;

    FeedbackPresenter(UserDefaults& defaults, CurrentNoticeCopy copy, ApplicationOfSession applicationOfSession = {});

    // What is to be posted, in order, rejections first; both kinds of event share one range of identifiers.
    // `generation` is the one of the moment at which the batch was asked for; what belongs to an older one is marked as
    // seen and never shown.
    [[nodiscard]] std::vector<Notification> deliver(const Batch& batch, std::int64_t generation);

private:
    [[nodiscard]] Notification rejected(const PendingAppRejection& rejection, std::int64_t generation) const;
    [[nodiscard]] Notification resumed(const PendingTaskResume& resume, std::int64_t generation) const;
    [[nodiscard]] std::optional<std::string> applicationOf(const std::optional<std::string>& sessionId) const;

    UserDefaults& m_defaults;
    DeliveryGeneration m_generation;
    CurrentNoticeCopy m_copy;
    ApplicationOfSession m_applicationOfSession;
};

}
