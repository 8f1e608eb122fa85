#include "host/WebViewTest.h"

#include <algorithm>

namespace brevanta {

namespace {

class ScriptBridgeTest : public WebViewTest { };

}

TEST_F(ScriptBridgeTest, TheDocumentStartScriptRunsBeforeThePagesAndInNoSubframe)
{
    server.put("/inner", { .body = "<script>parent.innerStarted = typeof startedWith</script>" });
    server.put("/",
        { .body
            = "<script>window.pageScriptRan = true; window.seen = startedWith</script><iframe src=/inner></iframe>" });
    loadAndFinish("/");
    EXPECT_EQ(result("[seen, innerStarted]"), "[\"loading\",\"undefined\"]");
}

TEST_F(ScriptBridgeTest, EachFrameIsReportedAsWhatItIs)
{
    WebServer elsewhere;
    const std::string post
        = "<script>webkit.messageHandlers.note.postMessage(location.href.slice(0, 5) + NAME)</script>";
    const auto posting = [&](const std::string& name) {
        auto script = post;
        return script.replace(script.find("NAME"), 4, "'" + name + "'");
    };
    server.put("/inner", { .body = posting(" inner") });
    server.put("/sandboxed", { .body = posting(" sandboxed") });
    elsewhere.put("/other", { .body = posting(" other") });
    server.put("/",
        { .body = posting(" main")
                + "<iframe src=/inner></iframe><iframe sandbox=allow-scripts src=/sandboxed></iframe>" + "<iframe src='"
                + elsewhere.url("/other", "localhost") + "'></iframe>" + "<iframe src=\"data:text/html,"
                + posting(" data") + "\"></iframe>" + "<iframe srcdoc=\"" + posting(" srcdoc") + "\"></iframe>" });
    loadPage("/");
    ASSERT_TRUE(awaitMessages(6));
    EXPECT_TRUE(std::ranges::any_of(diary.actions, [](const auto& action) { return action.url->path == "/inner"; }))
        << "the actions of every frame are decided";

    std::map<std::string, FrameFacts> facts;
    for (const auto& message : diary.messages)
        facts[message.body] = message.frame;
    const std::map<std::string, FrameFacts> expected {
        { "\"http: main\"", { true, "http", "127.0.0.1" } },
        { "\"http: inner\"", { false, "http", "127.0.0.1" } },
        { "\"http: sandboxed\"", { false, "", "" } },
        { "\"http: other\"", { false, "http", "localhost" } },
        { "\"data: data\"", { false, "", "" } },
        { "\"about srcdoc\"", { false, "http", "127.0.0.1" } },
    };
    EXPECT_EQ(facts.size(), expected.size());
    for (const auto& [body, frame] : expected) {
        ASSERT_TRUE(facts.contains(body)) << body;
        EXPECT_EQ(facts[body], frame) << body;
    }
}

TEST_F(ScriptBridgeTest, APageCannotLieAboutItsFrame)
{
    server.put("/inner",
        { .body = "<script>"
                  "Object.defineProperty(self, 'origin', { get: () => 'https://trusted.example' });"
                  "JSON.stringify = () => '\"forged\"'; Object.prototype.toJSON = undefined;"
                  "Object.defineProperty(Object.prototype, 'isMainFrame', { get: () => true });"
                  "const handler = webkit.messageHandlers.note;"
                  "handler.postMessage.call({ isMainFrame: true }, 'call');"
                  "handler.postMessage.bind(top)('bind');"
                  "Reflect.apply(handler.postMessage, window.parent, ['apply']);"
                  "</script>" });
    server.put("/", { .body = "<iframe sandbox=allow-scripts src=/inner></iframe>" });
    loadPage("/");
    ASSERT_TRUE(awaitMessages(3));
    std::vector<std::string> bodies;
    for (const auto& message : diary.messages) {
        bodies.push_back(message.body);
        EXPECT_EQ(message.frame, (FrameFacts { false, "", "" })) << message.body;
    }
    EXPECT_EQ(bodies, (std::vector<std::string> { "\"call\"", "\"bind\"", "\"apply\"" }));
}

TEST_F(ScriptBridgeTest, APageCanNeitherReplaceNorRemoveTheHandlers)
{
    server.put("/", { .body = "<title>One</title>" });
    loadAndFinish("/");
    for (const auto* const attack : {
             "window.webkit = { messageHandlers: {} }",
             "delete window.webkit",
             "Object.defineProperty(window, 'webkit', { value: 1 })",
             "webkit.messageHandlers = {}",
             "webkit.messageHandlers.note = { postMessage() { } }",
             "delete webkit.messageHandlers.note",
             "webkit.messageHandlers.note.postMessage = () => { }",
             "delete webkit.messageHandlers.note.postMessage",
             "Object.defineProperty(webkit.messageHandlers.note, 'postMessage', { value() { } })",
             "document.open(); document.write('new'); document.close()",
         }) {
        view->evaluate(attack);
        EXPECT_EQ(result("'still here'"), "\"still here\"") << attack;
    }
}

TEST_F(ScriptBridgeTest, OnlyWhatJsonHasAFormForArrives)
{
    server.put("/", { .body = "<title>One</title>" });
    loadAndFinish("/");
    for (const auto* const value :
        { "", "undefined", "() => 1", "Symbol('x')", "10n", "(() => { const a = []; a.push(a); return a; })()",
            "'x'.repeat(1024 * 1024)", "{ toJSON() { throw new Error('no'); } }" })
        view->evaluate("webkit.messageHandlers.note.postMessage(" + std::string(value) + ")");
    struct {
        const char* value;
        const char* body;
    } const cases[] = {
        { "null", "null" },
        { "{ a: [1, 2.5, true, null], b: 'é \"quoted\"', c: undefined }",
            R"({"a":[1,2.5,true,null],"b":"é \"quoted\""})" },
        { "'x'.repeat(1024 * 1024 - 2).length", "1048574" },
    };
    for (const auto& [value, body] : cases)
        EXPECT_EQ(result(value), body) << value;
    EXPECT_EQ(result("'x'.repeat(1024 * 1024 - 2)").size(), 1024u * 1024u);
    EXPECT_EQ(diary.messages.size(), 4u);
}

TEST_F(ScriptBridgeTest, AReplyResolvesThePromise)
{
    server.put("/", { .body = "<title>One</title>" });
    loadAndFinish("/");
    struct {
        std::optional<std::string> reply;
        const char* argument;
        const char* outcome;
    } const cases[] = {
        { R"({"granted":true,"names":["é"]})", "{ a: 1 }", R"(["resolved",{"granted":true,"names":["é"]}])" },
        { "\"text\"", "1", R"(["resolved","text"])" },
        { "null", "1", R"(["resolved",null])" },
        { std::nullopt, "1", R"(["resolved","undefined"])" },
        { "no json", "1", R"(["resolved","undefined"])" },
        { "1", "undefined", R"(["rejected"])" },
    };
    for (const auto& [reply, argument, outcome] : cases) {
        diary.messages.clear();
        diary.reply = reply;
        view->evaluate("webkit.messageHandlers.ask.postMessage(" + std::string(argument)
            + ").then(value => ['resolved', value === undefined ? 'undefined' : value], () => ['rejected'])"
              ".then(outcome => webkit.messageHandlers.note.postMessage(outcome))");
        ASSERT_TRUE(serveUntil([&] {
            return !diary.messages.empty() && diary.messages.back().body.starts_with("[\"re");
        })) << argument;
        EXPECT_EQ(diary.messages.back().body, outcome);
    }
}

TEST_F(ScriptBridgeTest, WithoutTheExtensionThereIsNoBridge)
{
    server.put("/", { .body = "<title>One</title>" });
    extensions = directory.path();
    start();
    loadAndFinish("/");
    view->evaluate("document.title = 'window.webkit is ' + typeof window.webkit");
    const auto title = [&] {
        const char* const text = webkit_web_view_get_title(engineView());
        return std::string(text ? text : "");
    };
    EXPECT_TRUE(serveUntil([&] { return title() == "window.webkit is undefined"; })) << title();
}

}
