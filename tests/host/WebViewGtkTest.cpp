#include "host/WebViewTest.h"

namespace brevanta {

namespace {

using Lines = std::vector<std::string>;

std::string urlError(int navigation, int code)
{
    return "fail " + std::to_string(navigation) + " NSURLErrorDomain " + std::to_string(code);
}

class WebViewGtkTest : public WebViewTest {
protected:
    void SetUp() override
    {
        server.put("/", { .body = "<title>One</title>" });
        server.put("/two", { .body = "<title>Two</title>" });
        server.put("/silent", { .staysSilent = true });
        server.put("/endless", { .body = std::string(2000, ' ') + "<title>Endless</title>", .neverEnds = true });
        server.put("/error", { .body = "broken", .status = 500 });
        WebViewTest::SetUp();
    }
};

}

TEST_F(WebViewGtkTest, ALoadStartsCommitsAndFinishesUnderTheIdentityThatItWasGiven)
{
    EXPECT_EQ(committed(), "");
    loadAndFinish("/");
    EXPECT_EQ(diary.lines, (Lines { "start 1", "commit 1", "finish 1" }));
    EXPECT_EQ(committed(), server.url("/"));
    EXPECT_EQ(diary.statuses, (std::vector { 200 }));
    ASSERT_EQ(diary.actions.size(), 1u);
    EXPECT_EQ(diary.actions[0].url->text, server.url("/"));
    EXPECT_EQ(diary.actions[0].type, NavigationType::other);
    EXPECT_TRUE(server.requests().front().userAgent.ends_with(" BrevantaTest/1.5"))
        << server.requests().front().userAgent;
}

TEST_F(WebViewGtkTest, WhatIsNoUrlBeginsNothingAndNeitherDoesAReloadOfNothing)
{
    EXPECT_EQ(load(""), 0);
    EXPECT_EQ(load("no url"), 0);
    EXPECT_EQ(load("javascript:1"), 0);
    EXPECT_EQ(reload(), 0);
}

TEST_F(WebViewGtkTest, AReloadIsANavigationOfItsOwnPastTheCaches)
{
    loadAndFinish("/");
    EXPECT_EQ(reload(), 2);
    ASSERT_TRUE(await("finish 2"));
    EXPECT_EQ(diary.lines, (Lines { "start 1", "commit 1", "finish 1", "start 2", "commit 2", "finish 2" }));
    EXPECT_EQ(server.requests().back().cacheControl, "no-cache");

    EXPECT_EQ(reload(), 3);
    ASSERT_TRUE(await("commit 3"));
    EXPECT_EQ(reload(), 4); // While the document still arrives.
    EXPECT_TRUE(await("finish 4"));
}

TEST_F(WebViewGtkTest, AReloadWhileTheEngineLoadsTakesThePlaceOfThatLoad)
{
    loadAndFinish("/");
    loadPage("/silent");
    ASSERT_TRUE(await("start 2"));
    EXPECT_EQ(reload(), 3);
    ASSERT_TRUE(await("finish 3"));
    EXPECT_EQ(diary.lines,
        (Lines { "start 1", "commit 1", "finish 1", "start 2", urlError(2, -999), "start 3", "commit 3", "finish 3" }));
    EXPECT_EQ(server.requests().back().path, "/");
    EXPECT_EQ(server.requests().back().cacheControl, "no-cache");
}

TEST_F(WebViewGtkTest, ANavigationOfThePageItselfHasAnIdentityOfItsOwn)
{
    loadAndFinish("/");
    view->evaluate("location = '/two'");
    ASSERT_TRUE(await("finish 2"));
    EXPECT_EQ(diary.lines, (Lines { "start 1", "commit 1", "finish 1", "start 2", "commit 2", "finish 2" }));
    EXPECT_EQ(committed(), server.url("/two"));
}

TEST_F(WebViewGtkTest, AScriptThatIsNotUtf8IsNotRun)
{
    loadAndFinish("/");
    view->evaluate("location = '/other' // \xFF");
    view->evaluate("location = '/two'");
    ASSERT_TRUE(await("finish 2"));
    EXPECT_EQ(committed(), server.url("/two"));
    EXPECT_TRUE(std::ranges::none_of(server.requests(), [](const auto& request) { return request.path == "/other"; }));
}

TEST_F(WebViewGtkTest, ASupersededLoadFailsBeforeTheNewOneStarts)
{
    loadPage("/silent");
    ASSERT_TRUE(await("start 1"));
    EXPECT_EQ(loadPage("/"), 2);
    ASSERT_TRUE(await("finish 2"));
    EXPECT_EQ(diary.lines, (Lines { "start 1", urlError(1, -999), "start 2", "commit 2", "finish 2" }));

    loadPage("/endless");
    ASSERT_TRUE(await("commit 3"));
    EXPECT_EQ(loadPage("/"), 4);
    ASSERT_TRUE(await("finish 4"));
    EXPECT_EQ(Lines(diary.lines.begin() + 5, diary.lines.end()),
        (Lines { "start 3", "commit 3", urlError(3, -999), "start 4", "commit 4", "finish 4" }));
}

TEST_F(WebViewGtkTest, ALoadThatIsSupersededBeforeItStartsFailsAndTheNewOneGoesOn)
{
    loadPage("/two");
    EXPECT_EQ(loadPage("/"), 2);
    ASSERT_TRUE(await("finish 2"));
    EXPECT_EQ(diary.lines, (Lines { urlError(1, -999), "start 2", "commit 2", "finish 2" }));
    EXPECT_EQ(committed(), server.url("/"));

    // Also when the first one is refused.
    diary.refusedPath = "/two";
    loadPage("/two");
    EXPECT_EQ(loadPage("/"), 4);
    ASSERT_TRUE(await("finish 4"));
    EXPECT_EQ(Lines(diary.lines.begin() + 4, diary.lines.end()),
        (Lines { urlError(3, -999), "start 4", "commit 4", "finish 4" }));
}

TEST_F(WebViewGtkTest, ALoadFromInsideOfTheDelegateWorks)
{
    int second = 0;
    diary.onLine = [&](const std::string& line) {
        if (line == urlError(1, -1004))
            second = loadPage("/");
    };
    load("http://127.0.0.1:" + std::to_string(refusingPort()) + "/");
    ASSERT_TRUE(await("finish 2"));
    EXPECT_EQ(second, 2);
    EXPECT_EQ(diary.lines, (Lines { "start 1", urlError(1, -1004), "start 2", "commit 2", "finish 2" }));
}

TEST_F(WebViewGtkTest, AFailedLoadLeavesTheDocumentAndItsUrl)
{
    loadAndFinish("/");
    load("http://127.0.0.1:" + std::to_string(refusingPort()) + "/");
    ASSERT_TRUE(await("start 2"));
    EXPECT_EQ(committed(), server.url("/"));
    ASSERT_TRUE(await(urlError(2, -1004)));
    EXPECT_EQ(committed(), server.url("/"));
    EXPECT_EQ(result("document.title"), "\"One\"");
}

TEST_F(WebViewGtkTest, TheTimeoutBeginsAnewWithEveryPiece)
{
    loadAndFinish("/");
    load(server.url("/endless"), 3);
    ASSERT_TRUE(await("commit 2"));
    int pieces = 0;
    const auto timer = loop.startTimer(0.3, TimerRepeat::forever, [&] {
        server.sendMore();
        ++pieces;
    });
    EXPECT_TRUE(serveUntil([&] { return pieces == 14; })); // For longer than the timeout.
    EXPECT_EQ(diary.lines.back(), "commit 2");
}

TEST_F(WebViewGtkTest, WhatStopsArrivingTimesOutOnceAndAFinishedDocumentNever)
{
    loadAndFinish("/"); // The first load of all takes its time.
    diary.lines.clear();
    load(server.url("/silent"), 1);
    ASSERT_TRUE(await(urlError(2, -1001)));
    load(server.url("/endless"), 1);
    ASSERT_TRUE(await(urlError(3, -1001)));
    load(server.url("/"), 1);
    ASSERT_TRUE(await("finish 4"));
    serveFor(1.5);
    EXPECT_EQ(diary.lines,
        (Lines { "start 2", urlError(2, -1001), "start 3", "commit 3", urlError(3, -1001), "start 4", "commit 4",
            "finish 4" }));
}

TEST_F(WebViewGtkTest, AResponseThatIsCancelledFailsAsABadOneAndLeavesTheDocument)
{
    loadAndFinish("/");
    diary.refusesErrors = true;
    loadPage("/error");
    ASSERT_TRUE(await(urlError(2, -1011)));
    EXPECT_EQ(diary.statuses, (std::vector { 200, 500 }));
    EXPECT_EQ(committed(), server.url("/"));
    loadAndFinish("/two");
    EXPECT_EQ(Lines(diary.lines.begin() + 3, diary.lines.end()),
        (Lines { "start 2", urlError(2, -1011), "start 3", "commit 3", "finish 3" }));
}

TEST_F(WebViewGtkTest, AnErrorThatIsAllowedIsADocumentLikeAnyOther)
{
    loadAndFinish("/error");
    EXPECT_EQ(diary.statuses, (std::vector { 500 }));
    EXPECT_EQ(committed(), server.url("/error"));
}

TEST_F(WebViewGtkTest, AnActionThatIsCancelledEndsTheLoadThatItBelongsTo)
{
    loadAndFinish("/");
    diary.refusedPath = "/two";
    loadPage("/two");
    ASSERT_TRUE(await("fail 2 WebKitErrorDomain 102"));
    EXPECT_EQ(server.countOf("/two"), 0u);
    EXPECT_EQ(committed(), server.url("/"));
    view->evaluate("location = '/two'"); // Of the page itself: never heard of.
    view->evaluate("history.pushState(null, '', '/changed')");
    EXPECT_TRUE(serveUntil([&] { return committed() == server.url("/changed"); }));
    EXPECT_EQ(diary.lines, (Lines { "start 1", "commit 1", "finish 1", "fail 2 WebKitErrorDomain 102" }));
}

TEST_F(WebViewGtkTest, ARedirectionThatIsCancelledEndsItsNavigation)
{
    server.put("/moved", { .body = "", .status = 302, .location = "/two" });
    diary.refusedPath = "/two";
    loadPage("/moved");
    ASSERT_TRUE(await("fail 1 WebKitErrorDomain 102"));
    EXPECT_EQ(diary.lines.size(), 2u);
    EXPECT_EQ(server.countOf("/two"), 0u);
}

TEST_F(WebViewGtkTest, ASchemeThatTheEngineDoesNotKnowFailsTheLoad)
{
    load("brevanta-unknown://host/");
    ASSERT_TRUE(await("fail 1 WebKitErrorDomain 101"));
    loadAndFinish("/");
}

TEST_F(WebViewGtkTest, ACircleOfRedirectionsFails)
{
    server.put("/circle", { .body = "", .status = 302, .location = "/circle" });
    loadPage("/circle");
    ASSERT_TRUE(await(urlError(1, -1007)));
}

TEST_F(WebViewGtkTest, WhatCannotBeShownIsNotDownloaded)
{
    loadAndFinish("/");
    server.put("/file", { .body = "bytes", .type = "application/x-unknown" });
    loadPage("/file");
    ASSERT_TRUE(await("fail 2 WebKitErrorDomain 102"));
    EXPECT_EQ(committed(), server.url("/"));
}

TEST_F(WebViewGtkTest, TheUrlFollowsThePageWithinItsDocumentAndNeverALoadUnderWay)
{
    loadAndFinish("/");
    view->evaluate("history.pushState(null, '', '/inner')");
    EXPECT_TRUE(serveUntil([&] { return committed() == server.url("/inner"); }));
    EXPECT_EQ(diary.lines.size(), 3u);

    const auto before = committed();
    view->evaluate("location = '/silent'");
    ASSERT_TRUE(await("start 2"));
    EXPECT_EQ(committed(), before);
    loadPage("/silent");
    EXPECT_EQ(committed(), before);
    ASSERT_TRUE(await("start 3"));
    EXPECT_EQ(committed(), before);
}

// The page goes to another site by itself, the client's thread is busy for a while, and then it asks for a reload.
TEST_F(WebViewGtkTest, ANavigationThatOverlapsAReloadIsNeitherTakenForItsDocumentNorEndsIt)
{
    server.put("/other",
        { .body = "<script>const tell = what => webkit.messageHandlers.note.postMessage(what);"
                  "addEventListener('secret', () => tell('reached')); tell(location.hostname)</script>" });
    const auto tellSecret = [&] {
        if (committed().starts_with(server.url("/")))
            view->evaluate("dispatchEvent(new Event('secret'))");
    };
    diary.onLine = [&](const std::string&) { tellSecret(); };
    diary.onMessage = [&](const ScriptMessage& message) {
        EXPECT_NE(message.body, "\"reached\"");
        EXPECT_EQ(committed(), server.url("/other", "localhost"));
    };
    for (const bool isAnswered : { false, true }) {
        const auto count = [&] { return isAnswered ? diary.statuses.size() : diary.actions.size(); };
        for (const unsigned milliseconds : { 0u, 5u, 20u, 100u, 500u }) {
            SCOPED_TRACE((isAnswered ? "answered, busy for " : "allowed, busy for ") + std::to_string(milliseconds));
            loadAndFinish("/");
            view->evaluate("location = '" + server.url("/other", "localhost") + "'");
            ASSERT_TRUE(serveUntil([&, before = count()] { return count() > before; }));
            g_usleep(milliseconds * 1000);
            tellSecret();
            ASSERT_TRUE(await("finish " + std::to_string(reload())));
        }
    }
}

TEST_F(WebViewGtkTest, OnlyAClickOnALinkIsALinkActivated)
{
    server.put("/link", { .body = "<a id=a href=/moved>x</a>" });
    server.put("/moved", { .body = "", .status = 302, .location = "/two" });
    loadAndFinish("/link");
    view->evaluate("document.getElementById('a').click()");
    ASSERT_TRUE(await("finish 2"));
    ASSERT_EQ(diary.actions.size(), 3u);
    EXPECT_EQ(diary.actions[1].url->path, "/moved");
    EXPECT_EQ(diary.actions[1].type, NavigationType::linkActivated);
    EXPECT_EQ(diary.actions[2].url->path, "/two");
    EXPECT_EQ(diary.actions[2].type, NavigationType::other);
}

TEST_F(WebViewGtkTest, TheEndOfTheWebProcessIsToldOnceAndANewLoadWorks)
{
    loadAndFinish("/");
    loadPage("/silent");
    ASSERT_TRUE(await("start 2"));
    webkit_web_view_terminate_web_process(engineView());
    ASSERT_TRUE(await("terminate"));
    EXPECT_EQ(committed(), "");
    EXPECT_EQ(reload(), 0);
    EXPECT_EQ(loadPage("/two"), 3);
    ASSERT_TRUE(await("finish 3"));
    EXPECT_EQ(diary.lines,
        (Lines { "start 1", "commit 1", "finish 1", "start 2", "terminate", "start 3", "commit 3", "finish 3" }));
    EXPECT_EQ(result("1"), "1"); // The bridge is there again.
}

TEST_F(WebViewGtkTest, NothingIsToldAfterDetach)
{
    loadPage("/");
    view->detach();
    EXPECT_TRUE(serveUntil([&] { return server.countOf("/") == 1 && !webkit_web_view_is_loading(engineView()); }));
    EXPECT_TRUE(diary.lines.empty());
    EXPECT_TRUE(diary.actions.empty());
}

TEST_F(WebViewGtkTest, ACertificateIsTrustedForItsHostOnlyAndNoneWithoutIt)
{
    const auto path = [&](const char* name) { return (directory.path() / name).string(); };
    const auto command
        = "openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -nodes -days 2 -subj /CN=localhost "
          "-addext subjectAltName=DNS:localhost,IP:127.0.0.1 -keyout "
        + path("key.pem") + " -out " + path("certificate.pem");
    int status = -1;
    char* messages = nullptr;
    ASSERT_TRUE(g_spawn_command_line_sync(command.c_str(), nullptr, &messages, &status, nullptr));
    const GLibPtr<char> ownedMessages(messages);
    ASSERT_TRUE(g_spawn_check_wait_status(status, nullptr)) << messages;
    const GObjectPtr<GTlsCertificate> certificate(
        g_tls_certificate_new_from_files(path("certificate.pem").c_str(), path("key.pem").c_str(), nullptr));
    ASSERT_TRUE(certificate);
    WebServer secure(certificate.get());
    secure.put("/", { .body = "<title>Secure</title>" });

    // A connection that the engine makes ahead of the request may be refused first; the request is then lost with it.
    const auto awaitRefusal = [&](int navigation) {
        return serveUntil(
            [&] { return diary.has(urlError(navigation, -1202)) || diary.has(urlError(navigation, -1005)); });
    };

    load(secure.url("/", "localhost"));
    ASSERT_TRUE(awaitRefusal(1)) << testing::PrintToString(diary.lines);

    start(WebEngineOptions::Certificate { .file = path("certificate.pem"), .host = "localhost" });
    load(secure.url("/", "localhost"));
    ASSERT_TRUE(await("finish 2"));
    EXPECT_EQ(result("document.title"), "\"Secure\"");
    load(secure.url("/", "127.0.0.1"));
    ASSERT_TRUE(awaitRefusal(3)) << testing::PrintToString(diary.lines);
    EXPECT_TRUE(log.lines.empty());

    start(WebEngineOptions::Certificate { .file = path("missing.pem"), .host = "localhost" });
    EXPECT_EQ(log.lines.size(), 1u);
    load(secure.url("/", "localhost"));
    ASSERT_TRUE(awaitRefusal(4)) << testing::PrintToString(diary.lines);
    EXPECT_FALSE(diary.has("commit 1") || diary.has("commit 3") || diary.has("commit 4"));
}

}
