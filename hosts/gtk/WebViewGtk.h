#pragma once

#include "base/LifeToken.h"
#include "gtk/NavigationTracker.h"
#include "gtk/OrderedCalls.h"
#include "gtk/ScriptBridgeGtk.h"
#include "gtk/SignalConnections.h"
#include "gtk/WebEngineGtk.h"
#include "platform/MainLoop.h"
#include "platform/WebView.h"

#include <gtkmm.h>

namespace brevanta {

class SystemLog;

// WebKitGTK. The messages of the page come by way of an extension in the web process, see webextension.
class WebViewGtk final : public WebView {
public:
    // Both live longer than this object. A certificate that cannot be read is logged, and trusted for nothing.
    WebViewGtk(MainLoop& mainLoop, SystemLog& log, WebEngineOptions options);
    ~WebViewGtk() override;
    WebViewGtk(const WebViewGtk&) = delete;
    WebViewGtk& operator=(const WebViewGtk&) = delete;

    void start(const WebViewConfiguration& configuration) override;
    [[nodiscard]] WebNavigation load(const std::string& url, double timeoutSeconds) override;
    [[nodiscard]] WebNavigation reloadFromOrigin() override;
    void evaluate(const std::string& script) override;
    [[nodiscard]] std::optional<Url> committedUrl() const override { return m_committedUrl; }
    void setInspectable(Inspectable inspectable) override;
    void detach() override;

    // Where the page shows, empty until the start. Lives as long as this object.
    [[nodiscard]] Gtk::Widget& widget() { return m_container; }

private:
    struct IdleTimeout {
        WebNavigation navigation;
        double seconds { 0 };
        std::unique_ptr<Timer> timer;
    };

    void connectSignals();
    void trustCertificate();
    [[nodiscard]] WebNavigation begin(double timeoutSeconds, std::function<void()> load);
    void handOverLoad();
    void loadPastCaches(const std::string& url);
    void tell(NavigationTracker::Notices notices);
    void tellDelegate(const NavigationNotice& notice);
    void startIdleTimer();
    void timedOut();

    void loadChanged(WebKitLoadEvent event);
    void loadFailed(WebKitLoadEvent event, const char* url, const GError& error);
    void processTerminated();
    void urlChanged();
    void decideAction(WebKitNavigationPolicyDecision* decision);
    void decideResponse(WebKitResponsePolicyDecision* decision);
    [[nodiscard]] FrameFacts pageFacts() const;

    MainLoop& m_mainLoop;
    SystemLog& m_log;
    WebEngineOptions m_options;
    Gtk::Box m_container;
    WebEngine m_engine;
    GObjectPtr<GTlsCertificate> m_certificate;
    std::optional<ScriptBridgeGtk> m_bridge;
    WebNavigationDelegate* m_navigationDelegate { nullptr }; // From the start on.
    WebUiDelegate* m_uiDelegate { nullptr };
    NavigationTracker m_tracker;
    std::function<void()> m_waitingLoad; // Begins the load that was asked for and not yet handed over.
    std::string m_handedOverUrl;
    OrderedCalls m_calls;
    IdleTimeout m_idleTimeout;
    std::optional<Url> m_committedUrl;
    SignalConnections m_signals;
    LifeToken m_life;
};

}
