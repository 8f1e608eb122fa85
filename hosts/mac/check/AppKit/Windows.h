// Declarations for checking the Mac host without a Mac; see docs/mac-check.md. Not part of any build.
#pragma once

#include <AppKit/Views.h>

NS_ASSUME_NONNULL_BEGIN

// Documentation: NSWindowStyleMask; macOS 10.12.
typedef NS_OPTIONS(NSUInteger, NSWindowStyleMask) {
    NSWindowStyleMaskTitled = 1 << 0,
    NSWindowStyleMaskClosable = 1 << 1,
    NSWindowStyleMaskMiniaturizable = 1 << 2,
    NSWindowStyleMaskResizable = 1 << 3,
    NSWindowStyleMaskFullScreen = 1 << 14 // macOS 10.7
};

// Documentation: NSBackingStoreType; macOS 10.0.
typedef NS_ENUM(NSUInteger, NSBackingStoreType) { NSBackingStoreBuffered = 2 };

// Documentation: NSWindowFrameAutosaveName; macOS 10.0.
typedef NSString* NSWindowFrameAutosaveName;

// Documentation: NSWindowDelegate; macOS 10.0.
@protocol NSWindowDelegate <NSObject>
@optional
- (BOOL)windowShouldClose:(NSWindow*)sender;
- (void)windowDidExitFullScreen:(NSNotification*)notification; // macOS 10.7
@end

// Documentation: NSWindow; macOS 10.0.
@interface NSWindow : NSResponder
- (instancetype)initWithContentRect:(NSRect)contentRect
                          styleMask:(NSWindowStyleMask)style
                            backing:(NSBackingStoreType)backing
                              defer:(BOOL)flag NS_DESIGNATED_INITIALIZER;
@property (nullable, weak) id<NSWindowDelegate> delegate;
@property (copy) NSString* title;
@property (nullable, strong) NSView* contentView;
@property NSSize contentMinSize;
@property (readonly) NSWindowStyleMask styleMask;
@property (readonly) NSRect contentLayoutRect; // macOS 10.10
@property (getter=isReleasedWhenClosed) BOOL releasedWhenClosed;
@property (readonly, getter=isVisible) BOOL visible;
@property (readonly, getter=isMiniaturized) BOOL miniaturized;
@property BOOL preventsApplicationTerminationWhenModal; // macOS 10.6
- (void)center;
- (BOOL)setFrameUsingName:(NSWindowFrameAutosaveName)name;
- (BOOL)setFrameAutosaveName:(NSWindowFrameAutosaveName)name;
- (void)makeKeyAndOrderFront:(nullable id)sender;
- (void)orderOut:(nullable id)sender;
- (void)deminiaturize:(nullable id)sender;
- (void)performClose:(nullable id)sender;
- (void)performMiniaturize:(nullable id)sender;
- (void)performZoom:(nullable id)sender;
- (void)toggleFullScreen:(nullable id)sender; // macOS 10.7
@end

// Documentation: NSAlertStyle; macOS 10.12.
typedef NS_ENUM(NSUInteger, NSAlertStyle) { NSAlertStyleWarning = 0, NSAlertStyleInformational = 1 };

// Documentation: NSAlertFirstButtonReturn; macOS 10.3.
static const NSModalResponse NSAlertFirstButtonReturn = 1000;

// Documentation: NSAlert; macOS 10.3.
@interface NSAlert : NSObject
@property (copy) NSString* messageText;
@property (copy) NSString* informativeText;
@property NSAlertStyle alertStyle;
@property (readonly, copy) NSArray<NSButton*>* buttons;
@property (readonly, strong) NSWindow* window;
- (NSButton*)addButtonWithTitle:(NSString*)title;
- (NSModalResponse)runModal;
@end

NS_ASSUME_NONNULL_END
