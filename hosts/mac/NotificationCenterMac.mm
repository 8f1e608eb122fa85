#include "mac/NotificationCenterMac.h"

#include "mac/TextMac.h"

#include <utility>

@implementation BrevantaNotificationDelegate

- (void)userNotificationCenter:(UNUserNotificationCenter*)center
       willPresentNotification:(UNNotification*)notification
         withCompletionHandler:(void (^)(UNNotificationPresentationOptions options))completionHandler
{
    completionHandler(UNNotificationPresentationOptionBanner | UNNotificationPresentationOptionList
        | UNNotificationPresentationOptionSound);
}

@end

namespace brevanta {

namespace {

// currentNotificationCenter raises an exception in a process that is no bundled application.
UNUserNotificationCenter* _Nullable availableCenter()
{
    NSBundle* const bundle = NSBundle.mainBundle;
    if (!bundle.bundleIdentifier || ![bundle.bundlePath hasSuffix:@".app"])
        return nil;
    return UNUserNotificationCenter.currentNotificationCenter;
}

UNNotificationRequest* requestFor(const Notification& notification)
{
    UNMutableNotificationContent* const content = [[UNMutableNotificationContent alloc] init];
    content.title = displayString(notification.title);
    content.body = displayString(notification.body);
    content.sound = UNNotificationSound.defaultSound;
    return [UNNotificationRequest requestWithIdentifier:displayString(notification.identifier)
                                                content:content
                                                trigger:nil];
}

NotificationAuthorization authorizationFrom(UNAuthorizationStatus status)
{
    switch (status) {
    case UNAuthorizationStatusNotDetermined:
        return NotificationAuthorization::notDetermined;
    case UNAuthorizationStatusAuthorized:
        return NotificationAuthorization::authorized;
    case UNAuthorizationStatusProvisional:
        return NotificationAuthorization::provisional;
    case UNAuthorizationStatusDenied:
        break;
    }
    return NotificationAuthorization::denied;
}

void readAuthorization(UNUserNotificationCenter* center, std::function<void(NotificationAuthorization)> onEnd)
{
    [center getNotificationSettingsWithCompletionHandler:^(
        UNNotificationSettings* settings) { onEnd(authorizationFrom(settings.authorizationStatus)); }];
}

}

NotificationCenterMac::NotificationCenterMac(MainLoop& mainLoop)
    : m_additions(mainLoop)
    , m_authorizations(mainLoop)
    , m_center(availableCenter())
    , m_delegate([[BrevantaNotificationDelegate alloc] init])
{
    m_center.delegate = m_delegate;
}

void NotificationCenterMac::add(
    const Notification& notification, std::function<void(std::expected<void, NotificationError>)> onEnd)
{
    auto finish = m_additions.expect(std::move(onEnd));
    if (!m_center) {
        finish(std::unexpected(NotificationError { "the process has no application bundle" }));
        return;
    }
    Pending pending { requestFor(notification), std::move(finish) };
    if (m_question == Question::answered) {
        addNow(pending);
        return;
    }
    m_pending.push_back(std::move(pending));
    if (m_question == Question::notAsked)
        requestAuthorization([](NotificationAuthorization) { });
}

void NotificationCenterMac::getAuthorization(std::function<void(NotificationAuthorization)> onEnd)
{
    auto finish = m_authorizations.expect(std::move(onEnd));
    if (m_center)
        readAuthorization(m_center, std::move(finish));
    else
        finish(NotificationAuthorization::denied);
}

void NotificationCenterMac::requestAuthorization(std::function<void(NotificationAuthorization)> onEnd)
{
    const auto finish
        = m_authorizations.expect([this, onEnd = std::move(onEnd)](NotificationAuthorization authorization) {
              authorizationAnswered();
              onEnd(authorization);
          });
    UNUserNotificationCenter* const center = m_center;
    if (!center) {
        finish(NotificationAuthorization::denied);
        return;
    }
    if (m_question == Question::notAsked)
        m_question = Question::asking;
    // The settings and not the answer: they tell a provisional permission from a full one.
    [center requestAuthorizationWithOptions:UNAuthorizationOptionAlert | UNAuthorizationOptionSound
                          completionHandler:^(BOOL, NSError*) { readAuthorization(center, finish); }];
}

// Whatever the answer: the system says of each notification by itself that it may not be shown.
void NotificationCenterMac::authorizationAnswered()
{
    m_question = Question::answered;
    for (const Pending& pending : std::exchange(m_pending, {}))
        addNow(pending);
}

void NotificationCenterMac::addNow(const Pending& pending)
{
    const auto finish = pending.finish;
    [m_center addNotificationRequest:pending.request
               withCompletionHandler:^(NSError* error) {
                   if (error)
                       finish(std::unexpected(NotificationError { utf8FromString(error.localizedDescription) }));
                   else
                       finish({});
               }];
}

void NotificationCenterMac::removeDelivered(const std::vector<std::string>& identifiers)
{
    NSMutableArray<NSString*>* const names = [NSMutableArray array];
    for (const std::string& identifier : identifiers)
        [names addObject:displayString(identifier)];
    [m_center removeDeliveredNotificationsWithIdentifiers:names];
}

}
