// Declarations for checking the Mac host without a Mac; see docs/mac-check.md. Not part of any build.
#pragma once

#include <AppKit/Application.h>
#include <AppKit/Images.h>

NS_ASSUME_NONNULL_BEGIN

@class CALayer;
@class NSLayoutDimension;
@class NSLayoutXAxisAnchor;
@class NSLayoutYAxisAnchor;

// Documentation: NSAutoresizingMaskOptions; macOS 10.0.
typedef NS_OPTIONS(NSUInteger, NSAutoresizingMaskOptions) { NSViewWidthSizable = 2, NSViewHeightSizable = 16 };

// Documentation: NSLayoutConstraint; macOS 10.7.
@interface NSLayoutConstraint : NSObject
@property (getter=isActive) BOOL active; // macOS 10.10
@end

// Documentation: NSLayoutAnchor; macOS 10.11.
@interface NSLayoutAnchor<AnchorType> : NSObject
- (NSLayoutConstraint*)constraintEqualToAnchor:(NSLayoutAnchor<AnchorType>*)anchor;
@end

// Documentation: NSLayoutXAxisAnchor; macOS 10.11.
@interface NSLayoutXAxisAnchor : NSLayoutAnchor <NSLayoutXAxisAnchor*>
@end

// Documentation: NSLayoutYAxisAnchor; macOS 10.11.
@interface NSLayoutYAxisAnchor : NSLayoutAnchor <NSLayoutYAxisAnchor*>
@end

// Documentation: NSLayoutDimension; macOS 10.11.
@interface NSLayoutDimension : NSLayoutAnchor <NSLayoutDimension*>
- (NSLayoutConstraint*)constraintEqualToConstant:(CGFloat)constant;
@end

// Documentation: NSView; macOS 10.0.
@interface NSView : NSResponder
- (instancetype)initWithFrame:(NSRect)frameRect NS_DESIGNATED_INITIALIZER;
- (nullable instancetype)initWithCoder:(NSCoder*)coder NS_DESIGNATED_INITIALIZER;
@property NSRect frame;
@property NSRect bounds;
@property NSAutoresizingMaskOptions autoresizingMask;
@property (getter=isHidden) BOOL hidden; // macOS 10.3
@property (nullable, copy) NSString* toolTip;
- (void)addSubview:(NSView*)view;
@property BOOL wantsLayer; // macOS 10.5
@property (nullable, strong) CALayer* layer; // macOS 10.5
@property (readonly) BOOL wantsUpdateLayer; // macOS 10.8
- (void)updateLayer; // macOS 10.8
@property BOOL translatesAutoresizingMaskIntoConstraints; // macOS 10.7
@property (readonly, strong) NSLayoutXAxisAnchor* centerXAnchor; // macOS 10.11
@property (readonly, strong) NSLayoutYAxisAnchor* centerYAnchor; // macOS 10.11
@property (readonly, strong) NSLayoutDimension* widthAnchor; // macOS 10.11
@property (readonly, strong) NSLayoutDimension* heightAnchor; // macOS 10.11
@end

// Documentation: NSColor; macOS 10.0.
@interface NSColor : NSObject
@property (class, readonly, strong) NSColor* windowBackgroundColor;
@property (class, readonly, strong) NSColor* secondaryLabelColor; // macOS 10.10
@property (readonly) CGColorRef CGColor; // macOS 10.8
@end

// Documentation: NSFont; macOS 10.0.
@interface NSFont : NSObject
+ (NSFont*)systemFontOfSize:(CGFloat)fontSize;
@end

// Documentation: NSTextAlignment; macOS 10.0. On Intel the number is another one.
typedef NS_ENUM(NSInteger, NSTextAlignment) { NSTextAlignmentCenter = 1 };

// Documentation: NSControl; macOS 10.0.
@interface NSControl : NSView
@property (copy) NSString* stringValue;
@property (nullable, strong) NSFont* font;
@property NSTextAlignment alignment;
@end

// Documentation: NSButton; macOS 10.0.
@interface NSButton : NSControl
+ (instancetype)buttonWithTitle:(NSString*)title target:(nullable id)target action:(nullable SEL)action; // macOS 10.12
@property (copy) NSString* title;
@property (copy) NSString* keyEquivalent;
@property (nullable, strong) NSImage* image;
@end

// Documentation: NSTextField; macOS 10.0.
@interface NSTextField : NSControl
+ (instancetype)labelWithString:(NSString*)text; // macOS 10.12
@property (nullable, copy) NSColor* textColor;
@end

// Documentation: NSImageScaling; macOS 10.5.
typedef NS_ENUM(NSUInteger, NSImageScaling) { NSImageScaleProportionallyUpOrDown = 3 };

// Documentation: NSImageView; macOS 10.0.
@interface NSImageView : NSControl
+ (instancetype)imageViewWithImage:(NSImage*)image; // macOS 10.12
@property NSImageScaling imageScaling;
@end

// Documentation: NSUserInterfaceLayoutOrientation; macOS 10.9.
typedef NS_ENUM(NSInteger, NSUserInterfaceLayoutOrientation) { NSUserInterfaceLayoutOrientationVertical = 1 };

// Documentation: NSLayoutAttribute; macOS 10.7.
typedef NS_ENUM(NSInteger, NSLayoutAttribute) { NSLayoutAttributeCenterX = 9 };

// Documentation: NSStackView; macOS 10.9. A view that is hidden leaves its place to the others.
@interface NSStackView : NSView
+ (instancetype)stackViewWithViews:(NSArray<NSView*>*)views;
@property NSUserInterfaceLayoutOrientation orientation;
@property NSLayoutAttribute alignment;
@property CGFloat spacing;
@end

// Documentation: NSText; macOS 10.0. Text views answer these menu actions.
@interface NSText : NSView
- (void)cut:(nullable id)sender;
- (void)copy:(nullable id)sender;
- (void)paste:(nullable id)sender;
- (void)delete:(nullable id)sender;
- (void)selectAll:(nullable id)sender;
@end

// Documentation: NSTextView; macOS 10.0. Text and web views answer this menu action.
@interface NSTextView : NSText
- (void)pasteAsPlainText:(nullable id)sender;
@end

NS_ASSUME_NONNULL_END
