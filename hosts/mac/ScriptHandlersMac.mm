#include "mac/ScriptHandlersMac.h"

#include "mac/FrameFactsMac.h"
#include "mac/JsonMac.h"

#include <utility>

using brevanta::ScriptMessage;
using brevanta::ScriptMessageHandler;
using brevanta::ScriptReplyHandler;

namespace {

std::optional<ScriptMessage> messageFrom(WKScriptMessage* message)
{
    auto body = brevanta::jsonFromObject(message.body);
    if (!body)
        return std::nullopt;
    return ScriptMessage { .body = *std::move(body), .frame = brevanta::frameFacts(message.frameInfo) };
}

}

@implementation BrevantaMessageProxy {
    ScriptMessageHandler* _handler;
}

- (instancetype)initWithHandler:(ScriptMessageHandler&)handler
{
    if ((self = [super init]))
        _handler = &handler;
    return self;
}

- (void)detach
{
    _handler = nullptr;
}

- (void)userContentController:(WKUserContentController*)userContentController
      didReceiveScriptMessage:(WKScriptMessage*)message
{
    if (!_handler)
        return;
    if (const auto arrived = messageFrom(message))
        _handler->messageArrived(*arrived);
}

@end

@implementation BrevantaReplyProxy {
    ScriptReplyHandler* _handler;
}

- (instancetype)initWithHandler:(ScriptReplyHandler&)handler
{
    if ((self = [super init]))
        _handler = &handler;
    return self;
}

- (void)detach
{
    _handler = nullptr;
}

- (void)userContentController:(WKUserContentController*)userContentController
      didReceiveScriptMessage:(WKScriptMessage*)message
                 replyHandler:(void (^)(id _Nullable reply, NSString* _Nullable errorMessage))replyHandler
{
    std::optional<std::string> reply;
    if (const auto arrived = _handler ? messageFrom(message) : std::nullopt)
        reply = _handler->replyTo(*arrived);
    replyHandler(reply ? brevanta::objectFromJson(*reply) : nil, nil);
}

@end
