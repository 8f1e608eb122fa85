#pragma once

#include "platform/WebView.h"

#import <WebKit/WebKit.h>

NS_ASSUME_NONNULL_BEGIN

// Asks the port's delegate what the page may have (documentation page WKUIDelegate). Windows that a page wants to open,
// and its alerts, get what WebKit does for an application that does not speak of them: none. Main thread.
@interface BrevantaUiDelegate : NSObject <WKUIDelegate>

// The delegate lives until `detach`, after which everything is denied.
- (instancetype)initWithDelegate:(brevanta::WebUiDelegate&)delegate NS_DESIGNATED_INITIALIZER;
- (instancetype)init NS_UNAVAILABLE;
- (void)detach;

@end

NS_ASSUME_NONNULL_END
