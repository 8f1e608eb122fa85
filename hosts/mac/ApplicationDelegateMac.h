#pragma once

#import <AppKit/AppKit.h>

namespace brevanta {
class ApplicationObserver;
}

NS_ASSUME_NONNULL_BEGIN

// The application's delegate (documentation page NSApplicationDelegate): passes every call on to the observer, and
// links and the end of the machine's sleep as well.
@interface BrevantaApplicationDelegate : NSObject <NSApplicationDelegate>

// The observer lives at least as long as the application.
- (instancetype)initWithObserver:(brevanta::ApplicationObserver&)observer NS_DESIGNATED_INITIALIZER;
- (instancetype)init NS_UNAVAILABLE;

// A link that another application opens (documentation page NSAppleEventManager).
- (void)handleGetURLEvent:(NSAppleEventDescriptor*)event withReplyEvent:(NSAppleEventDescriptor*)replyEvent;

// Documentation page NSWorkspaceDidWakeNotification.
- (void)systemDidWake:(NSNotification*)notification;

// Whether a termination that the system asked for was put off and has not been answered.
@property (nonatomic) BOOL awaitsTerminationAnswer;

// Set when the observer has agreed already: it is not asked once more.
@property (nonatomic) BOOL terminationAgreed;

@end

NS_ASSUME_NONNULL_END
