#pragma once

#include "platform/WebView.h"

#include <map>
#include <string>
#include <webkit2/webkit2.h>

namespace brevanta {

// Hands the messages of the web process's extension to the handlers that they name. Main thread only; the handlers
// outlive this object.
class ScriptBridgeGtk {
public:
    explicit ScriptBridgeGtk(const WebViewConfiguration& configuration);

    // Answers one that asks for a reply. What is no message of the extension's, or names no handler, is left alone.
    void messageArrived(WebKitUserMessage* message) const;

private:
    std::map<std::string, ScriptMessageHandler*, std::less<>> m_messageHandlers;
    std::map<std::string, ScriptReplyHandler*, std::less<>> m_replyHandlers;
};

// The facts of a frame whose security origin reads as the text does; an opaque one reads "null".
[[nodiscard]] FrameFacts frameFacts(const std::string& origin, bool isMainFrame);

}
