// Declarations for checking the Mac host without a Mac; see docs/mac-check.md. Not part of any build.
#pragma once

#include <Foundation/Foundation.h>

NS_ASSUME_NONNULL_BEGIN

// Documentation: SMAppServiceStatus; macOS 13.0.
typedef NS_ENUM(NSInteger, SMAppServiceStatus) {
    SMAppServiceStatusNotRegistered = 0,
    SMAppServiceStatusEnabled = 1,
    SMAppServiceStatusRequiresApproval = 2,
    SMAppServiceStatusNotFound = 3
};

// Documentation: SMAppService; macOS 13.0.
@interface SMAppService : NSObject
@property (class, readonly) SMAppService* mainAppService;
@property (readonly) SMAppServiceStatus status;
- (BOOL)registerAndReturnError:(NSError* _Nullable __autoreleasing* _Nullable)error;
+ (SMAppServiceStatus)statusForLegacyURL:(NSURL*)url;
@end

NS_ASSUME_NONNULL_END
