#pragma once

#import <AppKit/AppKit.h>

NS_ASSUME_NONNULL_BEGIN

// Text views answer these through the responder chain; no public header declares them.
@protocol BrevantaUndoCommands
- (void)undo:(nullable id)sender;
- (void)redo:(nullable id)sender;
@end

namespace brevanta {

// Gives the application its main menu: without the Edit menu's key equivalents nothing could be copied or pasted
// (documentation page "Human Interface Guidelines: The menu bar"). Main thread, once, before the application runs.
void installMainMenu(NSApplication* application);

}

NS_ASSUME_NONNULL_END
