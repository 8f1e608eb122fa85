#pragma once

#include "platform/WebView.h"

#include <functional>

namespace brevanta {

class OpenPanel;
class SystemLog;
class TrustedOrigins;

// What the page may ask the user for: the microphone, for dictation, and files; both only from the main frame of a
// trusted origin. Main thread only.
class MediaCapturePermissionDelegate final : public WebUiDelegate {
public:
    MediaCapturePermissionDelegate(
        const TrustedOrigins& origins, OpenPanel& panel, SystemLog& log, std::function<void()> bringWindowForward);

    [[nodiscard]] CaptureDecision decideCapture(CaptureType type, const FrameFacts& frame) override;
    void chooseFiles(const FileInputRequest& request, const FrameFacts& frame,
        std::function<void(std::vector<std::string>)> onEnd) override;

private:
    const TrustedOrigins& m_origins;
    OpenPanel& m_panel;
    SystemLog& m_log;
    std::function<void()> m_bringWindowForward;
};

}
