#pragma once

#include "platform/MainLoop.h"
#include "platform/WebView.h"

#import "mac/NavigationDelegateMac.h"
#import "mac/ScriptHandlersMac.h"
#import "mac/UiDelegateMac.h"

namespace brevanta {

// The system's web view (documentation page WKWebView), inside a view of its own so that the window can be built around
// it. The main loop outlives it.
class WebViewMac final : public WebView {
public:
    explicit WebViewMac(MainLoop& mainLoop);
    ~WebViewMac() override;

    WebViewMac(const WebViewMac&) = delete;
    WebViewMac& operator=(const WebViewMac&) = delete;

    void start(const WebViewConfiguration& configuration) override;
    [[nodiscard]] WebNavigation load(const std::string& url, double timeoutSeconds) override;
    [[nodiscard]] WebNavigation reloadFromOrigin() override;
    void evaluate(const std::string& script) override;
    [[nodiscard]] std::optional<Url> committedUrl() const override;
    void setInspectable(Inspectable inspectable) override;
    void detach() override;

    // Holds the web view, once that is there.
    [[nodiscard]] NSView* _Nonnull nativeView() const { return m_container; }

private:
    [[nodiscard]] WKUserContentController* _Nonnull createContentController(const WebViewConfiguration& configuration);

    MainLoop& m_mainLoop;
    NSView* _Nonnull m_container;
    WKWebView* _Nullable m_webView { nil };
    BrevantaNavigationDelegate* _Nullable m_navigationDelegate { nil }; // WKWebView holds its delegates weakly.
    BrevantaUiDelegate* _Nullable m_uiDelegate { nil };
    NSMutableArray<BrevantaMessageProxy*>* _Nonnull m_messageProxies;
    NSMutableArray<BrevantaReplyProxy*>* _Nonnull m_replyProxies;
};

}
