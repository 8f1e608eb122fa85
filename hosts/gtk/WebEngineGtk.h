#pragma once

#include "gtk/GObjectPtr.h"
#include "platform/WebView.h"

#include <filesystem>
#include <optional>
#include <string>
#include <webkit2/webkit2.h>

namespace brevanta {

// What the engine is given by whoever composes the application.
struct WebEngineOptions {
    // One certificate beyond those that the system trusts, for this host only.
    struct Certificate {
        std::filesystem::path file; // PEM.
        std::string host;
    };

    std::filesystem::path data; // Cookies and what pages store; the user stays signed in by it.
    std::filesystem::path cache;
    std::filesystem::path extensions; // The folder of the web process's extension; without it there is no bridge.
    std::optional<Certificate> certificate;
};

// The engine's view in its own web context. The data folder is made, for this user only. Main thread only.
struct WebEngine {
    GObjectPtr<WebKitWebContext> context;
    GObjectPtr<WebKitWebView> view; // Not floating.
};

// Has to be called before the first web engine of the process.
void prepareWebEngine();

[[nodiscard]] WebEngine newWebEngine(const WebEngineOptions& options, const WebViewConfiguration& configuration);

}
