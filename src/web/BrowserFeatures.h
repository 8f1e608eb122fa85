#pragma once

#include "base/LifeToken.h"
#include "platform/WebView.h"
#include "web/DocumentMemory.h"

#include <functional>
#include <optional>
#include <string>

namespace brevanta {

class AppAlertPresenter;
class MainLoop;
class SystemLog;
class TrustedOrigins;

// What a page expects of a browser besides being shown: dialogs, which only the main frame of a trusted origin gets;
// links that ask for a window, which load in the one that there is; and what the log says once that there is none of.
// Main thread only.
class BrowserFeatures final : public WebBrowserDelegate {
public:
    struct Dependencies {
        MainLoop& mainLoop;
        WebView& webView;
        AppAlertPresenter& alerts;
        const TrustedOrigins& origins;
        DocumentMemory& document;
        SystemLog& log;
    };

    explicit BrowserFeatures(Dependencies dependencies);

    void showDialog(
        const PageDialog& dialog, const FrameFacts& frame, std::function<void(DialogAnswer)> onEnd) override;
    void newWindowRequested(const NavigationAction& action) override;

    void missed(MissingFeature feature);

    // The page's scripts stand still while its dialog is open, and so does every load: the dialog is dismissed when the
    // page goes, and before a load is asked for.
    [[nodiscard]] bool isDialogOpen() const { return m_dialog.has_value(); }
    void dismissDialog();

private:
    struct OpenDialog {
        std::string identifier; // Of the alert.
        std::function<void(DialogAnswer)> onEnd;
    };

    void dialogEnded(const std::string& identifier, DialogAnswer answer);

    Dependencies m_dependencies;
    std::optional<OpenDialog> m_dialog;
    int m_dialogCount { 0 };
    LifeToken m_life;
};

}
