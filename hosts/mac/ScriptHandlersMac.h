#pragma once

#include "platform/WebView.h"

#import <WebKit/WebKit.h>

NS_ASSUME_NONNULL_BEGIN

// What a WKUserContentController keeps alive in place of the client's handlers, which may go before it does.

// Documentation page WKScriptMessageHandler.
@interface BrevantaMessageProxy : NSObject <WKScriptMessageHandler>

// The handler lives until `detach`, after which messages are dropped.
- (instancetype)initWithHandler:(brevanta::ScriptMessageHandler&)handler NS_DESIGNATED_INITIALIZER;
- (instancetype)init NS_UNAVAILABLE;
- (void)detach;

@end

// Documentation page WKScriptMessageHandlerWithReply.
@interface BrevantaReplyProxy : NSObject <WKScriptMessageHandlerWithReply>

// The handler lives until `detach`, after which every message is answered with undefined.
- (instancetype)initWithHandler:(brevanta::ScriptReplyHandler&)handler NS_DESIGNATED_INITIALIZER;
- (instancetype)init NS_UNAVAILABLE;
- (void)detach;

@end

NS_ASSUME_NONNULL_END
