#include "mac/NavigationDelegateMac.h"

#include "base/Text.h"
#include "mac/FrameFactsMac.h"
#include "mac/TextMac.h"
#include "mac/UrlMac.h"
#include "web/NavigationReporter.h"
#include "web/UrlError.h"

using brevanta::LoadStage;
using brevanta::MainLoop;
using brevanta::NavigationDecision;
using brevanta::NavigationReporter;
using brevanta::NavigationTracker;
using brevanta::OrderedCalls;
using brevanta::Url;
using brevanta::WebNavigation;
using brevanta::WebNavigationDelegate;

namespace {

// The object itself, so that no other one has its address while somebody holds it.
WebNavigation navigationFrom(WKNavigation* _Nullable navigation)
{
    if (!navigation)
        return nullptr;
    return { CFBridgingRetain(navigation), [](CFTypeRef object) { CFRelease(object); } };
}

// What the server wants saved, browsers download: RFC 6266, section 4.2.
bool isAttachment(NSURLResponse* response)
{
    if (![response isKindOfClass:NSHTTPURLResponse.class])
        return false;
    NSString* const disposition =
        [static_cast<NSHTTPURLResponse*>(response) valueForHTTPHeaderField:@"Content-Disposition"];
    return brevanta::lowerCased(brevanta::utf8FromString(disposition ? disposition : @"")).starts_with("attachment");
}

int httpStatusOf(NSURLResponse* response)
{
    if (![response isKindOfClass:NSHTTPURLResponse.class])
        return 0;
    return static_cast<int>(static_cast<NSHTTPURLResponse*>(response).statusCode);
}

}

@interface BrevantaNavigationDelegate ()

- (WebNavigation)begun:(nullable WKNavigation*)navigation within:(double)timeoutSeconds;
- (void)failed:(WKNavigation*)navigation at:(LoadStage)stage withError:(NSError*)error;

@end

@implementation BrevantaNavigationDelegate {
    WebNavigationDelegate* _delegate;
    WKWebView* __weak _webView;
    std::optional<NavigationReporter> _navigations;
}

- (instancetype)initWithDelegate:(WebNavigationDelegate&)delegate
                        mainLoop:(MainLoop&)mainLoop
                         webView:(WKWebView*)webView
{
    if ((self = [super init])) {
        _delegate = &delegate;
        _webView = webView;
        WKWebView* __weak weakWebView = webView;
        _navigations.emplace(mainLoop, delegate,
            NavigationReporter::Engine { .stop = [weakWebView] { [weakWebView stopLoading]; }, .load = [] {} });
        [webView addObserver:self
                  forKeyPath:NSStringFromSelector(@selector(estimatedProgress))
                     options:NSKeyValueObservingOptionNew
                     context:nullptr];
    }
    return self;
}

- (void)detach
{
    if (!_delegate)
        return;
    _delegate = nullptr;
    _navigations->end();
    [_webView removeObserver:self forKeyPath:NSStringFromSelector(@selector(estimatedProgress))];
}

- (std::optional<Url>)committedUrl
{
    return _navigations->tracker().document();
}

- (WebNavigation)load:(NSURLRequest*)request within:(double)timeoutSeconds
{
    const OrderedCalls::Hold hold(_navigations->calls());
    return [self begun:[_webView loadRequest:request] within:timeoutSeconds];
}

- (WebNavigation)reloadFromOrigin
{
    const OrderedCalls::Hold hold(_navigations->calls());
    return [self begun:[_webView reloadFromOrigin] within:NavigationReporter::reloadTimeoutSeconds];
}

- (WebNavigation)begun:(nullable WKNavigation*)navigation within:(double)timeoutSeconds
{
    if (!navigation)
        return nullptr;
    return _navigations->requested(timeoutSeconds, navigationFrom(navigation), brevanta::urlFrom(_webView.URL));
}

- (void)pageWaits
{
    _navigations->pause();
}

- (void)pageGoesOn
{
    if (_delegate)
        _navigations->progressed();
}

// Tells of every piece that arrives (documentation page WKWebView.estimatedProgress).
- (void)observeValueForKeyPath:(nullable NSString*)keyPath
                      ofObject:(nullable id)object
                        change:(nullable NSDictionary<NSKeyValueChangeKey, id>*)change
                       context:(nullable void*)context
{
    _navigations->progressed();
}

- (void)webView:(WKWebView*)webView
    decidePolicyForNavigationAction:(WKNavigationAction*)navigationAction
                    decisionHandler:(void (^)(WKNavigationActionPolicy policy))decisionHandler
{
    auto decision = NavigationDecision::cancel;
    if (_delegate)
        decision = _delegate->decideAction(brevanta::navigationAction(navigationAction));
    if (decision == NavigationDecision::allow && navigationAction.shouldPerformDownload) {
        decision = NavigationDecision::cancel;
        _delegate->downloadRefused();
    }
    decisionHandler(
        decision == NavigationDecision::allow ? WKNavigationActionPolicyAllow : WKNavigationActionPolicyCancel);
}

// What would become a download, for which there is no place, fails by itself.
- (void)webView:(WKWebView*)webView
    decidePolicyForNavigationResponse:(WKNavigationResponse*)navigationResponse
                      decisionHandler:(void (^)(WKNavigationResponsePolicy policy))decisionHandler
{
    bool isAllowed = _delegate && navigationResponse.canShowMIMEType && !isAttachment(navigationResponse.response);
    if (_delegate && !isAllowed)
        _delegate->downloadRefused();
    if (_delegate && navigationResponse.forMainFrame) {
        NSURLResponse* const response = navigationResponse.response;
        auto& tracker = _navigations->tracker();
        tracker.responded(brevanta::urlFrom(response.URL));
        if (_delegate->decideResponse({ .httpStatus = httpStatusOf(response) }) == NavigationDecision::cancel) {
            tracker.failsFor(brevanta::webError(brevanta::UrlError::badServerResponse));
            isAllowed = false;
        }
    }
    decisionHandler(isAllowed ? WKNavigationResponsePolicyAllow : WKNavigationResponsePolicyCancel);
}

- (void)webView:(WKWebView*)webView didStartProvisionalNavigation:(WKNavigation*)navigation
{
    _navigations->tell(_navigations->tracker().started(navigationFrom(navigation)));
}

// The view's URL becomes that of a load as soon as the load is asked for (documentation page WKWebView.URL, "the active
// URL"), and a script meant for that page would run in the one before. So it is read here and nowhere else.
- (void)webView:(WKWebView*)webView didCommitNavigation:(WKNavigation*)navigation
{
    _navigations->tell(_navigations->tracker().committed(navigationFrom(navigation), brevanta::urlFrom(webView.URL)));
}

- (void)webView:(WKWebView*)webView didFinishNavigation:(WKNavigation*)navigation
{
    _navigations->tell(_navigations->tracker().finished(navigationFrom(navigation)));
}

- (void)webView:(WKWebView*)webView didFailProvisionalNavigation:(WKNavigation*)navigation withError:(NSError*)error
{
    [self failed:navigation at:LoadStage::provisional withError:error];
}

- (void)webView:(WKWebView*)webView didFailNavigation:(WKNavigation*)navigation withError:(NSError*)error
{
    [self failed:navigation at:LoadStage::committed withError:error];
}

- (void)failed:(WKNavigation*)navigation at:(LoadStage)stage withError:(NSError*)error
{
    _navigations->tell(_navigations->tracker().failed(
        navigationFrom(navigation), stage, { .domain = brevanta::utf8FromString(error.domain), .code = error.code }));
}

- (void)webViewWebContentProcessDidTerminate:(WKWebView*)webView
{
    _navigations->tell(_navigations->tracker().processEnded());
}

@end
