// Declarations for checking the Mac host without a Mac; see docs/mac-check.md. Not part of any build.
#pragma once

#include <Foundation/Foundation.h>
#include <dispatch/dispatch.h>

NS_ASSUME_NONNULL_BEGIN

@class OSSystemExtensionRequest;

// Documentation: OSSystemExtensionReplacementAction; macOS 10.15.
typedef NS_ENUM(NSInteger, OSSystemExtensionReplacementAction) {
    OSSystemExtensionReplacementActionCancel = 0,
    OSSystemExtensionReplacementActionReplace = 1
};

// Documentation: OSSystemExtensionRequestResult; macOS 10.15.
typedef NS_ENUM(NSInteger, OSSystemExtensionRequestResult) {
    OSSystemExtensionRequestCompleted = 0,
    OSSystemExtensionRequestWillCompleteAfterReboot = 1
};

// Documentation: OSSystemExtensionProperties; macOS 10.15.
@interface OSSystemExtensionProperties : NSObject
@property (readonly) NSString* bundleVersion;
@property (readonly) NSString* bundleShortVersion;
@property (readonly) BOOL isEnabled; // macOS 12.0
@property (readonly) BOOL isAwaitingUserApproval; // macOS 12.0
@property (readonly) BOOL isUninstalling; // macOS 12.0
@end

// Documentation: OSSystemExtensionRequestDelegate; macOS 10.15. Called on the queue that the request was made with.
@protocol OSSystemExtensionRequestDelegate <NSObject>
- (OSSystemExtensionReplacementAction)request:(OSSystemExtensionRequest*)request
                  actionForReplacingExtension:(OSSystemExtensionProperties*)existing
                                withExtension:(OSSystemExtensionProperties*)replacement;
- (void)requestNeedsUserApproval:(OSSystemExtensionRequest*)request;
- (void)request:(OSSystemExtensionRequest*)request didFinishWithResult:(OSSystemExtensionRequestResult)result;
- (void)request:(OSSystemExtensionRequest*)request didFailWithError:(NSError*)error;
@optional
- (void)request:(OSSystemExtensionRequest*)request
    foundProperties:(NSArray<OSSystemExtensionProperties*>*)properties; // macOS 12.0
@end

// Documentation: OSSystemExtensionRequest; macOS 10.15.
@interface OSSystemExtensionRequest : NSObject
+ (instancetype)activationRequestForExtension:(NSString*)identifier queue:(dispatch_queue_t)queue;
+ (instancetype)deactivationRequestForExtension:(NSString*)identifier queue:(dispatch_queue_t)queue;
+ (instancetype)propertiesRequestForExtension:(NSString*)identifier queue:(dispatch_queue_t)queue; // macOS 12.0
@property (nullable, weak) id<OSSystemExtensionRequestDelegate> delegate;
@end

// Documentation: OSSystemExtensionManager; macOS 10.15.
@interface OSSystemExtensionManager : NSObject
@property (class, readonly) OSSystemExtensionManager* sharedManager;
- (void)submitRequest:(OSSystemExtensionRequest*)request;
@end

NS_ASSUME_NONNULL_END
