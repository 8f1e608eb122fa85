#pragma once

#include "platform/WebView.h"

#include <webkit2/webkit2.h>

namespace brevanta {

// A dialog of the page's scripts. It closes, and the scripts go on, when nobody holds it any more.
using ScriptDialog = std::shared_ptr<WebKitScriptDialog>;

// To be called in the signal script-dialog, whose handler then returns TRUE, and has returned before the dialog closes.
[[nodiscard]] ScriptDialog keepOpen(WebKitScriptDialog* dialog);

// Puts the dialog before the delegate and carries the answer back; `onEnd` is called right before that. Leaving the
// page is never asked about. The engine does not name the frame: the extension in the web process leaves dialogs to the
// main one, whose document's facts `page` are.
void showDialog(
    WebBrowserDelegate& delegate, const ScriptDialog& dialog, const FrameFacts& page, std::function<void()> onEnd);

}
