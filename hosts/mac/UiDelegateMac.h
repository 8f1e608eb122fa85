#pragma once

#include "mac/NavigationDelegateMac.h"
#include "platform/WebView.h"

#import <WebKit/WebKit.h>

NS_ASSUME_NONNULL_BEGIN

// Asks the port's delegates what the page may have, and puts its dialogs before them (documentation page WKUIDelegate).
// Main thread.
@interface BrevantaUiDelegate : NSObject <WKUIDelegate>

// The delegates live until `detach`, after which everything is denied.
- (instancetype)initWithDelegate:(brevanta::WebUiDelegate&)delegate
                 browserDelegate:(brevanta::WebBrowserDelegate&)browserDelegate
              navigationDelegate:(BrevantaNavigationDelegate*)navigationDelegate NS_DESIGNATED_INITIALIZER;
- (instancetype)init NS_UNAVAILABLE;
- (void)detach;

@end

NS_ASSUME_NONNULL_END
