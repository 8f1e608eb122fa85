// Declarations for checking the Mac host without a Mac; see docs/mac-check.md. Not part of any build.
#pragma once

#include <Foundation/Foundation.h>

NS_ASSUME_NONNULL_BEGIN

@class SUAppcastItem;

// Documentation: SPUStandardUserDriverDelegate, Sparkle 2; macOS 10.13.
@protocol SPUStandardUserDriverDelegate <NSObject>
@end

// Documentation: SPUUpdater, Sparkle 2; macOS 10.13. Main thread only.
@interface SPUUpdater : NSObject
@property (nonatomic) BOOL automaticallyChecksForUpdates;
@end

// Documentation: SPUUpdaterDelegate, Sparkle 2; macOS 10.13. Called on the main thread.
@protocol SPUUpdaterDelegate <NSObject>
@optional
- (BOOL)updater:(SPUUpdater*)updater
    shouldPostponeRelaunchForUpdate:(SUAppcastItem*)item
                 untilInvokingBlock:(void (^)(void))installHandler;
@end

// Documentation: SPUStandardUpdaterController, Sparkle 2; macOS 10.13. Main thread only; keeps no delegate alive.
@interface SPUStandardUpdaterController : NSObject
- (instancetype)initWithStartingUpdater:(BOOL)startUpdater
                        updaterDelegate:(nullable id<SPUUpdaterDelegate>)updaterDelegate
                     userDriverDelegate:(nullable id<SPUStandardUserDriverDelegate>)userDriverDelegate;
@property (nonatomic, readonly) SPUUpdater* updater;
- (void)checkForUpdates:(nullable id)sender;
@end

NS_ASSUME_NONNULL_END
