#include "mac/MainWindowMac.h"

#include "mac/PlaceholderMac.h"
#include "mac/TextMac.h"
#include "mac/WebViewMac.h"
#include "web/WindowFrame.h"

#include <algorithm>

@implementation BrevantaWindowDelegate {
    BOOL _hidesAfterFullScreen;
}

- (BOOL)windowShouldClose:(NSWindow*)sender
{
    [self hideWindow:sender];
    return NO;
}

- (void)hideWindow:(NSWindow*)window
{
    if ((window.styleMask & NSWindowStyleMaskFullScreen) == 0)
        return [window orderOut:nil];
    _hidesAfterFullScreen = YES;
    [window toggleFullScreen:nil];
}

- (void)keepWindow
{
    _hidesAfterFullScreen = NO;
}

- (void)windowDidExitFullScreen:(NSNotification*)notification
{
    if (!_hidesAfterFullScreen)
        return;
    _hidesAfterFullScreen = NO;
    NSWindow* const window = notification.object;
    [window orderOut:nil];
}

@end

namespace brevanta {

namespace {

NSString* const frameName = @"MainWindow";

NSWindow* createWindow(const MainWindowLayout& layout)
{
    const NSRect content { { 0, 0 },
        { static_cast<CGFloat>(std::max(layout.width, 1)), static_cast<CGFloat>(std::max(layout.height, 1)) } };
    const NSWindowStyleMask style = NSWindowStyleMaskTitled | NSWindowStyleMaskClosable
        | NSWindowStyleMaskMiniaturizable | NSWindowStyleMaskResizable;
    NSWindow* const window = [[NSWindow alloc] initWithContentRect:content
                                                         styleMask:style
                                                           backing:NSBackingStoreBuffered
                                                             defer:YES];
    window.title = displayString(layout.title);
    window.releasedWhenClosed = NO; // ARC owns it.
    window.contentMinSize = NSSize { leastContentSize.width, leastContentSize.height };
    if (![window setFrameUsingName:frameName])
        [window center];
    [window setFrameAutosaveName:frameName];
    return window;
}

}

MainWindowMac::MainWindowMac(const WebViewMac& webView, const PlaceholderMac& placeholder)
    : m_webView(webView)
    , m_placeholder(placeholder)
    , m_delegate([[BrevantaWindowDelegate alloc] init])
{
}

void MainWindowMac::build(const MainWindowLayout& layout)
{
    NSWindow* const window = createWindow(layout);
    window.delegate = m_delegate;
    window.contentView = createContent(window.contentLayoutRect.size);
    m_window = window;
}

// From below to above.
NSView* MainWindowMac::createContent(NSSize size) const
{
    NSView* const content = [[NSView alloc] initWithFrame:NSRect { { 0, 0 }, size }];
    for (NSView* part : { m_webView.nativeView(), m_placeholder.nativeView() }) {
        part.frame = content.bounds;
        part.autoresizingMask = NSViewWidthSizable | NSViewHeightSizable;
        [content addSubview:part];
    }
    return content;
}

void MainWindowMac::showInFront()
{
    [m_delegate keepWindow];
    if (m_window.miniaturized)
        [m_window deminiaturize:nil];
    [m_window makeKeyAndOrderFront:nil];
}

void MainWindowMac::hide()
{
    if (NSWindow* const window = m_window)
        [m_delegate hideWindow:window];
}

bool MainWindowMac::isVisible() const { return m_window.visible; }

}
