#pragma once

#include "platform/MainWindow.h"

#import <AppKit/AppKit.h>

NS_ASSUME_NONNULL_BEGIN

// Hides the window instead of letting it close (documentation page NSWindowDelegate).
@interface BrevantaWindowDelegate : NSObject <NSWindowDelegate>
@end

namespace brevanta {

// The main window (documentation page NSWindow); remembers its frame from one start to the next.
class MainWindowMac final : public MainWindow {
public:
    MainWindowMac();

    void showInFront() override;
    void hide() override;
    [[nodiscard]] bool isVisible() const override;

private:
    NSWindow* m_window;
    BrevantaWindowDelegate* m_delegate; // NSWindow holds its delegate weakly.
};

}

NS_ASSUME_NONNULL_END
