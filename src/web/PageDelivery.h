#pragma once

#include <string>

namespace brevanta {

enum class ScriptDelivery { handedOver, refused };

class SystemLog;
class TrustedOrigins;
class WebView;

// The one way by which anything reaches the page: only a document of a trusted origin is told something, judged at the
// moment of each delivery. Main thread only.
class PageDelivery {
public:
    PageDelivery(WebView& webView, const TrustedOrigins& origins, SystemLog& log);

    // Evaluates the script without waiting for a result; refused while there is no document, and, with a line in the
    // log, while the one that is there is not to be trusted. A row of these is logged once: the poll would say the same
    // every two seconds.
    ScriptDelivery deliver(const std::string& script);

private:
    WebView& m_webView;
    const TrustedOrigins& m_origins;
    SystemLog& m_log;
    bool m_refusedLast { false };
};

}
