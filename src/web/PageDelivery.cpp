#include "web/PageDelivery.h"

#include "platform/SystemLog.h"
#include "platform/WebView.h"
#include "web/TrustedOrigins.h"

namespace brevanta {

PageDelivery::PageDelivery(WebView& webView, const TrustedOrigins& origins, SystemLog& log)
    : m_webView(webView)
    , m_origins(origins)
    , m_log(log)
{
}

ScriptDelivery PageDelivery::deliver(const std::string& script)
{
    const auto url = m_webView.committedUrl();
    if (!url) // Nobody is there to be told or to be refused: before the first page, and after one whose process ended.
        return ScriptDelivery::refused;
    if (m_origins.isBridgeTrusted(*url)) {
        m_refusedLast = false;
        m_webView.evaluate(script);
        return ScriptDelivery::handedOver;
    }
    if (!m_refusedLast)
        m_log.log("[WebViewBridge] Dropping native → web delivery: current document is not bridge-trusted");
    m_refusedLast = true;
    return ScriptDelivery::refused;
}

}
