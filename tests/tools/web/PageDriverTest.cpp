#include "WebTool.h"

#include "web/PageDriver.h"

#include <nlohmann/json.hpp>

namespace brevanta::web {

class WebToolDriver : public WebToolTest {
protected:
    // What a page does, step by step.
    [[nodiscard]] std::string askForNumber() const
    {
        const auto reply = client().get(url("/driver/next"));
        const auto order = nlohmann::json::parse(reply.body, nullptr, false);
        return order.is_object() ? order.value("number", nlohmann::json()).dump() : reply.body;
    }
    [[nodiscard]] HttpReply fetchScript(const std::string& number) const
    {
        return client().get(url("/driver/script/" + number));
    }
    [[nodiscard]] unsigned report(const std::string& body) const { return post("/driver/result", body); }
    [[nodiscard]] unsigned post(const std::string& path, const std::string& body) const
    {
        return client().send(url(path), { .method = "POST", .body = body })->await().status;
    }
};

TEST_F(WebToolDriver, AnExpressionGoesToThePageAndItsResultComesBack)
{
    struct Row {
        const char* outcome;
        const char* answer;
    };
    static constexpr Row rows[] = {
        { R"("json":"{\"b\":1,\"a\":[\"two words\"]}")", R"(ok {"b":1,"a":["two words"]})" },
        { R"("json":"null")", "ok null" },
        { R"("error":"Error: on\ntwo lines")", "error: Error: on two lines" },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.answer);
        const auto evaluation = begin("evaluate document.title + '  x' // really");
        const auto number = askForNumber();
        const auto script = fetchScript(number);
        EXPECT_NE(script.body.find("(\ndocument.title + '  x' // really\n)"), std::string::npos) << script.body;
        EXPECT_EQ(report("{\"number\":" + number + "," + row.outcome + "}"), 204u);
        EXPECT_EQ(evaluation->await(), row.answer);
    }
}

TEST_F(WebToolDriver, APageThatHasGoneTakesNothingWithIt)
{
    const auto client = this->client();
    const auto one = client.send(url("/driver/next"));
    const auto another = client.send(url("/driver/next"));
    const auto evaluation = begin("evaluate 1");
    for (const auto* each : { &one, &another })
        EXPECT_EQ((*each)->await().body, R"({"number":1})");
    // Neither fetches the script; the next page that asks can.
    EXPECT_EQ(askForNumber(), "1");
    EXPECT_EQ(fetchScript("1").status, 200u);
    EXPECT_EQ(fetchScript("1").status, 404u) << "no expression is run twice";
    EXPECT_EQ(report(R"({"number":1,"json":"1"})"), 204u);
    EXPECT_EQ(evaluation->await(), "ok 1");
}

TEST_F(WebToolDriver, APageThatIsLeftEndsWhatItHasFetchedAndNothingElse)
{
    const auto lost = begin("evaluate lost");
    ASSERT_EQ(fetchScript(askForNumber() + "/old").status, 200u);
    const auto kept = begin("evaluate kept");
    const auto keptNumber = askForNumber();
    ASSERT_EQ(fetchScript(keptNumber + "/other").status, 200u);
    EXPECT_EQ(post("/driver/left", R"({"document":"old"})"), 204u);
    EXPECT_EQ(lost->await(), "error: the page was left before it answered");

    const auto next = begin("evaluate next");
    const auto nextNumber = askForNumber();
    EXPECT_EQ(fetchScript(nextNumber + "/old").status, 404u) << "a request may arrive after the page has gone";
    EXPECT_EQ(fetchScript(nextNumber + "/new").status, 200u);
    for (const auto& number : { keptNumber, nextNumber })
        EXPECT_EQ(report("{\"number\":" + number + R"(,"json":"1"})"), 204u);
    EXPECT_EQ(kept->await(), "ok 1");
    EXPECT_EQ(next->await(), "ok 1");
    for (const auto* each : { "x", "[]", "{}", R"({"document":1})" })
        EXPECT_EQ(post("/driver/left", each), 400u) << each;
}

TEST_F(WebToolDriver, SeveralEvaluationsMayBeUnderWayAndHoldUpNobody)
{
    const auto first = begin("evaluate first");
    const auto firstNumber = askForNumber();
    ASSERT_EQ(fetchScript(firstNumber).status, 200u);
    const auto second = begin("evaluate second");
    const auto secondNumber = askForNumber();
    ASSERT_EQ(fetchScript(secondNumber).status, 200u);
    EXPECT_EQ(command("port"), "ok " + port());
    EXPECT_EQ(report("{\"number\":" + secondNumber + R"(,"json":"2"})"), 204u);
    EXPECT_EQ(second->await(), "ok 2");
    EXPECT_EQ(report("{\"number\":" + firstNumber + R"(,"json":"1"})"), 204u);
    EXPECT_EQ(first->await(), "ok 1");
}

TEST_F(WebToolDriver, ItsRequestsAreNeitherCountedNorMisanswered)
{
    EXPECT_EQ(command("status 503"), "ok");
    EXPECT_EQ(client().get(url("/driver.js")).status, 200u);
    const auto evaluation = begin("evaluate 1");
    EXPECT_EQ(askForNumber(), "1");
    EXPECT_EQ(client().get(url("/")).status, 503u);
    EXPECT_EQ(command("requests"), R"(ok {"/":1})");
}

TEST_F(WebToolDriver, ReportsThatMakeNoSenseAreRefused)
{
    const auto evaluation = begin("evaluate 1");
    ASSERT_EQ(fetchScript(askForNumber()).status, 200u);
    static constexpr const char* reports[] = { "x", "[]", "{}", R"({"number":1})", R"({"json":"1"})",
        R"({"number":-1,"json":"1"})", R"({"number":1,"json":1})", R"({"number":1,"json":"{"})",
        R"({"number":1,"json":"[1,\n2]"})", R"({"number":1,"error":1})" };
    for (const auto* each : reports)
        EXPECT_EQ(report(each), 400u) << each;
    EXPECT_EQ(report(R"({"number":7,"json":"1"})"), 204u) << "it may have come too late";
    EXPECT_EQ(report(R"({"number":1,"json":"true"})"), 204u);
    EXPECT_EQ(evaluation->await(), "ok true");
}

TEST(PageDriver, GivesUpWhenNoPageComes)
{
    PageDriver driver(std::chrono::milliseconds(1));
    std::optional<Result> result;
    driver.evaluate("1", [&](const Result& each) { result = each; });
    ASSERT_TRUE(functional::awaitUntil([&] { return result.has_value(); }, Milliseconds(10000)));
    EXPECT_EQ(result->error().message, "no page has asked for it in time");
}

}
