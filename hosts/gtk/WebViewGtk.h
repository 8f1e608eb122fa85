#pragma once

#include "base/LifeToken.h"
#include "gtk/ScriptBridgeGtk.h"
#include "gtk/ScriptDialogGtk.h"
#include "gtk/SignalConnections.h"
#include "gtk/WebEngineGtk.h"
#include "platform/MainLoop.h"
#include "platform/WebView.h"
#include "web/NavigationReporter.h"

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
    [[nodiscard]] std::optional<Url> committedUrl() const override;
    void setInspectable(Inspectable inspectable) override;
    void detach() override;

    // Where the page shows, empty until the start. Lives as long as this object.
    [[nodiscard]] Gtk::Widget& widget() { return m_container; }

private:
    void connectSignals();
    void trustCertificate();
    [[nodiscard]] WebNavigation begin(double timeoutSeconds, std::function<void()> load);
    void beginLoad();

    void loadChanged(WebKitLoadEvent event);
    void loadFailed(WebKitLoadEvent event, const char* url, const GError& error);
    void urlChanged();
    void decideAction(WebKitNavigationPolicyDecision* decision);
    void decideResponse(WebKitResponsePolicyDecision* decision);
    void dialogOpened(const ScriptDialog& dialog);
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
    WebBrowserDelegate* m_browserDelegate { nullptr };
    std::optional<NavigationReporter> m_navigations; // From the start on.
    std::function<void()> m_load; // Begins the load that was asked for last.
    std::string m_loadUrl; // The URL of the load that was begun last.
    SignalConnections m_signals;
    LifeToken m_life;
};

}
