#include "mac/FrameFactsMac.h"

#include "mac/TextMac.h"
#include "mac/UrlMac.h"

namespace brevanta {

FrameFacts frameFacts(WKFrameInfo* _Nonnull frame) { return frameFacts(frame, frame.securityOrigin); }

FrameFacts frameFacts(WKFrameInfo* _Nonnull frame, WKSecurityOrigin* _Nonnull origin)
{
    return {
        .isMainFrame = static_cast<bool>(frame.mainFrame),
        .protocol = utf8FromString(origin.protocol),
        .host = utf8FromString(origin.host),
    };
}

NavigationAction navigationAction(WKNavigationAction* _Nonnull action)
{
    const bool isLink = action.navigationType == WKNavigationTypeLinkActivated;
    return {
        .url = urlFrom(action.request.URL),
        .type = isLink ? NavigationType::linkActivated : NavigationType::other,
    };
}

}
