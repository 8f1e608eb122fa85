#include "mac/WebViewMac.h"

#include "mac/TextMac.h"
#include "mac/UrlMac.h"

namespace brevanta {

WebViewMac::WebViewMac(MainLoop& mainLoop)
    : m_mainLoop(mainLoop)
    , m_container([[NSView alloc] initWithFrame:NSRect {}])
    , m_messageProxies([NSMutableArray array])
    , m_replyProxies([NSMutableArray array])
{
}

WebViewMac::~WebViewMac() { detach(); }

void WebViewMac::start(const WebViewConfiguration& configuration)
{
    WKWebViewConfiguration* const native = [[WKWebViewConfiguration alloc] init];
    native.userContentController = createContentController(configuration);
    if (!configuration.applicationNameForUserAgent.empty())
        native.applicationNameForUserAgent = displayString(configuration.applicationNameForUserAgent);
    WKWebView* const webView = [[WKWebView alloc] initWithFrame:m_container.bounds configuration:native];
    BrevantaNavigationDelegate* const navigationDelegate =
        [[BrevantaNavigationDelegate alloc] initWithDelegate:configuration.navigationDelegate
                                                    mainLoop:m_mainLoop
                                                     webView:webView];
    m_uiDelegate = [[BrevantaUiDelegate alloc] initWithDelegate:configuration.uiDelegate
                                                browserDelegate:configuration.browserDelegate
                                             navigationDelegate:navigationDelegate];
    webView.navigationDelegate = navigationDelegate;
    webView.UIDelegate = m_uiDelegate;
    webView.autoresizingMask = NSViewWidthSizable | NSViewHeightSizable;
    [m_container addSubview:webView];
    m_navigationDelegate = navigationDelegate;
    m_webView = webView;
}

WKUserContentController* _Nonnull WebViewMac::createContentController(const WebViewConfiguration& configuration)
{
    WKUserContentController* const controller = [[WKUserContentController alloc] init];
    for (const auto& entry : configuration.messageHandlers) {
        BrevantaMessageProxy* const proxy = [[BrevantaMessageProxy alloc] initWithHandler:entry.handler];
        [m_messageProxies addObject:proxy];
        [controller addScriptMessageHandler:proxy name:displayString(entry.name)];
    }
    for (const auto& entry : configuration.replyHandlers) {
        BrevantaReplyProxy* const proxy = [[BrevantaReplyProxy alloc] initWithHandler:entry.handler];
        [m_replyProxies addObject:proxy];
        [controller addScriptMessageHandlerWithReply:proxy
                                        contentWorld:WKContentWorld.pageWorld
                                                name:displayString(entry.name)];
    }
    if (!configuration.documentStartScript.empty()) {
        NSString* const source = displayString(configuration.documentStartScript);
        [controller addUserScript:[[WKUserScript alloc] initWithSource:source
                                                         injectionTime:WKUserScriptInjectionTimeAtDocumentStart
                                                      forMainFrameOnly:YES]];
    }
    return controller;
}

WebNavigation WebViewMac::load(const std::string& url, double timeoutSeconds)
{
    NSURL* const address = absoluteUrlFromText(stringFromUtf8(url));
    if (!address || !m_webView)
        return nullptr;
    NSURLRequest* const request = [NSURLRequest requestWithURL:address
                                                   cachePolicy:NSURLRequestUseProtocolCachePolicy
                                               timeoutInterval:timeoutSeconds];
    return [m_navigationDelegate load:request within:timeoutSeconds];
}

// A page is in the list as soon as it has been committed, and still after its process has gone.
WebNavigation WebViewMac::reloadFromOrigin()
{
    WKWebView* const webView = m_webView;
    if (!webView || !webView.backForwardList.currentItem)
        return nullptr;
    return [m_navigationDelegate reloadFromOrigin];
}

void WebViewMac::evaluate(const std::string& script)
{
    if (NSString* const source = stringFromUtf8(script))
        [m_webView evaluateJavaScript:source completionHandler:nil];
}

std::optional<Url> WebViewMac::committedUrl() const
{
    return m_navigationDelegate ? m_navigationDelegate.committedUrl : std::nullopt;
}

void WebViewMac::setInspectable(Inspectable inspectable) { m_webView.inspectable = inspectable == Inspectable::yes; }

void WebViewMac::detach()
{
    [m_navigationDelegate detach];
    [m_uiDelegate detach];
    for (BrevantaMessageProxy* proxy in m_messageProxies)
        [proxy detach];
    for (BrevantaReplyProxy* proxy in m_replyProxies)
        [proxy detach];
}

}
