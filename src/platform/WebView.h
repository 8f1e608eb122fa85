#pragma once

#include "platform/Url.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace brevanta {

// One navigation of the web view. Two are the same when their pointers are equal, and as long as somebody holds one no
// other gets its place. Null for none.
using WebNavigation = std::shared_ptr<const void>;

// Why a navigation failed, in the terms of Foundation's errors on every host: NSURLErrorDomain and its codes where one
// fits, "WebKitErrorDomain" otherwise.
struct WebError {
    std::string domain;
    std::int64_t code { 0 };

    bool operator==(const WebError&) const = default;
};

// The frame that something comes from, as the engine knows it; no page can forge this. Protocol and host are those of
// its security origin, and empty when that is opaque.
struct FrameFacts {
    bool isMainFrame { false };
    std::string protocol;
    std::string host;

    bool operator==(const FrameFacts&) const = default;
};

enum class NavigationType { linkActivated, other };

struct NavigationAction {
    std::optional<Url> url; // Nothing when the request has no URL that can be taken apart.
    NavigationType type { NavigationType::other };
};

// The answer to a navigation of the main frame.
struct NavigationResponse {
    int httpStatus { 0 }; // 0 when it did not come over HTTP.
};

enum class NavigationDecision { allow, cancel };

// What the web view tells about its navigations; those of the main frame, except that actions of every frame are
// decided. Main thread. Nothing of this is called from inside a method of WebView.
class WebNavigationDelegate {
public:
    virtual ~WebNavigationDelegate() = default;

    [[nodiscard]] virtual NavigationDecision decideAction(const NavigationAction& action) = 0;

    // A response that is cancelled ends its navigation as failed with NSURLErrorDomain -1011 (bad server response).
    [[nodiscard]] virtual NavigationDecision decideResponse(const NavigationResponse& response) = 0;

    // Each navigation that has started commits and then finishes, or fails at any time; after a failure nothing more is
    // told of it. A navigation that is superseded or stopped fails with NSURLErrorDomain -999.
    virtual void didStartProvisional(const WebNavigation& navigation) = 0;
    virtual void didCommit(const WebNavigation& navigation) = 0;
    virtual void didFinish(const WebNavigation& navigation) = 0;
    virtual void didFail(const WebNavigation& navigation, const WebError& error) = 0;

    // The process that holds the page is gone, and the page with it; nothing more is told of any navigation of before.
    virtual void contentProcessDidTerminate() = 0;

    // The page wanted to download something; nothing comes of it.
    virtual void downloadRefused() = 0;
};

// What a script of the page posted. The body is JSON (RFC 8259); values that JSON has no form for are never delivered.
struct ScriptMessage {
    std::string body;
    FrameFacts frame;
};

// Takes messages of window.webkit.messageHandlers.<name>.postMessage(body). Main thread.
class ScriptMessageHandler {
public:
    virtual ~ScriptMessageHandler() = default;

    virtual void messageArrived(const ScriptMessage& message) = 0;
};

// As ScriptMessageHandler, where postMessage returns a promise: it is resolved with the answer, a JSON value, or with
// undefined for nothing. Main thread.
class ScriptReplyHandler {
public:
    virtual ~ScriptReplyHandler() = default;

    [[nodiscard]] virtual std::optional<std::string> replyTo(const ScriptMessage& message) = 0;
};

// The numbers are those of WKMediaCaptureType.
enum class CaptureType : int { camera = 0, microphone = 1, cameraAndMicrophone = 2 };
enum class CaptureDecision { grant, deny };

struct FileInputRequest {
    bool allowsMultiple { false };
    bool allowsDirectories { false };
};

// Decides what the page may ask the user for. Main thread.
class WebUiDelegate {
public:
    virtual ~WebUiDelegate() = default;

    [[nodiscard]] virtual CaptureDecision decideCapture(CaptureType type, const FrameFacts& frame) = 0;

    // Calls `onEnd` exactly once with the absolute paths that the page gets, none when the user or the rules refuse.
    virtual void chooseFiles(
        const FileInputRequest& request, const FrameFacts& frame, std::function<void(std::vector<std::string>)> onEnd)
        = 0;
};

// The simple dialogs that a page's scripts may show (HTML, Window.alert and its like).
enum class PageDialogKind { alert, confirm, prompt };
enum class DialogAnswer { dismissed, accepted };

struct PageDialog {
    PageDialogKind kind { PageDialogKind::alert };
    std::string text;
};

// Does for the page what browsers do around pages. Main thread. Nothing of this is called from inside a method of
// WebView.
class WebBrowserDelegate {
public:
    virtual ~WebBrowserDelegate() = default;

    // Calls `onEnd` exactly once, maybe before it returns; a prompt that is accepted comes to nothing all the same. The
    // page's scripts stand still until then, and no load begins.
    virtual void showDialog(const PageDialog& dialog, const FrameFacts& frame, std::function<void(DialogAnswer)> onEnd)
        = 0;

    // The page asks for a window of its own, which the host does not open: a link or a form, after its action has been
    // allowed, or a script.
    virtual void newWindowRequested(const NavigationAction& action) = 0;
};

// The handlers and delegates live until `detach`.
struct WebViewConfiguration {
    struct MessageHandler {
        std::string name;
        ScriptMessageHandler& handler;
    };
    struct ReplyHandler {
        std::string name;
        ScriptReplyHandler& handler;
    };

    std::vector<MessageHandler> messageHandlers;
    std::vector<ReplyHandler> replyHandlers;
    std::string applicationNameForUserAgent; // Appended to the engine's own, "Name/1.0".
    std::string documentStartScript; // Run before the page's own scripts, in the main frame only.
    WebNavigationDelegate& navigationDelegate;
    WebUiDelegate& uiDelegate;
    WebBrowserDelegate& browserDelegate;
};

enum class Inspectable { no, yes };

// The engine that shows the web application. Main thread only.
class WebView {
public:
    virtual ~WebView() = default;

    // Makes the view. Once, before everything else.
    virtual void start(const WebViewConfiguration& configuration) = 0;

    // Loads the URL. The navigation fails with NSURLErrorDomain -1001 when nothing has come for `timeoutSeconds` before
    // the document is complete. Null when there was nothing to begin, such as for a text that is no URL.
    [[nodiscard]] virtual WebNavigation load(const std::string& url, double timeoutSeconds) = 0;

    // Loads the current page once more, past every cache, with a timeout of 60 seconds. Null when there is none.
    [[nodiscard]] virtual WebNavigation reloadFromOrigin() = 0;

    // Runs the script in the page's own world without waiting for a result; what it throws is ignored. A script that is
    // not UTF-8 is ignored too.
    virtual void evaluate(const std::string& script) = 0;

    // The URL of the document that is there now; never that of a load under way, so that what is sent on the strength
    // of it does not reach the document before. Nothing when there is none, or none that can be told for certain.
    [[nodiscard]] virtual std::optional<Url> committedUrl() const = 0;

    virtual void setInspectable(Inspectable inspectable) = 0;

    // From now on neither a handler nor a delegate is called.
    virtual void detach() = 0;
};

}
