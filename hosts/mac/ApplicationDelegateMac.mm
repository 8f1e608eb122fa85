#include "mac/ApplicationDelegateMac.h"

#include "mac/UrlMac.h"
#include "platform/ApplicationLifecycle.h"

#import <ApplicationServices/ApplicationServices.h>

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

// The handler has to be there before the first event: the link that starts an application comes before it has
// finished launching.
- (void)applicationWillFinishLaunching:(NSNotification*)notification
{
    [NSAppleEventManager.sharedAppleEventManager setEventHandler:self
                                                     andSelector:@selector(handleGetURLEvent:withReplyEvent:)
                                                   forEventClass:kInternetEventClass
                                                      andEventID:kAEGetURL];
    [NSWorkspace.sharedWorkspace.notificationCenter addObserver:self
                                                       selector:@selector(systemDidWake:)
                                                           name:NSWorkspaceDidWakeNotification
                                                         object:nil];
    _observer->applicationWillFinishLaunching();
}

- (void)handleGetURLEvent:(NSAppleEventDescriptor*)event withReplyEvent:(NSAppleEventDescriptor*)replyEvent
{
    NSString* const text = [event paramDescriptorForKeyword:keyDirectObject].stringValue;
    if (const auto url = brevanta::urlFrom(brevanta::absoluteUrlFromText(text)))
        _observer->applicationDidOpenUrl(*url);
}

// Links that do not come as the event above.
- (void)application:(NSApplication*)application openURLs:(NSArray<NSURL*>*)urls
{
    for (NSURL* address in urls) {
        if (const auto url = brevanta::urlFrom(address))
            _observer->applicationDidOpenUrl(*url);
    }
}

- (void)applicationDidBecomeActive:(NSNotification*)notification
{
    _observer->applicationDidBecomeActive();
}

- (void)systemDidWake:(NSNotification*)notification
{
    _observer->systemDidWake();
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
    [NSWorkspace.sharedWorkspace.notificationCenter removeObserver:self name:NSWorkspaceDidWakeNotification object:nil];
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
