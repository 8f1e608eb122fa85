#include "mac/UiDelegateMac.h"

#include "mac/FrameFactsMac.h"
#include "mac/TextMac.h"

#include <utility>

using brevanta::CaptureDecision;
using brevanta::CaptureType;
using brevanta::WebUiDelegate;

namespace {

using FileCompletion = void (^)(NSArray<NSURL*>* _Nullable urls);

// WebKit raises an exception when a completion handler goes without having been called, and when it is called twice.
class FileAnswer {
public:
    explicit FileAnswer(FileCompletion completion)
        : m_completion(completion)
    {
    }
    ~FileAnswer() { give({}); }

    FileAnswer(const FileAnswer&) = delete;
    FileAnswer& operator=(const FileAnswer&) = delete;

    void give(const std::vector<std::string>& paths)
    {
        const FileCompletion completion = std::exchange(m_completion, nil);
        if (completion)
            completion(paths.empty() ? nil : urlsFrom(paths));
    }

private:
    static NSArray<NSURL*>* urlsFrom(const std::vector<std::string>& paths)
    {
        NSMutableArray<NSURL*>* const urls = [NSMutableArray array];
        for (const std::string& path : paths)
            [urls addObject:[NSURL fileURLWithPath:brevanta::displayString(path)]];
        return urls;
    }

    FileCompletion _Nullable m_completion;
};

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

@implementation BrevantaUiDelegate {
    WebUiDelegate* _delegate;
}

- (instancetype)initWithDelegate:(WebUiDelegate&)delegate
{
    if ((self = [super init]))
        _delegate = &delegate;
    return self;
}

- (void)detach
{
    _delegate = nullptr;
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
    const auto answer = std::make_shared<FileAnswer>(completionHandler);
    if (!_delegate)
        return;
    const brevanta::FileInputRequest request {
        .allowsMultiple = static_cast<bool>(parameters.allowsMultipleSelection),
        .allowsDirectories = static_cast<bool>(parameters.allowsDirectories),
    };
    _delegate->chooseFiles(
        request, brevanta::frameFacts(frame), [answer](const std::vector<std::string>& paths) { answer->give(paths); });
}

@end
