// Declarations for checking the Mac host without a Mac; see docs/mac-check.md. Not part of any build.
#pragma once

#include <Foundation/Foundation.h>

NS_ASSUME_NONNULL_BEGIN

@class NSApplication;
@class NSMenu;
@class NSWindow;

// Documentation: NSRunLoopMode; macOS 10.0.
extern NSRunLoopMode const NSModalPanelRunLoopMode;

// Documentation: NSModalResponse; macOS 10.9.
typedef NSInteger NSModalResponse;
static const NSModalResponse NSModalResponseOK = 1;
static const NSModalResponse NSModalResponseAbort = -1001;

// Documentation: NSApplicationTerminateReply; macOS 10.0.
typedef NS_ENUM(NSUInteger, NSApplicationTerminateReply) {
    NSTerminateCancel = 0,
    NSTerminateNow = 1,
    NSTerminateLater = 2
};

// Documentation: NSApplicationActivationPolicy; macOS 10.6.
typedef NS_ENUM(NSInteger, NSApplicationActivationPolicy) {
    NSApplicationActivationPolicyRegular = 0,
    NSApplicationActivationPolicyAccessory = 1
};

// Documentation: NSApplicationDelegate; macOS 10.0.
@protocol NSApplicationDelegate <NSObject>
@optional
- (void)applicationWillFinishLaunching:(NSNotification*)notification;
- (void)applicationDidFinishLaunching:(NSNotification*)notification;
- (void)application:(NSApplication*)application openURLs:(NSArray<NSURL*>*)urls; // macOS 10.13
- (void)applicationDidBecomeActive:(NSNotification*)notification;
- (NSApplicationTerminateReply)applicationShouldTerminate:(NSApplication*)sender;
- (BOOL)applicationShouldHandleReopen:(NSApplication*)sender hasVisibleWindows:(BOOL)hasVisibleWindows;
- (void)applicationWillTerminate:(NSNotification*)notification;
- (BOOL)applicationShouldTerminateAfterLastWindowClosed:(NSApplication*)sender;
- (BOOL)applicationSupportsSecureRestorableState:(NSApplication*)app; // macOS 12.0
@end

// Documentation: NSResponder; macOS 10.0.
@interface NSResponder : NSObject
@end

// Documentation: NSApplication; macOS 10.0. activateIgnoringOtherApps: is deprecated since 14.0, which brought
// activate.
@interface NSApplication : NSResponder
@property (class, readonly, strong) NSApplication* sharedApplication;
@property (nullable, weak) id<NSApplicationDelegate> delegate;
@property (nullable, strong) NSMenu* mainMenu;
@property (nullable, strong) NSMenu* windowsMenu;
@property (nullable, readonly, weak) NSWindow* modalWindow;
- (void)run;
- (void)terminate:(nullable id)sender;
- (void)replyToApplicationShouldTerminate:(BOOL)shouldTerminate;
- (BOOL)setActivationPolicy:(NSApplicationActivationPolicy)policy; // macOS 10.6
- (void)activateIgnoringOtherApps:(BOOL)flag;
- (void)abortModal;
- (void)hide:(nullable id)sender;
- (void)hideOtherApplications:(nullable id)sender;
- (void)unhideAllApplications:(nullable id)sender;
- (void)orderFrontStandardAboutPanel:(nullable id)sender;
- (void)arrangeInFront:(nullable id)sender;
@end

NS_ASSUME_NONNULL_END
