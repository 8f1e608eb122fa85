// Declarations for checking the Mac host without a Mac; see docs/mac-check.md. Not part of any build.
#pragma once

#include <Foundation/Foundation.h>

NS_ASSUME_NONNULL_BEGIN

// Documentation: NSRunningApplication; macOS 10.6.
@interface NSRunningApplication : NSObject
@end

// Documentation: NSWorkspaceOpenConfiguration; macOS 10.15.
@interface NSWorkspaceOpenConfiguration : NSObject
+ (instancetype)configuration;
@end

// Documentation: NSWorkspace; macOS 10.0. The completion handler runs on a concurrent queue.
@interface NSWorkspace : NSObject
@property (class, readonly, strong) NSWorkspace* sharedWorkspace;
- (void)openURL:(NSURL*)url // macOS 10.15
        configuration:(NSWorkspaceOpenConfiguration*)configuration
    completionHandler:
        (nullable void (^)(NSRunningApplication* _Nullable app, NSError* _Nullable error))completionHandler;
- (BOOL)isFilePackageAtPath:(NSString*)path;
@end

NS_ASSUME_NONNULL_END
