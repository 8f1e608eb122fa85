// Declarations for checking the Mac host without a Mac; see docs/mac-check.md. Not part of any build.
#pragma once

#include <Foundation/Foundation.h>

NS_ASSUME_NONNULL_BEGIN

// Documentation: NEFilterProviderConfiguration; macOS 10.11.
@interface NEFilterProviderConfiguration : NSObject
@property BOOL filterSockets;
@property BOOL filterPackets; // macOS 10.15
@end

// Documentation: NEFilterManager; macOS 10.11. The completion handlers run on the main thread.
@interface NEFilterManager : NSObject
+ (NEFilterManager*)sharedManager;
- (void)loadFromPreferencesWithCompletionHandler:(void (^)(NSError* _Nullable error))completionHandler;
- (void)saveToPreferencesWithCompletionHandler:(void (^)(NSError* _Nullable error))completionHandler;
- (void)removeFromPreferencesWithCompletionHandler:(void (^)(NSError* _Nullable error))completionHandler;
@property (nullable, copy) NSString* localizedDescription;
@property (nullable, strong) NEFilterProviderConfiguration* providerConfiguration;
@property (getter=isEnabled) BOOL enabled;
@end

NS_ASSUME_NONNULL_END
