#include "web/BrowserFeatures.h"

#include "base/Text.h"
#include "platform/MainLoop.h"
#include "platform/SystemLog.h"
#include "track/AppAlertPresenter.h"
#include "web/TrustedOrigins.h"

#include <utility>

namespace brevanta {

namespace {

constexpr std::size_t maxDialogBytes = 2000; // More than anybody reads, and less than what outgrows the screen.
constexpr double linkTimeoutSeconds = 60;

const char* nameOf(MissingFeature feature)
{
    switch (feature) {
    case MissingFeature::download:
        return "a download";
    case MissingFeature::newWindow:
        return "a window of its own";
    case MissingFeature::prompt:
        return "prompt()";
    case MissingFeature::untrustedDialog:
        break;
    }
    return "a dialog, for a frame that is not trusted";
}

}

BrowserFeatures::BrowserFeatures(Dependencies dependencies)
    : m_dependencies(dependencies)
{
}

void BrowserFeatures::showDialog(
    const PageDialog& dialog, const FrameFacts& frame, std::function<void(DialogAnswer)> onEnd)
{
    const bool isTrusted = m_dependencies.origins.isTrustedMainFrame(frame);
    if (!isTrusted || dialog.kind == PageDialogKind::prompt) {
        missed(isTrusted ? MissingFeature::prompt : MissingFeature::untrustedDialog);
        return onEnd(DialogAnswer::dismissed);
    }
    dismissDialog();
    // A name of its own: an alert that has been withdrawn may still be on its way off the screen.
    m_dialog = { "page-dialog-" + std::to_string(++m_dialogCount), std::move(onEnd) };
    const Alert alert { .identifier = m_dialog->identifier,
        .style = AlertStyle::informational,
        .message = frame.host,
        .informativeText = clipped(dialog.text, maxDialogBytes),
        .buttons = dialog.kind == PageDialogKind::alert ? std::vector<std::string> { "OK" }
                                                        : std::vector<std::string> { "OK", "Cancel" } };
    m_dependencies.alerts.present(alert, m_life.guard([this, identifier = alert.identifier](AlertResponse response) {
        const bool isAccepted = response.end == AlertEnd::button && response.button == 0;
        dialogEnded(identifier, isAccepted ? DialogAnswer::accepted : DialogAnswer::dismissed);
    }));
}

void BrowserFeatures::dismissDialog()
{
    if (!m_dialog)
        return;
    const auto identifier = m_dialog->identifier;
    dialogEnded(identifier, DialogAnswer::dismissed);
    m_dependencies.alerts.withdraw(identifier);
}

void BrowserFeatures::dialogEnded(const std::string& identifier, DialogAnswer answer)
{
    if (!m_dialog || m_dialog->identifier != identifier)
        return;
    const auto ended = std::exchange(m_dialog, std::nullopt);
    ended->onEnd(answer);
}

void BrowserFeatures::newWindowRequested(const NavigationAction& action)
{
    if (action.type != NavigationType::linkActivated || !action.url
        || !m_dependencies.origins.isNavigationAllowed(*action.url))
        return missed(MissingFeature::newWindow);
    // Not from inside of the engine's question. Nobody waits for this navigation; it is followed like the page's own.
    m_dependencies.mainLoop.post(m_life.guard(
        [this, url = action.url->text] { static_cast<void>(m_dependencies.webView.load(url, linkTimeoutSeconds)); }));
}

void BrowserFeatures::missed(MissingFeature feature)
{
    if (m_dependencies.document.missed.insert(feature).second)
        m_dependencies.log.log(
            std::string("[WebViewBridge] the page wants what it does not get here: ") + nameOf(feature));
}

}
