#include "mac/ApplicationDelegateMac.h"

#include "platform/ApplicationLifecycle.h"

using brevanta::ApplicationObserver;
using brevanta::TerminationDecision;

@implementation BrevantaApplicationDelegate {
    ApplicationObserver* _observer;
}

- (instancetype)initWithObserver:(ApplicationObserver&)observer
{
    if ((self = [super init]))
        _observer = &observer;
    return self;
}

- (void)applicationWillFinishLaunching:(NSNotification*)notification
{
    _observer->applicationWillFinishLaunching();
}

- (void)applicationDidFinishLaunching:(NSNotification*)notification
{
    _observer->applicationDidFinishLaunching();
}

- (NSApplicationTerminateReply)applicationShouldTerminate:(NSApplication*)sender
{
    if (self.terminationAgreed || _observer->applicationShouldTerminate() == TerminationDecision::now)
        return NSTerminateNow;
    self.awaitsTerminationAnswer = YES;
    return NSTerminateLater;
}

// NO: the observer has done all that there is to do.
- (BOOL)applicationShouldHandleReopen:(NSApplication*)sender hasVisibleWindows:(BOOL)hasVisibleWindows
{
    _observer->applicationShouldReopen();
    return NO;
}

- (void)applicationWillTerminate:(NSNotification*)notification
{
    _observer->applicationWillTerminate();
}

// The client goes on in the menu bar.
- (BOOL)applicationShouldTerminateAfterLastWindowClosed:(NSApplication*)sender
{
    return NO;
}

- (BOOL)applicationSupportsSecureRestorableState:(NSApplication*)app
{
    return YES;
}

@end
