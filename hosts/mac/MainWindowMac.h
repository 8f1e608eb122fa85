#pragma once

#include "platform/MainWindow.h"

#import <AppKit/AppKit.h>

NS_ASSUME_NONNULL_BEGIN

// Hides the window instead of letting it close (documentation page NSWindowDelegate).
@interface BrevantaWindowDelegate : NSObject <NSWindowDelegate>

// A window in full screen leaves that first: hidden at once it would leave an empty screen behind.
- (void)hideWindow:(NSWindow*)window;

// What was to be hidden after full screen stays.
- (void)keepWindow;

@end

namespace brevanta {

class PlaceholderMac;
class WebViewMac;

// The main window (documentation page NSWindow); remembers its frame from one start to the next. The web view and the
// placeholder outlive it. Before `build` there is no window: nothing is shown, and it is not visible.
class MainWindowMac final : public MainWindow {
public:
    MainWindowMac(const WebViewMac& webView, const PlaceholderMac& placeholder);

    void build(const MainWindowLayout& layout) override;
    void showInFront() override;
    void hide() override;
    [[nodiscard]] bool isVisible() const override;

    [[nodiscard]] NSWindow* _Nullable nativeWindow() const { return m_window; }

private:
    [[nodiscard]] NSView* createContent(NSSize size) const;

    const WebViewMac& m_webView;
    const PlaceholderMac& m_placeholder;
    NSWindow* _Nullable m_window { nil };
    BrevantaWindowDelegate* m_delegate; // NSWindow holds its delegate weakly.
};

}

NS_ASSUME_NONNULL_END
