#include "mac/FrameFactsMac.h"

#include "mac/TextMac.h"

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

}
