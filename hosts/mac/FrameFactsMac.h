#pragma once

#include "platform/WebView.h"

#import <WebKit/WebKit.h>

namespace brevanta {

// The facts of a frame (documentation page WKFrameInfo) with the origin that it has, or that is given beside it.
FrameFacts frameFacts(WKFrameInfo* _Nonnull frame);
FrameFacts frameFacts(WKFrameInfo* _Nonnull frame, WKSecurityOrigin* _Nonnull origin);

// Documentation page WKNavigationAction.
NavigationAction navigationAction(WKNavigationAction* _Nonnull action);

}
