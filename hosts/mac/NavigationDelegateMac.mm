#include "mac/NavigationDelegateMac.h"

#include "mac/TextMac.h"
#include "mac/UrlMac.h"

#include <algorithm>
#include <deque>
#include <utility>

using brevanta::MainLoop;
using brevanta::NavigationDecision;
using brevanta::Url;
using brevanta::WebError;
using brevanta::WebNavigation;
using brevanta::WebNavigationDelegate;

namespace {

constexpr std::int64_t badServerResponse = -1011; // Documentation page NSURLErrorBadServerResponse.

// The object itself, so that no other one has its address while somebody holds it.
WebNavigation navigationFrom(WKNavigation* _Nullable navigation)
{
    if (!navigation)
        return nullptr;
    return { CFBridgingRetain(navigation), [](CFTypeRef object) { CFRelease(object); } };
}

int httpStatusOf(NSURLResponse* response)
{
    if (![response isKindOfClass:NSHTTPURLResponse.class])
        return 0;
    return static_cast<int>(static_cast<NSHTTPURLResponse*>(response).statusCode);
}

}

@interface BrevantaNavigationDelegate ()

- (WebNavigation)begun:(nullable WKNavigation*)navigation in:(WKWebView*)webView;
- (void)open:(const WebNavigation&)navigation;
- (BOOL)isGone:(const WebNavigation&)navigation;
- (void)hearOf:(const WebNavigation&)navigation;
- (void)failed:(const WebNavigation&)navigation withError:(NSError*)error;
- (void)tell:(std::function<void(WebNavigationDelegate&)>)event;
- (void)tellOneLate;

@end

@implementation BrevantaNavigationDelegate {
    WebNavigationDelegate* _delegate;
    MainLoop* _mainLoop;
    std::vector<WebNavigation> _open; // Begun or started, and neither finished nor failed.
    std::vector<WebNavigation> _gone; // Those that were open when the content process ended.
    WebNavigation _provisional;
    WebNavigation _refused; // Its response was refused.
    WebNavigation _begun; // By the client, and not heard of since.
    std::optional<Url> _urlWhenBegun;
    BOOL _isBeginning;
    std::deque<std::function<void(WebNavigationDelegate&)>> _late;
}

- (instancetype)initWithDelegate:(WebNavigationDelegate&)delegate mainLoop:(MainLoop&)mainLoop
{
    if ((self = [super init])) {
        _delegate = &delegate;
        _mainLoop = &mainLoop;
    }
    return self;
}

- (void)detach
{
    _delegate = nullptr;
}

- (WebNavigation)load:(NSURLRequest*)request in:(WKWebView*)webView
{
    _isBeginning = YES;
    WKNavigation* const navigation = [webView loadRequest:request];
    _isBeginning = NO;
    return [self begun:navigation in:webView];
}

- (WebNavigation)reloadFromOriginIn:(WKWebView*)webView
{
    _isBeginning = YES;
    WKNavigation* const navigation = [webView reloadFromOrigin];
    _isBeginning = NO;
    return [self begun:navigation in:webView];
}

- (WebNavigation)begun:(nullable WKNavigation*)navigation in:(WKWebView*)webView
{
    const WebNavigation begun = navigationFrom(navigation);
    if (begun) {
        [self open:begun];
        _begun = begun;
        _urlWhenBegun = brevanta::urlFrom(webView.URL);
    }
    return begun;
}

- (void)open:(const WebNavigation&)navigation
{
    if (navigation && std::ranges::find(_open, navigation) == _open.end())
        _open.push_back(navigation);
}

- (BOOL)isGone:(const WebNavigation&)navigation
{
    return navigation && std::ranges::find(_gone, navigation) != _gone.end();
}

// What the web view says while it begins a navigation, such as that the one before has failed, is told afterwards; and
// what comes next waits its turn behind it.
- (void)tell:(std::function<void(WebNavigationDelegate&)>)event
{
    if (!_delegate)
        return;
    if (!_isBeginning && _late.empty()) {
        event(*_delegate);
        return;
    }
    _late.push_back(std::move(event));
    BrevantaNavigationDelegate* __weak weakSelf = self;
    _mainLoop->post([weakSelf] { [weakSelf tellOneLate]; });
}

- (void)tellOneLate
{
    if (_late.empty())
        return;
    const auto event = std::move(_late.front());
    _late.pop_front();
    if (_delegate)
        event(*_delegate);
}

- (void)webView:(WKWebView*)webView
    decidePolicyForNavigationAction:(WKNavigationAction*)navigationAction
                    decisionHandler:(void (^)(WKNavigationActionPolicy policy))decisionHandler
{
    auto decision = NavigationDecision::cancel;
    if (_delegate) {
        const bool isLink = navigationAction.navigationType == WKNavigationTypeLinkActivated;
        decision = _delegate->decideAction({
            .url = brevanta::urlFrom(navigationAction.request.URL),
            .type = isLink ? brevanta::NavigationType::linkActivated : brevanta::NavigationType::other,
        });
    }
    decisionHandler(
        decision == NavigationDecision::allow ? WKNavigationActionPolicyAllow : WKNavigationActionPolicyCancel);
}

// What the engine cannot show would become a download, for which there is no place; it then fails by itself.
- (void)webView:(WKWebView*)webView
    decidePolicyForNavigationResponse:(WKNavigationResponse*)navigationResponse
                      decisionHandler:(void (^)(WKNavigationResponsePolicy policy))decisionHandler
{
    bool isAllowed = _delegate && navigationResponse.canShowMIMEType;
    if (_delegate && navigationResponse.forMainFrame) {
        const int status = httpStatusOf(navigationResponse.response);
        if (_delegate->decideResponse({ .httpStatus = status }) == NavigationDecision::cancel) {
            _refused = _provisional;
            isAllowed = false;
        }
    }
    decisionHandler(isAllowed ? WKNavigationResponsePolicyAllow : WKNavigationResponsePolicyCancel);
}

- (void)webView:(WKWebView*)webView didStartProvisionalNavigation:(WKNavigation*)navigation
{
    const WebNavigation started = navigationFrom(navigation);
    if ([self isGone:started])
        return;
    [self open:started];
    _provisional = started;
    [self hearOf:started];
    [self tell:[started](WebNavigationDelegate& delegate) { delegate.didStartProvisional(started); }];
}

// The document's URL is learnt here and nowhere else: the view's becomes that of a load as soon as the load is asked
// for (documentation page WKWebView.URL, "the active URL"), and a script meant for that page would run in the one
// before. For the same reason it counts as unknown when the view's is still that of a further load that the client has
// begun.
- (void)webView:(WKWebView*)webView didCommitNavigation:(WKNavigation*)navigation
{
    const WebNavigation committed = navigationFrom(navigation);
    if ([self isGone:committed])
        return;
    [self hearOf:committed];
    const auto url = brevanta::urlFrom(webView.URL);
    _committedUrl = _begun && url == _urlWhenBegun ? std::nullopt : url;
    _provisional = nullptr;
    [self tell:[committed](WebNavigationDelegate& delegate) { delegate.didCommit(committed); }];
}

- (void)webView:(WKWebView*)webView didFinishNavigation:(WKNavigation*)navigation
{
    const WebNavigation finished = navigationFrom(navigation);
    if ([self isGone:finished])
        return;
    std::erase(_open, finished);
    [self tell:[finished](WebNavigationDelegate& delegate) { delegate.didFinish(finished); }];
}

- (void)webView:(WKWebView*)webView didFailProvisionalNavigation:(WKNavigation*)navigation withError:(NSError*)error
{
    [self failed:navigationFrom(navigation) withError:error];
}

- (void)webView:(WKWebView*)webView didFailNavigation:(WKNavigation*)navigation withError:(NSError*)error
{
    [self failed:navigationFrom(navigation) withError:error];
}

- (void)failed:(const WebNavigation&)navigation withError:(NSError*)error
{
    if ([self isGone:navigation])
        return;
    WebError failure { .domain = brevanta::utf8FromString(error.domain), .code = error.code };
    if (navigation && navigation == _refused)
        failure = { .domain = brevanta::utf8FromString(NSURLErrorDomain), .code = badServerResponse };
    [self hearOf:navigation];
    std::erase(_open, navigation);
    if (navigation == _provisional)
        _provisional = nullptr;
    if (navigation == _refused)
        _refused = nullptr;
    [self tell:[navigation, failure](WebNavigationDelegate& delegate) { delegate.didFail(navigation, failure); }];
}

- (void)hearOf:(const WebNavigation&)navigation
{
    if (navigation == _begun)
        _begun = nullptr;
}

- (void)webViewWebContentProcessDidTerminate:(WKWebView*)webView
{
    _gone = std::exchange(_open, {});
    _provisional = nullptr;
    _refused = nullptr;
    _begun = nullptr;
    _committedUrl.reset();
    [self tell:[](WebNavigationDelegate& delegate) { delegate.contentProcessDidTerminate(); }];
}

@end
