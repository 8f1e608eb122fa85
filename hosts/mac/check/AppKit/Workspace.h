// Declarations for checking the Mac host without a Mac; see docs/mac-check.md. Not part of any build.
#pragma once

#include <AppKit/Application.h>
#include <AppKit/Images.h>

#include <sys/types.h>

NS_ASSUME_NONNULL_BEGIN

// Documentation: NSRunningApplication; macOS 10.6.
@interface NSRunningApplication : NSObject
@property (nullable, readonly, copy) NSString* bundleIdentifier;
@property (readonly) pid_t processIdentifier;
@property (readonly) NSApplicationActivationPolicy activationPolicy;
@end

// Documentation: NSWorkspaceOpenConfiguration; macOS 10.15.
@interface NSWorkspaceOpenConfiguration : NSObject
+ (instancetype)configuration;
@end

// Documentation: NSWorkspaceDidWakeNotification; macOS 10.3. Posted by the workspace's own notification center.
extern NSNotificationName const NSWorkspaceDidWakeNotification;

// Documentation: NSWorkspaceDidLaunchApplicationNotification; macOS 10.0. Posted by the workspace's own notification
// center; not for applications without an icon in the Dock.
extern NSNotificationName const NSWorkspaceDidLaunchApplicationNotification;
extern NSNotificationName const NSWorkspaceDidTerminateApplicationNotification;

// Documentation: NSWorkspaceApplicationKey; macOS 10.6. In the notifications' user info, an NSRunningApplication.
extern NSString* const NSWorkspaceApplicationKey;

// Documentation: NSWorkspace; macOS 10.0. The completion handler runs on a concurrent queue.
@interface NSWorkspace : NSObject
@property (class, readonly, strong) NSWorkspace* sharedWorkspace;
@property (readonly, strong) NSNotificationCenter* notificationCenter;
@property (readonly, copy) NSArray<NSRunningApplication*>* runningApplications; // macOS 10.6
- (nullable NSURL*)URLForApplicationWithBundleIdentifier:(NSString*)bundleIdentifier; // macOS 10.6
- (void)openURL:(NSURL*)url // macOS 10.15
        configuration:(NSWorkspaceOpenConfiguration*)configuration
    completionHandler:
        (nullable void (^)(NSRunningApplication* _Nullable app, NSError* _Nullable error))completionHandler;
- (BOOL)isFilePackageAtPath:(NSString*)path;
- (NSImage*)iconForFile:(NSString*)fullPath;
@end

NS_ASSUME_NONNULL_END
