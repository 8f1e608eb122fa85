#pragma once

#include "base/LifeToken.h"
#include "platform/NotificationCenter.h"

#include <deque>
#include <expected>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace brevanta {

class MainLoop;
class Timer;

// When a notification is no longer to be posted; asked at the moment of posting.
struct PostLimits {
    std::optional<double> deadline {}; // In continuous seconds: not after it.
    std::function<bool()> stillWanted {}; // Empty for always.
};

struct PostError {
    enum class Kind {
        failed, // The system did not take it.
        denied, // The user does not allow notifications, or has not decided.
        unanswered, // Nobody said in time whether notifications are allowed.
        late, // Its deadline had passed.
        unwanted,
    };

    Kind kind { Kind::failed };
    std::string message {}; // The system's own words, for `failed`, and perhaps for `denied`.

    bool operator==(const PostError&) const = default;
};

// The notification center, and the permission to use it: what is posted before the user's answer is known waits for it.
// Main thread only.
class SystemNotificationCenterClient {
public:
    using OnPosted = std::function<void(std::expected<void, PostError>)>;
    using OnAuthorization = std::function<void(NotificationAuthorization)>;

    // How long a notification waits for the answer, since a later one would tell of what is long past, and for how long
    // a request that is not answered keeps another one from being made.
    static constexpr double longestWait = 120;

    // `monotonicNow` gives continuous seconds.
    SystemNotificationCenterClient(
        NotificationCenter& center, MainLoop& mainLoop, std::function<double()> monotonicNow);
    ~SystemNotificationCenterClient();
    SystemNotificationCenterClient(const SystemNotificationCenterClient&) = delete;
    SystemNotificationCenterClient& operator=(const SystemNotificationCenterClient&) = delete;

    // Posts at once when notifications are known to be allowed. Otherwise the permission is asked for and the post
    // waits: those that wait are posted in their order when it is given, or read as given, and end with an error when
    // it is not given, or after `longestWait`. `onEnd` is called once, perhaps from inside this call, unless this
    // object is destroyed first.
    void post(Notification notification, PostLimits limits, OnPosted onEnd);

    // As in NotificationCenter; a request that finds another one under way gets its answer.
    void getAuthorization(OnAuthorization onEnd);
    void requestAuthorization(OnAuthorization onEnd);

    // Who is told of clicks, as in NotificationCenter.
    void setClient(std::function<void(const NotificationResponse&)> client);

private:
    struct PendingPost {
        Notification notification;
        PostLimits limits;
        OnPosted onEnd;
        double waitsUntil { 0 }; // In continuous seconds.
    };

    void addOrDrop(const PendingPost& post);
    void ask();
    void authorizationAnswered(const NotificationAuthorizationAnswer& answer);
    void dropOverdue();
    void watchPending();

    NotificationCenter& m_center;
    MainLoop& m_mainLoop;
    std::function<void(const NotificationResponse&)> m_client;
    std::function<double()> m_monotonicNow;
    std::optional<double> m_authorizationRequest; // When the one under way was made, in continuous seconds.
    bool m_isAllowed { false }; // As of the last answer.
    std::deque<PendingPost> m_pendingPosts; // The one that has waited longest comes first.
    std::unique_ptr<Timer> m_pendingTimer; // Runs while a post waits.
    std::vector<OnAuthorization> m_authorizationAwaiters;
    LifeToken m_life;
};

}
