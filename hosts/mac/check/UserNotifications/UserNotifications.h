// Declarations for checking the Mac host without a Mac; see docs/mac-check.md. Not part of any build.
#pragma once

#include <Foundation/Foundation.h>

NS_ASSUME_NONNULL_BEGIN

@class UNUserNotificationCenter;

// Documentation: UNAuthorizationOptions; macOS 10.14.
typedef NS_OPTIONS(NSUInteger, UNAuthorizationOptions) {
    UNAuthorizationOptionSound = 1 << 1,
    UNAuthorizationOptionAlert = 1 << 2
};

// Documentation: UNAuthorizationStatus; macOS 10.14. Ephemeral, the fifth, is not for the Mac.
typedef NS_ENUM(NSInteger, UNAuthorizationStatus) {
    UNAuthorizationStatusNotDetermined = 0,
    UNAuthorizationStatusDenied = 1,
    UNAuthorizationStatusAuthorized = 2,
    UNAuthorizationStatusProvisional = 3
};

// Documentation: UNNotificationSettings; macOS 10.14.
@interface UNNotificationSettings : NSObject
@property (nonatomic, readonly) UNAuthorizationStatus authorizationStatus;
@end

// Documentation: UNNotificationPresentationOptions; macOS 10.14; Banner and List macOS 11.0.
typedef NS_OPTIONS(NSUInteger, UNNotificationPresentationOptions) {
    UNNotificationPresentationOptionSound = 1 << 1,
    UNNotificationPresentationOptionList = 1 << 3,
    UNNotificationPresentationOptionBanner = 1 << 4
};

// Documentation: UNNotificationSound; macOS 10.14.
@interface UNNotificationSound : NSObject
@property (class, readonly, copy) UNNotificationSound* defaultSound;
+ (instancetype)soundNamed:(NSString*)name;
@end

// Documentation: UNNotificationContent; macOS 10.14.
@interface UNNotificationContent : NSObject
@property (nonatomic, readonly, copy) NSDictionary* userInfo;
@end

// Documentation: UNMutableNotificationContent; macOS 10.14.
@interface UNMutableNotificationContent : UNNotificationContent
@property (nonatomic, copy) NSString* title;
@property (nonatomic, copy) NSString* body;
@property (nonatomic, copy, nullable) UNNotificationSound* sound;
@property (nonatomic, copy) NSDictionary* userInfo;
@end

// Documentation: UNNotificationTrigger; macOS 10.14.
@interface UNNotificationTrigger : NSObject
@end

// Documentation: UNNotificationRequest; macOS 10.14.
@interface UNNotificationRequest : NSObject
+ (instancetype)requestWithIdentifier:(NSString*)identifier
                              content:(UNNotificationContent*)content
                              trigger:(nullable UNNotificationTrigger*)trigger;
@property (nonatomic, readonly, copy) NSString* identifier;
@property (nonatomic, readonly, copy) UNNotificationContent* content;
@end

// Documentation: UNNotification; macOS 10.14.
@interface UNNotification : NSObject
@property (nonatomic, readonly, copy) UNNotificationRequest* request;
@end

// Documentation: UNNotificationDefaultActionIdentifier; macOS 10.14.
extern NSString* const UNNotificationDefaultActionIdentifier;

// Documentation: UNNotificationResponse; macOS 10.14.
@interface UNNotificationResponse : NSObject
@property (nonatomic, readonly, copy) UNNotification* notification;
@property (nonatomic, readonly, copy) NSString* actionIdentifier;
@end

// Documentation: UNUserNotificationCenterDelegate; macOS 10.14.
@protocol UNUserNotificationCenterDelegate <NSObject>
@optional
- (void)userNotificationCenter:(UNUserNotificationCenter*)center
       willPresentNotification:(UNNotification*)notification
         withCompletionHandler:(void (^)(UNNotificationPresentationOptions options))completionHandler;
- (void)userNotificationCenter:(UNUserNotificationCenter*)center
    didReceiveNotificationResponse:(UNNotificationResponse*)response
             withCompletionHandler:(void (^)(void))completionHandler;
@end

// Documentation: UNUserNotificationCenter; macOS 10.14. The completion handlers may run on a background thread.
@interface UNUserNotificationCenter : NSObject
+ (UNUserNotificationCenter*)currentNotificationCenter;
@property (nullable, weak) id<UNUserNotificationCenterDelegate> delegate;
- (void)requestAuthorizationWithOptions:(UNAuthorizationOptions)options
                      completionHandler:(void (^)(BOOL granted, NSError* _Nullable error))completionHandler;
- (void)getNotificationSettingsWithCompletionHandler:(void (^)(UNNotificationSettings* settings))completionHandler;
- (void)addNotificationRequest:(UNNotificationRequest*)request
         withCompletionHandler:(nullable void (^)(NSError* _Nullable error))completionHandler;
- (void)removeDeliveredNotificationsWithIdentifiers:(NSArray<NSString*>*)identifiers;
@end

NS_ASSUME_NONNULL_END
