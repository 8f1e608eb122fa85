#include "web/MediaCapturePermissionDelegate.h"

#include "platform/OpenPanel.h"
#include "platform/SystemLog.h"
#include "web/TrustedOrigins.h"

#include <utility>

namespace brevanta {

namespace {

std::string describeSender(const FrameFacts& frame)
{
    return frame.protocol + "://" + frame.host + " (mainFrame=" + (frame.isMainFrame ? "true" : "false") + ")";
}

}

MediaCapturePermissionDelegate::MediaCapturePermissionDelegate(
    const TrustedOrigins& origins, OpenPanel& panel, SystemLog& log, std::function<void()> bringWindowForward)
    : m_origins(origins)
    , m_panel(panel)
    , m_log(log)
    , m_bringWindowForward(std::move(bringWindowForward))
{
}

CaptureDecision MediaCapturePermissionDelegate::decideCapture(CaptureType type, const FrameFacts& frame)
{
    if (type == CaptureType::microphone && m_origins.isTrustedMainFrame(frame))
        return CaptureDecision::grant;
    m_log.log("[MediaCapture] Denied type " + std::to_string(static_cast<int>(type)) + " for " + describeSender(frame));
    return CaptureDecision::deny;
}

void MediaCapturePermissionDelegate::chooseFiles(
    const FileInputRequest& request, const FrameFacts& frame, std::function<void(std::vector<std::string>)> onEnd)
{
    if (!m_origins.isTrustedMainFrame(frame)) {
        m_log.log("[FileInput] Denied open panel for " + describeSender(frame));
        return onEnd({});
    }
    m_bringWindowForward();
    m_panel.present({ .kind = OpenPanelKind::files,
                        .title = {},
                        .directory = {},
                        .allowsMultiple = request.allowsMultiple,
                        .allowsDirectories = request.allowsDirectories },
        std::move(onEnd));
}

}
