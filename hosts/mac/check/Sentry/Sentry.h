// Declarations for checking the Mac host without a Mac; see docs/mac-check.md. Not part of any build. The pages are
// those of https://docs.sentry.io/platforms/apple/ for version 8 of the SDK, which needs macOS 10.13.
#pragma once

#include <Foundation/Foundation.h>

NS_ASSUME_NONNULL_BEGIN

// Documentation: enriching-events/breadcrumbs; macOS 10.13.
@interface SentryBreadcrumb : NSObject
@property (nullable, nonatomic, copy) NSString* message;
@property (nullable, nonatomic, strong) NSDictionary<NSString*, id>* data;
@end

// Documentation: usage (capturing messages); macOS 10.13.
@interface SentryMessage : NSObject
- (instancetype)initWithFormatted:(NSString*)formatted;
@property (nonatomic, readonly, copy) NSString* formatted;
@end

// Documentation: usage (capturing errors); macOS 10.13.
@interface SentryMechanism : NSObject
@property (nullable, nonatomic, copy) NSString* desc;
@property (nullable, nonatomic, strong) NSDictionary<NSString*, id>* data;
@end

// Documentation: usage (capturing errors); macOS 10.13.
@interface SentryException : NSObject
@property (nullable, nonatomic, copy) NSString* value;
@property (nullable, nonatomic, strong) SentryMechanism* mechanism;
@end

// Documentation: configuration/http-client-errors; macOS 10.13.
@interface SentryRequest : NSObject
@property (nullable, nonatomic, copy) NSString* url;
@property (nullable, nonatomic, copy) NSString* queryString;
@property (nullable, nonatomic, copy) NSString* fragment;
@property (nullable, nonatomic, copy) NSString* cookies;
@property (nullable, nonatomic, strong) NSDictionary<NSString*, NSString*>* headers;
@end

// Documentation: usage/set-level; macOS 10.13.
typedef NS_ENUM(NSUInteger, SentryLevel) { kSentryLevelError = 4 };

// Documentation: configuration/filtering, and enriching-events; macOS 10.13.
@interface SentryEvent : NSObject
- (instancetype)initWithLevel:(SentryLevel)level NS_DESIGNATED_INITIALIZER;
@property (nullable, nonatomic, copy) NSString* logger;
@property (nullable, nonatomic, strong) SentryMessage* message;
@property (nullable, nonatomic, strong) NSArray<SentryException*>* exceptions;
@property (nullable, nonatomic, strong) NSArray<SentryBreadcrumb*>* breadcrumbs;
@property (nullable, nonatomic, strong) SentryRequest* request;
@property (nullable, nonatomic, copy) NSString* transaction;
@property (nullable, nonatomic, copy) NSString* serverName;
@property (nullable, nonatomic, strong) NSDictionary<NSString*, id>* extra;
@property (nullable, nonatomic, strong) NSDictionary<NSString*, NSString*>* tags;
@property (nullable, nonatomic, strong) NSDictionary<NSString*, NSDictionary<NSString*, id>*>* context;
@end

// Documentation: configuration/options; macOS 10.13. Both blocks are called on any thread, for a crash in the start
// after it; nil drops what they are given.
@interface SentryOptions : NSObject
@property (nullable, nonatomic, strong) NSString* dsn;
@property (nonatomic, copy) NSString* environment;
@property (nullable, nonatomic, copy) NSString* releaseName;
@property (nullable, nonatomic, copy) SentryEvent* _Nullable (^beforeSend)(SentryEvent* event);
@property (nullable, nonatomic, copy) SentryBreadcrumb* _Nullable (^beforeBreadcrumb)(SentryBreadcrumb* breadcrumb);
@property (nonatomic, assign) BOOL sendDefaultPii;
@property (nonatomic, assign) BOOL enableSwizzling;
@property (nonatomic, assign) BOOL enableNetworkTracking;
@property (nonatomic, assign) BOOL enableNetworkBreadcrumbs;
@property (nonatomic, assign) BOOL enableCaptureFailedRequests;
@property (nonatomic, assign) BOOL enableAutoSessionTracking;
@end

// Documentation: usage (capturing events); macOS 10.13.
@interface SentryId : NSObject
@end

// Documentation: configuration, usage, and configuration/options; macOS 10.13.
@interface SentrySDK : NSObject
@property (class, nonatomic, readonly) BOOL isEnabled;
+ (SentryId*)captureEvent:(SentryEvent*)event;
+ (void)startWithConfigureOptions:(void (^)(SentryOptions* options))configureOptions;
@end

NS_ASSUME_NONNULL_END
