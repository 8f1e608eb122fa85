// Declarations for checking the Mac host without a Mac; see docs/mac-check.md. Not part of any build.
#pragma once

#include <AppKit/Images.h>
#include <AppKit/Views.h>

NS_ASSUME_NONNULL_BEGIN

// Documentation: NSEventModifierFlags; macOS 10.10.
typedef NS_OPTIONS(NSUInteger, NSEventModifierFlags) {
    NSEventModifierFlagControl = 1UL << 18,
    NSEventModifierFlagOption = 1UL << 19,
    NSEventModifierFlagCommand = 1UL << 20
};

// Documentation: NSMenuItem; macOS 10.0.
@interface NSMenuItem : NSObject
+ (NSMenuItem*)separatorItem;
- (instancetype)initWithTitle:(NSString*)title
                       action:(nullable SEL)action
                keyEquivalent:(NSString*)keyEquivalent NS_DESIGNATED_INITIALIZER;
@property (copy) NSString* title;
@property (copy) NSString* keyEquivalent;
@property NSEventModifierFlags keyEquivalentModifierMask;
@property (nullable, strong) NSMenu* submenu;
@property (getter=isEnabled) BOOL enabled;
@property (getter=isHidden) BOOL hidden; // macOS 10.5
@property NSInteger tag;
@property (nullable, strong) id representedObject;
@property (nullable, weak) id target;
@end

// Documentation: NSMenuItemValidation; macOS 10.14.
@protocol NSMenuItemValidation <NSObject>
- (BOOL)validateMenuItem:(NSMenuItem*)menuItem;
@end

// Documentation: NSMenu; macOS 10.0.
@interface NSMenu : NSObject
- (instancetype)initWithTitle:(NSString*)title NS_DESIGNATED_INITIALIZER;
@property BOOL autoenablesItems;
- (void)addItem:(NSMenuItem*)item;
- (NSMenuItem*)addItemWithTitle:(NSString*)title action:(nullable SEL)action keyEquivalent:(NSString*)keyEquivalent;
- (void)insertItem:(NSMenuItem*)item atIndex:(NSInteger)index;
- (void)removeItemAtIndex:(NSInteger)index;
- (nullable NSMenuItem*)itemAtIndex:(NSInteger)index;
@end

// Documentation: NSStatusBarButton; macOS 10.10. What it inherits from NSButton and NSView is declared with those.
@interface NSStatusBarButton : NSButton
@end

// Documentation: NSStatusItem; macOS 10.0.
static const CGFloat NSVariableStatusItemLength = -1.0;
@interface NSStatusItem : NSObject
@property (nullable, readonly, strong) NSStatusBarButton* button; // macOS 10.10
@property (nullable, strong) NSMenu* menu;
@end

// Documentation: NSStatusBar; macOS 10.0.
@interface NSStatusBar : NSObject
@property (class, readonly, strong) NSStatusBar* systemStatusBar;
- (NSStatusItem*)statusItemWithLength:(CGFloat)length;
- (void)removeStatusItem:(NSStatusItem*)item;
@end

NS_ASSUME_NONNULL_END
