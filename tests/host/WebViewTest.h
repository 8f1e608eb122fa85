#pragma once

#include "fakes/FakePorts.h"
#include "gtk/WebViewGtk.h"
#include "host/DisplayTest.h"
#include "host/WebServer.h"
#include "support/TemporaryDirectory.h"

#include <map>

namespace brevanta {

// Writes down what the web view tells, as "start 1", "commit 1", "fail 1 NSURLErrorDomain -999": navigations are
// numbered in the order in which they are met, whether here or by the test.
class WebDiary final : public WebNavigationDelegate,
                       public WebUiDelegate,
                       public WebBrowserDelegate,
                       public ScriptMessageHandler,
                       public ScriptReplyHandler {
public:
    int numberOf(const WebNavigation& navigation);

    NavigationDecision decideAction(const NavigationAction& action) override;
    NavigationDecision decideResponse(const NavigationResponse& response) override;
    void didStartProvisional(const WebNavigation& navigation) override { write("start", navigation); }
    void didCommit(const WebNavigation& navigation) override { write("commit", navigation); }
    void didFinish(const WebNavigation& navigation) override { write("finish", navigation); }
    void didFail(const WebNavigation& navigation, const WebError& error) override;
    void contentProcessDidTerminate() override;
    void downloadRefused() override { ++downloads; }
    CaptureDecision decideCapture(CaptureType type, const FrameFacts& frame) override;
    void chooseFiles(const FileInputRequest& request, const FrameFacts& frame,
        std::function<void(std::vector<std::string>)> onEnd) override;
    void showDialog(
        const PageDialog& dialog, const FrameFacts& frame, std::function<void(DialogAnswer)> onEnd) override;
    void newWindowRequested(const NavigationAction& action) override { windows.push_back(action); }
    void messageArrived(const ScriptMessage& message) override;
    std::optional<std::string> replyTo(const ScriptMessage& message) override;

    [[nodiscard]] bool has(const std::string& line) const;

    std::vector<std::string> lines;
    std::vector<NavigationAction> actions;
    std::vector<int> statuses;
    std::vector<ScriptMessage> messages; // Of both kinds of handler.
    std::vector<FrameFacts> askingFrames; // Of captures and file choices.
    std::vector<CaptureType> captures;
    std::vector<FileInputRequest> fileRequests;
    std::function<void(std::vector<std::string>)> endFileChoice;
    std::vector<PageDialog> dialogs;
    std::function<void(DialogAnswer)> endDialog;
    std::vector<NavigationAction> windows;
    int downloads { 0 };

    std::string refusedPath; // Actions with this path are cancelled.
    bool refusesErrors { false }; // Responses of 400 and above are cancelled.
    CaptureDecision captureDecision { CaptureDecision::deny };
    std::optional<std::string> reply;
    std::function<void(const std::string& line)> onLine;
    std::function<void(const ScriptMessage& message)> onMessage;
    bool isInsideOfMethod { false };

private:
    void write(const std::string& what, const WebNavigation& navigation);
    void write(const std::string& line);

    std::vector<WebNavigation> m_navigations;
};

// A started web view in a window, and a server with pages for it. Its handlers are called "note" and "ask".
class WebViewTest : public DisplayTest {
protected:
    static constexpr double longTimeout = 60;

    void SetUp() override { start(); }
    void TearDown() override;

    // Starts it anew, with the same data.
    void start(const std::optional<WebEngineOptions::Certificate>& certificate = std::nullopt);

    // All return the number of the navigation in the diary; 0 for null.
    int load(const std::string& url, double timeout = longTimeout);
    int loadPage(const std::string& path) { return load(server.url(path)); }
    int reload();
    void loadAndFinish(const std::string& path);

    [[nodiscard]] testing::AssertionResult await(const std::string& line)
    {
        if (serveUntil([&] { return diary.has(line); }))
            return testing::AssertionSuccess();
        return testing::AssertionFailure() << "\"" << line << "\" is not among " << testing::PrintToString(diary.lines);
    }
    [[nodiscard]] bool awaitMessages(std::size_t count)
    {
        return serveUntil([&] { return diary.messages.size() >= count; });
    }
    // The body of the one message that the script posts to "note".
    [[nodiscard]] std::string result(const std::string& script);
    [[nodiscard]] std::string committed() const;
    [[nodiscard]] WebKitWebView* engineView() const;

    functional::TemporaryDirectory directory;
    std::filesystem::path extensions { BREVANTA_WEB_PROCESS_MODULES };
    FakeSystemLog log;
    WebDiary diary;
    WebServer server;
    Gtk::Window window;
    std::unique_ptr<WebViewGtk> view;
};

}
