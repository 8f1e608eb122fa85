#include "mac/MainWindowMac.h"

@implementation BrevantaWindowDelegate

- (BOOL)windowShouldClose:(NSWindow*)sender
{
    [sender orderOut:nil];
    return NO;
}

@end

namespace brevanta {

namespace {

constexpr NSRect initialFrame { { 0, 0 }, { 1100, 760 } }; // Points.
NSString* const frameName = @"MainWindow";

NSWindow* createWindow()
{
    const NSWindowStyleMask style = NSWindowStyleMaskTitled | NSWindowStyleMaskClosable
        | NSWindowStyleMaskMiniaturizable | NSWindowStyleMaskResizable;
    NSWindow* const window = [[NSWindow alloc] initWithContentRect:initialFrame
                                                         styleMask:style
                                                           backing:NSBackingStoreBuffered
                                                             defer:YES];
    window.title = @"Brevanta";
    window.releasedWhenClosed = NO; // ARC owns it.
    if (![window setFrameUsingName:frameName])
        [window center];
    [window setFrameAutosaveName:frameName];
    return window;
}

}

MainWindowMac::MainWindowMac()
    : m_window(createWindow())
    , m_delegate([[BrevantaWindowDelegate alloc] init])
{
    m_window.delegate = m_delegate;
    m_window.contentView = [NSTextField labelWithString:@"Brevanta"];
}

void MainWindowMac::showInFront()
{
    if (m_window.miniaturized)
        [m_window deminiaturize:nil];
    [m_window makeKeyAndOrderFront:nil];
}

void MainWindowMac::hide() { [m_window orderOut:nil]; }

bool MainWindowMac::isVisible() const { return m_window.visible; }

}
