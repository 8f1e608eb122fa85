#pragma once

#include "platform/MainLoop.h"
#include "platform/WebView.h"

#import <WebKit/WebKit.h>

NS_ASSUME_NONNULL_BEGIN

// Begins the navigations of a web view and tells the port's delegate of them (documentation page
// WKNavigationDelegate). Main thread.
@interface BrevantaNavigationDelegate : NSObject <WKNavigationDelegate>

// The delegate lives until `detach`, the main loop longer than this object.
- (instancetype)initWithDelegate:(brevanta::WebNavigationDelegate&)delegate
                        mainLoop:(brevanta::MainLoop&)mainLoop
                         webView:(WKWebView*)webView NS_DESIGNATED_INITIALIZER;
- (instancetype)init NS_UNAVAILABLE;

// Both are null when the web view begins nothing.
- (brevanta::WebNavigation)load:(NSURLRequest*)request within:(double)timeoutSeconds;
- (brevanta::WebNavigation)reloadFromOrigin;

// Nothing can arrive from the one call to the other: the page waits for the user.
- (void)pageWaits;
- (void)pageGoesOn;

// As WebView::committedUrl.
@property (nonatomic, readonly) std::optional<brevanta::Url> committedUrl;

// From now on every navigation of the page is refused, and nobody is told.
- (void)detach;

@end

NS_ASSUME_NONNULL_END
