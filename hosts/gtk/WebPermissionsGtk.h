#pragma once

#include "platform/WebView.h"

#include <webkit2/webkit2.h>

namespace brevanta {

// Both put the engine's request before the delegate and carry the answer back. The engine names neither frame nor
// origin; a frame of another origin gets this far only where the page allows it to (Permissions Policy), so the page
// answers for its frames: `page` are the facts of the document in the main frame.

// Everything but microphone and camera is denied.
void decidePermission(WebUiDelegate& delegate, WebKitPermissionRequest* request, const FrameFacts& page);

void chooseFiles(WebUiDelegate& delegate, WebKitFileChooserRequest* request, const FrameFacts& page);

}
