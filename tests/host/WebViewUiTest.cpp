#include "host/WebViewTest.h"

#include <fstream>

namespace brevanta {

namespace {

class WebViewUiTest : public WebViewTest {
protected:
    void SetUp() override
    {
        server.put("/", { .body = "<title>One</title><input type=file id=one><input type=file multiple id=many>" });
        WebViewTest::SetUp();
        webkit_settings_set_enable_mock_capture_devices(webkit_web_view_get_settings(engineView()), TRUE);
        loadAndFinish("/");
    }

    // What the script's promise comes to, as text.
    std::string outcome(const std::string& promise)
    {
        const auto before = diary.messages.size();
        view->evaluate(promise
            + ".then(() => 'granted', error => error.name).then(text => "
              "webkit.messageHandlers.note.postMessage(text))");
        return awaitMessages(before + 1) ? diary.messages[before].body : "nothing";
    }

    const FrameFacts page { true, "http", "127.0.0.1" };
};

}

TEST_F(WebViewUiTest, CaptureIsDecidedByTheDelegateForThePage)
{
    struct {
        const char* constraints;
        CaptureType type;
    } const cases[] = {
        { "{ audio: true }", CaptureType::microphone },
        { "{ video: true }", CaptureType::camera },
        { "{ audio: true, video: true }", CaptureType::cameraAndMicrophone },
    };
    for (const auto& [constraints, type] : cases) {
        loadAndFinish("/"); // What a document has been granted it keeps.
        diary.captures.clear();
        diary.captureDecision = CaptureDecision::deny;
        const auto promise = "navigator.mediaDevices.getUserMedia(" + std::string(constraints) + ")";
        EXPECT_EQ(outcome(promise), "\"NotAllowedError\"") << constraints;
        diary.captureDecision = CaptureDecision::grant;
        EXPECT_EQ(outcome(promise), "\"granted\"") << constraints;
        EXPECT_EQ(diary.captures, (std::vector { type, type })) << constraints;
        EXPECT_EQ(diary.askingFrames.back(), page);
    }
}

TEST_F(WebViewUiTest, EverythingElseThatAPageAsksForIsDenied)
{
    diary.captureDecision = CaptureDecision::grant;
    EXPECT_EQ(outcome("new Promise((done, failed) => navigator.geolocation.getCurrentPosition(done,"
                      "error => failed({ name: error.code == error.PERMISSION_DENIED ? 'denied' : error.message })))"),
        "\"denied\"");
    EXPECT_TRUE(diary.captures.empty());
}

TEST_F(WebViewUiTest, ThePageGetsTheFilesThatTheDelegateGives)
{
    const auto file = [&](const char* name) {
        const auto path = directory.path() / name;
        std::ofstream(path) << "text";
        return path.string();
    };
    const auto one = file("one.txt");
    const auto two = file("two.txt");
    struct {
        const char* input;
        std::vector<std::string> chosen;
        const char* names;
        bool allowsMultiple;
    } const cases[] = {
        { "many", { one, two }, R"(["one.txt","two.txt"])", true },
        { "one", { one }, R"(["one.txt"])", false },
        { "one", { two, one }, R"(["two.txt"])", false },
        { "one", {}, "\"cancelled\"", false },
    };
    for (const auto& [input, chosen, names, allowsMultiple] : cases) {
        loadAndFinish("/");
        diary.messages.clear();
        diary.endFileChoice = nullptr;
        view->evaluate("const input = document.getElementById('" + std::string(input)
            + "'); const tell = what => webkit.messageHandlers.note.postMessage(what);"
              "input.onchange = () => tell([...input.files].map(file => file.name));"
              "input.oncancel = () => tell('cancelled'); input.click()");
        ASSERT_TRUE(serveUntil([&] { return diary.endFileChoice != nullptr; }));
        EXPECT_EQ(diary.fileRequests.back().allowsMultiple, allowsMultiple);
        EXPECT_FALSE(diary.fileRequests.back().allowsDirectories);
        EXPECT_EQ(diary.askingFrames.back(), page);
        diary.endFileChoice(chosen);
        ASSERT_TRUE(awaitMessages(1)) << names;
        EXPECT_EQ(diary.messages[0].body, names);
    }
}

TEST_F(WebViewUiTest, ADialogIsAnsweredByTheDelegateWhileTheViewGoesOn)
{
    struct {
        const char* call;
        PageDialogKind kind;
        DialogAnswer answer;
        const char* result;
    } const cases[] = {
        { "alert('A <b>text</b>')", PageDialogKind::alert, DialogAnswer::accepted, "null" },
        { "confirm('A <b>text</b>')", PageDialogKind::confirm, DialogAnswer::accepted, "true" },
        { "confirm('A <b>text</b>')", PageDialogKind::confirm, DialogAnswer::dismissed, "false" },
        { "prompt('A <b>text</b>', 'given')", PageDialogKind::prompt, DialogAnswer::dismissed, "null" },
    };
    for (const auto& [call, kind, answer, expected] : cases) {
        diary.messages.clear();
        diary.endDialog = nullptr;
        view->evaluate("webkit.messageHandlers.note.postMessage([" + std::string(call) + "][0] ?? null)");
        ASSERT_TRUE(serveUntil([&] { return diary.endDialog != nullptr; })) << call;
        EXPECT_EQ(diary.dialogs.back().kind, kind);
        EXPECT_EQ(diary.dialogs.back().text, "A <b>text</b>");
        EXPECT_EQ(diary.askingFrames.back(), page);
        EXPECT_TRUE(diary.messages.empty());
        diary.endDialog(answer);
        diary.endDialog = nullptr; // Whoever held the answer has no need of it.
        ASSERT_TRUE(awaitMessages(1)) << call;
        EXPECT_EQ(diary.messages[0].body, expected) << call;
    }
    view->evaluate("onbeforeunload = event => { event.preventDefault(); return 'no'; }");
    loadAndFinish("/");
    EXPECT_EQ(diary.dialogs.size(), std::size(cases)) << "leaving the page is not asked about";
}

TEST_F(WebViewUiTest, FramesHaveNoDialogs)
{
    server.put("/frame",
        { .body = "<script>parent.postMessage([alert('a') ?? null, confirm('b'), prompt('c')], '*');"
                  "</script>" });
    view->evaluate("onmessage = event => webkit.messageHandlers.note.postMessage(event.data); const frame = "
                   "document.createElement('iframe'); frame.src = '"
        + server.url("/frame", "localhost") + "'; document.body.append(frame)");
    ASSERT_TRUE(awaitMessages(1));
    EXPECT_EQ(diary.messages[0].body, "[null,false,null]");
    EXPECT_TRUE(diary.dialogs.empty());
}

TEST_F(WebViewUiTest, WindowsAndDownloadsAreToldOfAndNothingComesOfThem)
{
    EXPECT_EQ(result("String(window.open('/two'))"), "\"null\"");
    server.put("/file", { .body = "binary", .type = "application/zip" });
    server.put("/attached", { .body = "<title>saved</title>", .disposition = "attachment; filename=a.html" });
    server.put("/two", { .body = "two" });
    server.put("/links",
        { .body = "<a id=window target=_blank href=/two>x</a><a id=named download=x href=/two>x</a>"
                  "<a id=file href=/file>x</a><a id=attached href=/attached>x</a>" });
    loadAndFinish("/links");
    const auto click = [&](const std::string& id) { view->evaluate("document.getElementById('" + id + "').click()"); };
    click("window");
    ASSERT_TRUE(serveUntil([&] { return diary.windows.size() == 2; }));
    EXPECT_EQ(diary.windows[0].type, NavigationType::other);
    for (const auto& action : { diary.windows[1], diary.actions.back() }) {
        EXPECT_EQ(action.type, NavigationType::linkActivated);
        EXPECT_EQ(action.url->text, server.url("/two"));
    }
    int downloads = 0;
    for (const char* id : { "named", "file", "attached" }) {
        click(id);
        ++downloads;
        EXPECT_TRUE(serveUntil([&] { return diary.downloads == downloads; })) << id;
    }
    EXPECT_EQ(committed(), server.url("/links"));
}

TEST_F(WebViewUiTest, InspectionIsOffUntilItIsAllowed)
{
    auto* const settings = webkit_web_view_get_settings(engineView());
    EXPECT_FALSE(webkit_settings_get_enable_developer_extras(settings));
    view->setInspectable(Inspectable::yes);
    EXPECT_TRUE(webkit_settings_get_enable_developer_extras(settings));
    view->setInspectable(Inspectable::no);
    EXPECT_FALSE(webkit_settings_get_enable_developer_extras(settings));
}

TEST_F(WebViewUiTest, CookiesAreThereAgainAfterAStart)
{
    view->evaluate("document.cookie = 'session=kept; max-age=3600; path=/'");
    EXPECT_EQ(result("document.cookie"), "\"session=kept\"");
    // The engine writes them when it has time to.
    ASSERT_TRUE(serveUntil([&] { return std::filesystem::exists(directory.path() / "data/cookies.sqlite"); }));
    start();
    loadAndFinish("/");
    EXPECT_EQ(result("document.cookie"), "\"session=kept\"");
    const auto permissions = std::filesystem::status(directory.path() / "data").permissions();
    EXPECT_EQ(permissions & ~std::filesystem::perms::owner_all, std::filesystem::perms::none);
}

}
