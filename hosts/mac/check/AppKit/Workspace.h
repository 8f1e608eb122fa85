// Declarations for checking the Mac host without a Mac; see docs/mac-check.md. Not part of any build.
#pragma once

#include <AppKit/Images.h>

NS_ASSUME_NONNULL_BEGIN

// Documentation: NSRunningApplication; macOS 10.6.
@interface NSRunningApplication : NSObject
@end

// Documentation: NSWorkspaceOpenConfiguration; macOS 10.15.
@interface NSWorkspaceOpenConfiguration : NSObject
+ (instancetype)configuration;
@end

// Documentation: NSWorkspaceDidWakeNotification; macOS 10.3. Posted by the workspace's own notification center.
extern NSNotificationName const NSWorkspaceDidWakeNotification;

// Documentation: NSWorkspace; macOS 10.0. The completion handler runs on a concurrent queue.
@interface NSWorkspace : NSObject
@property (class, readonly, strong) NSWorkspace* sharedWorkspace;
@property (readonly, strong) NSNotificationCenter* notificationCenter;
- (void)openURL:(NSURL*)url // macOS 10.15
        configuration:(NSWorkspaceOpenConfiguration*)configuration
    completionHandler:
        (nullable void (^)(NSRunningApplication* _Nullable app, NSError* _Nullable error))completionHandler;
- (BOOL)isFilePackageAtPath:(NSString*)path;
- (NSImage*)iconForFile:(NSString*)fullPath;
@end

NS_ASSUME_NONNULL_END
