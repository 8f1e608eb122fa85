#include "host/WebViewTest.h"

#include <algorithm>

namespace brevanta {

int WebDiary::numberOf(const WebNavigation& navigation)
{
    if (!navigation)
        return 0;
    const auto known = std::ranges::find(m_navigations, navigation);
    if (known == m_navigations.end()) {
        m_navigations.push_back(navigation); // Holding it keeps its address from being used again.
        return static_cast<int>(m_navigations.size());
    }
    return static_cast<int>(known - m_navigations.begin()) + 1;
}

NavigationDecision WebDiary::decideAction(const NavigationAction& action)
{
    EXPECT_FALSE(isInsideOfMethod);
    actions.push_back(action);
    const bool isRefused = action.url && !refusedPath.empty() && action.url->path == refusedPath;
    return isRefused ? NavigationDecision::cancel : NavigationDecision::allow;
}

NavigationDecision WebDiary::decideResponse(const NavigationResponse& response)
{
    EXPECT_FALSE(isInsideOfMethod);
    statuses.push_back(response.httpStatus);
    return refusesErrors && response.httpStatus >= 400 ? NavigationDecision::cancel : NavigationDecision::allow;
}

void WebDiary::didFail(const WebNavigation& navigation, const WebError& error)
{
    const auto number = std::to_string(numberOf(navigation));
    write("fail " + number + ' ' + error.domain + ' ' + std::to_string(error.code));
}

void WebDiary::contentProcessDidTerminate() { write("terminate"); }

CaptureDecision WebDiary::decideCapture(CaptureType type, const FrameFacts& frame)
{
    captures.push_back(type);
    askingFrames.push_back(frame);
    return captureDecision;
}

void WebDiary::chooseFiles(
    const FileInputRequest& request, const FrameFacts& frame, std::function<void(std::vector<std::string>)> onEnd)
{
    fileRequests.push_back(request);
    askingFrames.push_back(frame);
    endFileChoice = std::move(onEnd);
}

void WebDiary::showDialog(const PageDialog& dialog, const FrameFacts& frame, std::function<void(DialogAnswer)> onEnd)
{
    EXPECT_FALSE(isInsideOfMethod);
    dialogs.push_back(dialog);
    askingFrames.push_back(frame);
    endDialog = std::move(onEnd);
}

void WebDiary::messageArrived(const ScriptMessage& message)
{
    EXPECT_FALSE(isInsideOfMethod);
    messages.push_back(message);
    if (onMessage)
        onMessage(message);
}

std::optional<std::string> WebDiary::replyTo(const ScriptMessage& message)
{
    messageArrived(message);
    return reply;
}

bool WebDiary::has(const std::string& line) const { return std::ranges::find(lines, line) != lines.end(); }

void WebDiary::write(const std::string& what, const WebNavigation& navigation)
{
    write(what + ' ' + std::to_string(numberOf(navigation)));
}

void WebDiary::write(const std::string& line)
{
    EXPECT_FALSE(isInsideOfMethod) << line;
    lines.push_back(line);
    if (onLine)
        onLine(line);
}

void WebViewTest::start(const std::optional<WebEngineOptions::Certificate>& certificate)
{
    TearDown();
    view = std::make_unique<WebViewGtk>(loop, log,
        WebEngineOptions { .data = directory.path() / "data",
            .cache = directory.path() / "cache",
            .extensions = extensions,
            .certificate = certificate });
    view->start({ .messageHandlers = { { "note", diary } },
        .replyHandlers = { { "ask", diary } },
        .applicationNameForUserAgent = "BrevantaTest/1.5",
        .documentStartScript = "window.startedWith = document.readyState + (window.pageScriptRan ? ' late' : '');",
        .navigationDelegate = diary,
        .uiDelegate = diary,
        .browserDelegate = diary });
    window.set_default_size(400, 300);
    window.add(view->widget());
    window.show();
}

void WebViewTest::TearDown()
{
    if (!view)
        return;
    window.remove();
    view.reset();
}

int WebViewTest::load(const std::string& url, double timeout)
{
    diary.isInsideOfMethod = true;
    const auto navigation = view->load(url, timeout);
    diary.isInsideOfMethod = false;
    return diary.numberOf(navigation);
}

int WebViewTest::reload()
{
    diary.isInsideOfMethod = true;
    const auto navigation = view->reloadFromOrigin();
    diary.isInsideOfMethod = false;
    return diary.numberOf(navigation);
}

void WebViewTest::loadAndFinish(const std::string& path)
{
    const auto number = loadPage(path);
    ASSERT_TRUE(await("finish " + std::to_string(number))) << path;
}

std::string WebViewTest::result(const std::string& script)
{
    const auto before = diary.messages.size();
    view->evaluate("webkit.messageHandlers.note.postMessage(" + script + ")");
    return awaitMessages(before + 1) ? diary.messages[before].body : "nothing";
}

std::string WebViewTest::committed() const
{
    const auto url = view->committedUrl();
    return url ? url->text : "";
}

WebKitWebView* WebViewTest::engineView() const
{
    WebKitWebView* found = nullptr;
    gtk_container_foreach(
        GTK_CONTAINER(view->widget().gobj()),
        [](GtkWidget* child, gpointer data) { *static_cast<WebKitWebView**>(data) = WEBKIT_WEB_VIEW(child); }, &found);
    return found;
}

}
