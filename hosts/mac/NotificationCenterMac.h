#pragma once

#include "mac/CompletionTable.h"
#include "platform/NotificationCenter.h"

#import <UserNotifications/UserNotifications.h>

#include <vector>

NS_ASSUME_NONNULL_BEGIN

// Shows notifications also while the application is in front (documentation page UNUserNotificationCenterDelegate).
@interface BrevantaNotificationDelegate : NSObject <UNUserNotificationCenterDelegate>
@end

namespace brevanta {

// The user's notification center (documentation page UNUserNotificationCenter). The first notification asks the user
// for permission unless that was done before; it and those after it are added when the answer has come. A process
// without an application bundle has no notification center: every add fails, and it is not authorized. Created before
// the application has finished launching.
class NotificationCenterMac final : public NotificationCenter {
public:
    explicit NotificationCenterMac(MainLoop& mainLoop);

    void add(
        const Notification& notification, std::function<void(std::expected<void, NotificationError>)> onEnd) override;
    void getAuthorization(std::function<void(NotificationAuthorization)> onEnd) override;
    void requestAuthorization(std::function<void(NotificationAuthorization)> onEnd) override;
    void removeDelivered(const std::vector<std::string>& identifiers) override;

private:
    enum class Question { notAsked, asking, answered };

    using Outcome = std::expected<void, NotificationError>;

    struct Pending {
        UNNotificationRequest* request;
        std::function<void(Outcome)> finish;
    };

    void authorizationAnswered();
    void addNow(const Pending& pending);

    CompletionTable<Outcome> m_additions;
    CompletionTable<NotificationAuthorization> m_authorizations;
    UNUserNotificationCenter* _Nullable m_center;
    BrevantaNotificationDelegate* m_delegate; // The center holds its delegate weakly.
    Question m_question { Question::notAsked };
    std::vector<Pending> m_pending;
};

}

NS_ASSUME_NONNULL_END
