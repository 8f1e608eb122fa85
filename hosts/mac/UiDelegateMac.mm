#include "mac/UiDelegateMac.h"

#include "mac/FrameFactsMac.h"
#include "mac/TextMac.h"

#include <utility>

using brevanta::CaptureDecision;
using brevanta::CaptureType;
using brevanta::DialogAnswer;
using brevanta::PageDialogKind;
using brevanta::WebBrowserDelegate;
using brevanta::WebUiDelegate;

namespace {

// WebKit raises an exception when a completion handler goes without having been called, and when it is called twice.
// The answer of a handler that would go without one is Value's empty one.
template <typename Value> class Answer {
public:
    explicit Answer(std::function<void(const Value&)> completion)
        : m_completion(std::move(completion))
    {
    }
    ~Answer() { give({}); }

    Answer(const Answer&) = delete;
    Answer& operator=(const Answer&) = delete;

    void give(const Value& value)
    {
        if (const auto completion = std::exchange(m_completion, nullptr))
            completion(value);
    }

private:
    std::function<void(const Value&)> m_completion;
};

NSArray<NSURL*>* _Nullable urlsFrom(const std::vector<std::string>& paths)
{
    if (paths.empty())
        return nil;
    NSMutableArray<NSURL*>* const urls = [NSMutableArray array];
    for (const std::string& path : paths)
        [urls addObject:[NSURL fileURLWithPath:brevanta::displayString(path)]];
    return urls;
}

std::optional<CaptureType> captureTypeFrom(WKMediaCaptureType type)
{
    switch (type) {
    case WKMediaCaptureTypeCamera:
        return CaptureType::camera;
    case WKMediaCaptureTypeMicrophone:
        return CaptureType::microphone;
    case WKMediaCaptureTypeCameraAndMicrophone:
        return CaptureType::cameraAndMicrophone;
    }
    return std::nullopt;
}

}

@interface BrevantaUiDelegate ()

- (void)show:(PageDialogKind)kind
        text:(NSString*)text
    forFrame:(WKFrameInfo*)frame
       onEnd:(std::function<void(const DialogAnswer&)>)onEnd;

@end

@implementation BrevantaUiDelegate {
    WebUiDelegate* _delegate;
    WebBrowserDelegate* _browserDelegate;
    BrevantaNavigationDelegate* _navigationDelegate;
}

- (instancetype)initWithDelegate:(WebUiDelegate&)delegate
                 browserDelegate:(WebBrowserDelegate&)browserDelegate
              navigationDelegate:(BrevantaNavigationDelegate*)navigationDelegate
{
    if ((self = [super init])) {
        _delegate = &delegate;
        _browserDelegate = &browserDelegate;
        _navigationDelegate = navigationDelegate;
    }
    return self;
}

- (void)detach
{
    _delegate = nullptr;
    _browserDelegate = nullptr;
}

- (void)webView:(WKWebView*)webView
    requestMediaCapturePermissionForOrigin:(WKSecurityOrigin*)origin
                          initiatedByFrame:(WKFrameInfo*)frame
                                      type:(WKMediaCaptureType)type
                           decisionHandler:(void (^)(WKPermissionDecision decision))decisionHandler
{
    auto decision = CaptureDecision::deny;
    const auto captureType = captureTypeFrom(type);
    if (_delegate && captureType)
        decision = _delegate->decideCapture(*captureType, brevanta::frameFacts(frame, origin));
    decisionHandler(decision == CaptureDecision::grant ? WKPermissionDecisionGrant : WKPermissionDecisionDeny);
}

- (void)webView:(WKWebView*)webView
    runOpenPanelWithParameters:(WKOpenPanelParameters*)parameters
              initiatedByFrame:(WKFrameInfo*)frame
             completionHandler:(void (^)(NSArray<NSURL*>* _Nullable urls))completionHandler
{
    const auto answer = std::make_shared<Answer<std::vector<std::string>>>(
        [completionHandler](const std::vector<std::string>& paths) { completionHandler(urlsFrom(paths)); });
    if (!_delegate)
        return;
    const brevanta::FileInputRequest request {
        .allowsMultiple = static_cast<bool>(parameters.allowsMultipleSelection),
        .allowsDirectories = static_cast<bool>(parameters.allowsDirectories),
    };
    _delegate->chooseFiles(
        request, brevanta::frameFacts(frame), [answer](const std::vector<std::string>& paths) { answer->give(paths); });
}

- (void)show:(PageDialogKind)kind
        text:(NSString*)text
    forFrame:(WKFrameInfo*)frame
       onEnd:(std::function<void(const DialogAnswer&)>)onEnd
{
    BrevantaNavigationDelegate* const navigations = _navigationDelegate;
    [navigations pageWaits];
    const auto answer = std::make_shared<Answer<DialogAnswer>>([navigations, onEnd](const DialogAnswer& given) {
        [navigations pageGoesOn];
        onEnd(given);
    });
    if (_browserDelegate)
        _browserDelegate->showDialog({ .kind = kind, .text = brevanta::utf8FromString(text) },
            brevanta::frameFacts(frame), [answer](DialogAnswer given) { answer->give(given); });
}

- (void)webView:(WKWebView*)webView
    runJavaScriptAlertPanelWithMessage:(NSString*)message
                      initiatedByFrame:(WKFrameInfo*)frame
                     completionHandler:(void (^)(void))completionHandler
{
    [self show:PageDialogKind::alert
            text:message
        forFrame:frame
           onEnd:[completionHandler](DialogAnswer) { completionHandler(); }];
}

- (void)webView:(WKWebView*)webView
    runJavaScriptConfirmPanelWithMessage:(NSString*)message
                        initiatedByFrame:(WKFrameInfo*)frame
                       completionHandler:(void (^)(BOOL result))completionHandler
{
    [self show:PageDialogKind::confirm
            text:message
        forFrame:frame
           onEnd:[completionHandler](
                     DialogAnswer answer) { completionHandler(answer == DialogAnswer::accepted ? YES : NO); }];
}

- (void)webView:(WKWebView*)webView
    runJavaScriptTextInputPanelWithPrompt:(NSString*)prompt
                              defaultText:(nullable NSString*)defaultText
                         initiatedByFrame:(WKFrameInfo*)frame
                        completionHandler:(void (^)(NSString* _Nullable result))completionHandler
{
    [self show:PageDialogKind::prompt
            text:prompt
        forFrame:frame
           onEnd:[completionHandler](DialogAnswer) { completionHandler(nil); }];
}

- (nullable WKWebView*)webView:(WKWebView*)webView
    createWebViewWithConfiguration:(WKWebViewConfiguration*)configuration
               forNavigationAction:(WKNavigationAction*)navigationAction
                    windowFeatures:(WKWindowFeatures*)windowFeatures
{
    if (_browserDelegate)
        _browserDelegate->newWindowRequested(brevanta::navigationAction(navigationAction));
    return nil;
}

@end
