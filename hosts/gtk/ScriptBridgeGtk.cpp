#include "gtk/ScriptBridgeGtk.h"

#include "gtk/GLibText.h"
#include "gtk/UrlGtk.h"
#include "gtk/webextension/BridgeMessage.h"

namespace brevanta {

ScriptBridgeGtk::ScriptBridgeGtk(const WebViewConfiguration& configuration)
{
    for (const auto& handler : configuration.messageHandlers)
        m_messageHandlers.emplace(handler.name, &handler.handler);
    for (const auto& handler : configuration.replyHandlers)
        m_replyHandlers.emplace(handler.name, &handler.handler);
}

void ScriptBridgeGtk::messageArrived(WebKitUserMessage* message) const
{
    auto* const parameters = webkit_user_message_get_parameters(message);
    if (g_strcmp0(webkit_user_message_get_name(message), bridge::messageName) != 0 || !parameters
        || !g_variant_is_of_type(parameters, G_VARIANT_TYPE(bridge::messageType)))
        return;
    const char* name = nullptr;
    gboolean isMainFrame = FALSE;
    const char* origin = nullptr;
    const char* body = nullptr;
    g_variant_get(parameters, "(&sb&s&s)", &name, &isMainFrame, &origin, &body);
    const ScriptMessage scriptMessage { .body = body, .frame = frameFacts(origin, isMainFrame != FALSE) };
    if (const auto plain = m_messageHandlers.find(name); plain != m_messageHandlers.end())
        return plain->second->messageArrived(scriptMessage);
    const auto replying = m_replyHandlers.find(name);
    if (replying == m_replyHandlers.end())
        return;
    const auto reply = replying->second->replyTo(scriptMessage);
    webkit_user_message_send_reply(message,
        webkit_user_message_new(
            bridge::replyName, g_variant_new(bridge::replyType, reply ? validUtf8(*reply).c_str() : nullptr)));
}

FrameFacts frameFacts(const std::string& origin, bool isMainFrame)
{
    const auto url = parseUrl(origin);
    if (!url)
        return { .isMainFrame = isMainFrame, .protocol = {}, .host = {} };
    return { .isMainFrame = isMainFrame, .protocol = url->scheme, .host = url->host };
}

}
