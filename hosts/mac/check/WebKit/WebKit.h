// Declarations for checking the Mac host without a Mac; see docs/mac-check.md. Not part of any build.
#pragma once

#include <AppKit/AppKit.h>

NS_ASSUME_NONNULL_BEGIN

@class WKUserContentController;
@class WKWebView;

// Documentation: WKNavigation; macOS 10.10.
@interface WKNavigation : NSObject
@end

// Documentation: WKSecurityOrigin; macOS 10.11.
@interface WKSecurityOrigin : NSObject
@property (nonatomic, readonly, copy) NSString* protocol;
@property (nonatomic, readonly, copy) NSString* host;
@end

// Documentation: WKFrameInfo; macOS 10.10.
@interface WKFrameInfo : NSObject
@property (nonatomic, readonly, getter=isMainFrame) BOOL mainFrame;
@property (nonatomic, readonly) WKSecurityOrigin* securityOrigin; // macOS 10.11
@end

// Documentation: WKScriptMessage; macOS 10.10.
@interface WKScriptMessage : NSObject
@property (nonatomic, readonly, copy) id body;
@property (nonatomic, readonly, copy) WKFrameInfo* frameInfo;
@end

// Documentation: WKScriptMessageHandler; macOS 10.10.
@protocol WKScriptMessageHandler <NSObject>
- (void)userContentController:(WKUserContentController*)userContentController
      didReceiveScriptMessage:(WKScriptMessage*)message;
@end

// Documentation: WKScriptMessageHandlerWithReply; macOS 11.0. A nil reply without an error message is undefined.
@protocol WKScriptMessageHandlerWithReply <NSObject>
- (void)userContentController:(WKUserContentController*)userContentController
      didReceiveScriptMessage:(WKScriptMessage*)message
                 replyHandler:(void (^)(id _Nullable reply, NSString* _Nullable errorMessage))replyHandler;
@end

// Documentation: WKContentWorld; macOS 11.0.
@interface WKContentWorld : NSObject
@property (class, nonatomic, readonly) WKContentWorld* pageWorld;
@end

// Documentation: WKUserScriptInjectionTime; macOS 10.10.
typedef NS_ENUM(NSInteger, WKUserScriptInjectionTime) { WKUserScriptInjectionTimeAtDocumentStart = 0 };

// Documentation: WKUserScript; macOS 10.10.
@interface WKUserScript : NSObject
- (instancetype)initWithSource:(NSString*)source
                 injectionTime:(WKUserScriptInjectionTime)injectionTime
              forMainFrameOnly:(BOOL)forMainFrameOnly;
@end

// Documentation: WKUserContentController; macOS 10.10.
@interface WKUserContentController : NSObject
- (void)addUserScript:(WKUserScript*)userScript;
- (void)addScriptMessageHandler:(id<WKScriptMessageHandler>)scriptMessageHandler name:(NSString*)name;
- (void)addScriptMessageHandlerWithReply:(id<WKScriptMessageHandlerWithReply>)scriptMessageHandlerWithReply
                            contentWorld:(WKContentWorld*)contentWorld
                                    name:(NSString*)name; // macOS 11.0
@end

// Documentation: WKWebViewConfiguration; macOS 10.10.
@interface WKWebViewConfiguration : NSObject
@property (nonatomic, strong) WKUserContentController* userContentController;
@property (nullable, nonatomic, copy) NSString* applicationNameForUserAgent; // macOS 10.11
@end

// Documentation: WKNavigationType; macOS 10.10.
typedef NS_ENUM(NSInteger, WKNavigationType) { WKNavigationTypeLinkActivated = 0 };

// Documentation: WKNavigationAction; macOS 10.10.
@interface WKNavigationAction : NSObject
@property (nonatomic, readonly) WKNavigationType navigationType;
@property (nonatomic, readonly, copy) NSURLRequest* request;
@property (nonatomic, readonly) BOOL shouldPerformDownload; // macOS 11.3
@end

// Documentation: WKNavigationResponse; macOS 10.10.
@interface WKNavigationResponse : NSObject
@property (nonatomic, readonly, getter=isForMainFrame) BOOL forMainFrame;
@property (nonatomic, readonly, copy) NSURLResponse* response;
@property (nonatomic, readonly) BOOL canShowMIMEType;
@end

// Documentation: WKNavigationActionPolicy; macOS 10.10.
typedef NS_ENUM(NSInteger, WKNavigationActionPolicy) {
    WKNavigationActionPolicyCancel = 0,
    WKNavigationActionPolicyAllow = 1
};

// Documentation: WKNavigationResponsePolicy; macOS 10.10.
typedef NS_ENUM(NSInteger, WKNavigationResponsePolicy) {
    WKNavigationResponsePolicyCancel = 0,
    WKNavigationResponsePolicyAllow = 1
};

// Documentation: WKNavigationDelegate; macOS 10.10. On the main thread.
@protocol WKNavigationDelegate <NSObject>
@optional
- (void)webView:(WKWebView*)webView
    decidePolicyForNavigationAction:(WKNavigationAction*)navigationAction
                    decisionHandler:(void (^)(WKNavigationActionPolicy policy))decisionHandler;
- (void)webView:(WKWebView*)webView
    decidePolicyForNavigationResponse:(WKNavigationResponse*)navigationResponse
                      decisionHandler:(void (^)(WKNavigationResponsePolicy policy))decisionHandler;
- (void)webView:(WKWebView*)webView didStartProvisionalNavigation:(null_unspecified WKNavigation*)navigation;
- (void)webView:(WKWebView*)webView
    didFailProvisionalNavigation:(null_unspecified WKNavigation*)navigation
                       withError:(NSError*)error;
- (void)webView:(WKWebView*)webView didCommitNavigation:(null_unspecified WKNavigation*)navigation;
- (void)webView:(WKWebView*)webView didFinishNavigation:(null_unspecified WKNavigation*)navigation;
- (void)webView:(WKWebView*)webView
    didFailNavigation:(null_unspecified WKNavigation*)navigation
            withError:(NSError*)error;
- (void)webViewWebContentProcessDidTerminate:(WKWebView*)webView; // macOS 10.11
@end

// Documentation: WKOpenPanelParameters; macOS 10.12.
@interface WKOpenPanelParameters : NSObject
@property (nonatomic, readonly) BOOL allowsMultipleSelection;
@property (nonatomic, readonly) BOOL allowsDirectories; // macOS 10.13.4
@end

// Documentation: WKMediaCaptureType; macOS 12.0.
typedef NS_ENUM(NSInteger, WKMediaCaptureType) {
    WKMediaCaptureTypeCamera = 0,
    WKMediaCaptureTypeMicrophone = 1,
    WKMediaCaptureTypeCameraAndMicrophone = 2
};

// Documentation: WKPermissionDecision; macOS 12.0.
typedef NS_ENUM(NSInteger, WKPermissionDecision) { WKPermissionDecisionGrant = 1, WKPermissionDecisionDeny = 2 };

// Documentation: WKWindowFeatures; macOS 10.10.
@interface WKWindowFeatures : NSObject
@end

// Documentation: WKUIDelegate; macOS 10.10. On the main thread.
@protocol WKUIDelegate <NSObject>
@optional
- (nullable WKWebView*)webView:(WKWebView*)webView
    createWebViewWithConfiguration:(WKWebViewConfiguration*)configuration
               forNavigationAction:(WKNavigationAction*)navigationAction
                    windowFeatures:(WKWindowFeatures*)windowFeatures;
- (void)webView:(WKWebView*)webView
    runJavaScriptAlertPanelWithMessage:(NSString*)message
                      initiatedByFrame:(WKFrameInfo*)frame
                     completionHandler:(void (^)(void))completionHandler;
- (void)webView:(WKWebView*)webView
    runJavaScriptConfirmPanelWithMessage:(NSString*)message
                        initiatedByFrame:(WKFrameInfo*)frame
                       completionHandler:(void (^)(BOOL result))completionHandler;
- (void)webView:(WKWebView*)webView
    runJavaScriptTextInputPanelWithPrompt:(NSString*)prompt
                              defaultText:(nullable NSString*)defaultText
                         initiatedByFrame:(WKFrameInfo*)frame
                        completionHandler:(void (^)(NSString* _Nullable result))completionHandler;
- (void)webView:(WKWebView*)webView
    requestMediaCapturePermissionForOrigin:(WKSecurityOrigin*)origin
                          initiatedByFrame:(WKFrameInfo*)frame
                                      type:(WKMediaCaptureType)type
                           decisionHandler:(void (^)(WKPermissionDecision decision))decisionHandler; // macOS 12.0
- (void)webView:(WKWebView*)webView
    runOpenPanelWithParameters:(WKOpenPanelParameters*)parameters
              initiatedByFrame:(WKFrameInfo*)frame
             completionHandler:(void (^)(NSArray<NSURL*>* _Nullable urls))completionHandler; // macOS 10.12
@end

// Documentation: WKBackForwardListItem; macOS 10.10.
@interface WKBackForwardListItem : NSObject
@end

// Documentation: WKBackForwardList; macOS 10.10.
@interface WKBackForwardList : NSObject
@property (nullable, nonatomic, readonly, strong) WKBackForwardListItem* currentItem;
@end

// Documentation: WKWebView; macOS 10.10.
@interface WKWebView : NSView
- (instancetype)initWithFrame:(CGRect)frame
                configuration:(WKWebViewConfiguration*)configuration NS_DESIGNATED_INITIALIZER;
@property (nullable, nonatomic, weak) id<WKNavigationDelegate> navigationDelegate;
@property (nullable, nonatomic, weak) id<WKUIDelegate> UIDelegate;
@property (nonatomic, readonly, strong) WKBackForwardList* backForwardList;
@property (nullable, nonatomic, readonly, copy) NSURL* URL;
@property (nonatomic, readonly) double estimatedProgress; // Key-value observing compliant.
@property (nonatomic, getter=isInspectable) BOOL inspectable; // macOS 13.3
- (nullable WKNavigation*)loadRequest:(NSURLRequest*)request;
- (nullable WKNavigation*)reloadFromOrigin;
- (void)stopLoading;
- (void)evaluateJavaScript:(NSString*)javaScriptString
         completionHandler:(void (^_Nullable)(_Nullable id result, NSError* _Nullable error))completionHandler;
@end

NS_ASSUME_NONNULL_END
