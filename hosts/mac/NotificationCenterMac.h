#pragma once

#include "mac/CompletionTable.h"
#include "platform/NotificationCenter.h"

#import <UserNotifications/UserNotifications.h>

#include <functional>
#include <memory>
#include <vector>

NS_ASSUME_NONNULL_BEGIN

// Shows notifications also while the application is in front, and tells of clicks (documentation page
// UNUserNotificationCenterDelegate).
@interface BrevantaNotificationDelegate : NSObject <UNUserNotificationCenterDelegate>

// Called on the thread that the system chooses. Set before the delegate is.
@property (nonatomic) std::function<void(brevanta::NotificationResponse)> clicked;

@end

namespace brevanta {

// The user's notification center (documentation page UNUserNotificationCenter). A process without an application bundle
// has no notification center: every add fails, and it is not authorized. Created before the application has finished
// launching, so that the click that started it is not missed.
class NotificationCenterMac final : public NotificationCenter {
public:
    explicit NotificationCenterMac(MainLoop& mainLoop);

    void add(
        const Notification& notification, std::function<void(std::expected<void, NotificationError>)> onEnd) override;
    void getAuthorization(std::function<void(NotificationAuthorization)> onEnd) override;
    void requestAuthorization(std::function<void(NotificationAuthorizationAnswer)> onEnd) override;
    void removeDelivered(const std::vector<std::string>& identifiers) override;
    void setResponseHandler(std::function<void(const NotificationResponse&)> handler) override;

private:
    using Outcome = std::expected<void, NotificationError>;

    // The clicks until somebody takes them. Main thread only.
    struct Inbox {
        std::function<void(const NotificationResponse&)> handler;
        std::vector<NotificationResponse> responses;
    };

    static void tell(const std::weak_ptr<Inbox>& inbox);

    MainLoop& m_mainLoop;
    std::shared_ptr<Inbox> m_inbox { std::make_shared<Inbox>() };
    CompletionTable<Outcome> m_additions;
    CompletionTable<NotificationAuthorization> m_authorizations;
    CompletionTable<NotificationAuthorizationAnswer> m_requests;
    UNUserNotificationCenter* _Nullable m_center;
    BrevantaNotificationDelegate* m_delegate; // The center holds its delegate weakly.
};

}

NS_ASSUME_NONNULL_END
