#include "mac/NotificationCenterMac.h"

#include "mac/TextMac.h"

#include <utility>

namespace brevanta {

namespace {

// Only text is ours.
NotificationResponse responseFrom(UNNotificationRequest* request)
{
    NotificationResponse response { .identifier = utf8FromString(request.identifier), .userInfo = {} };
    NSDictionary* const userInfo = request.content.userInfo;
    for (id key in userInfo) {
        const id value = [userInfo objectForKey:key];
        if ([key isKindOfClass:[NSString class]] && [value isKindOfClass:[NSString class]])
            response.userInfo.emplace(utf8FromString(key), utf8FromString(value));
    }
    return response;
}

}

}

@implementation BrevantaNotificationDelegate

- (void)userNotificationCenter:(UNUserNotificationCenter*)center
       willPresentNotification:(UNNotification*)notification
         withCompletionHandler:(void (^)(UNNotificationPresentationOptions options))completionHandler
{
    completionHandler(UNNotificationPresentationOptionBanner | UNNotificationPresentationOptionList
        | UNNotificationPresentationOptionSound);
}

- (void)userNotificationCenter:(UNUserNotificationCenter*)center
    didReceiveNotificationResponse:(UNNotificationResponse*)response
             withCompletionHandler:(void (^)(void))completionHandler
{
    // Taking a notification away is a response as well.
    if ([response.actionIdentifier isEqualToString:UNNotificationDefaultActionIdentifier])
        self.clicked(brevanta::responseFrom(response.notification.request));
    completionHandler();
}

@end

namespace brevanta {

namespace {

constexpr auto noBundle = "the process has no application bundle";

// currentNotificationCenter raises an exception in a process that is no bundled application.
UNUserNotificationCenter* _Nullable availableCenter()
{
    NSBundle* const bundle = NSBundle.mainBundle;
    if (!bundle.bundleIdentifier || ![bundle.bundlePath hasSuffix:@".app"])
        return nil;
    return UNUserNotificationCenter.currentNotificationCenter;
}

NSDictionary<NSString*, NSString*>* dictionaryFrom(const NotificationUserInfo& userInfo)
{
    NSMutableDictionary<NSString*, NSString*>* const dictionary = [NSMutableDictionary dictionary];
    for (const auto& [key, value] : userInfo)
        [dictionary setObject:displayString(value) forKey:displayString(key)];
    return dictionary;
}

UNNotificationRequest* requestFor(const Notification& notification)
{
    UNMutableNotificationContent* const content = [[UNMutableNotificationContent alloc] init];
    content.title = displayString(notification.title);
    content.body = displayString(notification.body);
    // The system looks in the bundle and in Library/Sounds, and plays its own sound when there is none of the name.
    content.sound = notification.sound ? [UNNotificationSound soundNamed:displayString(*notification.sound)]
                                       : UNNotificationSound.defaultSound;
    if (!notification.userInfo.empty())
        content.userInfo = dictionaryFrom(notification.userInfo);
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
    : m_mainLoop(mainLoop)
    , m_additions(mainLoop)
    , m_authorizations(mainLoop)
    , m_requests(mainLoop)
    , m_center(availableCenter())
    , m_delegate([[BrevantaNotificationDelegate alloc] init])
{
    m_delegate.clicked = [loop = &mainLoop, inbox = std::weak_ptr(m_inbox)](NotificationResponse response) {
        loop->post([inbox, response = std::move(response)] {
            if (const auto open = inbox.lock())
                open->responses.push_back(response);
            tell(inbox);
        });
    };
    m_center.delegate = m_delegate;
}

void NotificationCenterMac::add(
    const Notification& notification, std::function<void(std::expected<void, NotificationError>)> onEnd)
{
    const auto finish = m_additions.expect(std::move(onEnd));
    if (!m_center) {
        finish(std::unexpected(NotificationError { noBundle }));
        return;
    }
    [m_center addNotificationRequest:requestFor(notification)
               withCompletionHandler:^(NSError* error) {
                   if (error)
                       finish(std::unexpected(NotificationError { utf8FromString(error.localizedDescription) }));
                   else
                       finish({});
               }];
}

void NotificationCenterMac::getAuthorization(std::function<void(NotificationAuthorization)> onEnd)
{
    auto finish = m_authorizations.expect(std::move(onEnd));
    if (m_center)
        readAuthorization(m_center, std::move(finish));
    else
        finish(NotificationAuthorization::denied);
}

void NotificationCenterMac::requestAuthorization(std::function<void(NotificationAuthorizationAnswer)> onEnd)
{
    const auto finish = m_requests.expect(std::move(onEnd));
    UNUserNotificationCenter* const center = m_center;
    if (!center) {
        finish({ .authorization = NotificationAuthorization::denied, .error = noBundle });
        return;
    }
    // The settings and not the answer: they tell a provisional permission from a full one.
    [center requestAuthorizationWithOptions:UNAuthorizationOptionAlert | UNAuthorizationOptionSound
                          completionHandler:^(BOOL, NSError* error) {
                              const std::string reason = utf8FromString(error.localizedDescription);
                              readAuthorization(center, [finish, reason](NotificationAuthorization authorization) {
                                  finish({ .authorization = authorization, .error = reason });
                              });
                          }];
}

void NotificationCenterMac::removeDelivered(const std::vector<std::string>& identifiers)
{
    NSMutableArray<NSString*>* const names = [NSMutableArray array];
    for (const std::string& identifier : identifiers)
        [names addObject:displayString(identifier)];
    [m_center removeDeliveredNotificationsWithIdentifiers:names];
}

void NotificationCenterMac::setResponseHandler(std::function<void(const NotificationResponse&)> handler)
{
    m_inbox->handler = std::move(handler);
    m_mainLoop.post([inbox = std::weak_ptr(m_inbox)] { tell(inbox); });
}

void NotificationCenterMac::tell(const std::weak_ptr<Inbox>& inbox)
{
    const auto open = inbox.lock();
    if (!open || !open->handler)
        return;
    const auto handler = open->handler;
    for (const NotificationResponse& response : std::exchange(open->responses, {}))
        handler(response);
}

}
