// Declarations for checking the Mac host without a Mac; see docs/mac-check.md. Not part of any build.
#pragma once

#include <AppKit/Windows.h>

NS_ASSUME_NONNULL_BEGIN

@class UTType;

// Documentation: NSPanel; macOS 10.0.
@interface NSPanel : NSWindow
@end

// Documentation: NSSavePanel; macOS 10.0. The completion handlers run on the main thread, once.
@interface NSSavePanel : NSPanel
@property (nullable, copy) NSURL* directoryURL; // macOS 10.6
@property (copy) NSArray<UTType*>* allowedContentTypes; // macOS 11.0
@property BOOL treatsFilePackagesAsDirectories;
@property (null_resettable, copy) NSString* title;
@property (null_resettable, copy) NSString* message; // macOS 10.3
- (void)beginSheetModalForWindow:(NSWindow*)window // macOS 10.6
               completionHandler:(void (^)(NSModalResponse result))handler;
- (void)beginWithCompletionHandler:(void (^)(NSModalResponse result))handler; // macOS 10.6
@end

// Documentation: NSOpenPanel; macOS 10.0.
@interface NSOpenPanel : NSSavePanel
+ (NSOpenPanel*)openPanel;
@property (readonly, copy) NSArray<NSURL*>* URLs;
@property BOOL resolvesAliases; // macOS 10.1
@property BOOL canChooseDirectories;
@property BOOL allowsMultipleSelection;
@property BOOL canChooseFiles;
@end

NS_ASSUME_NONNULL_END
